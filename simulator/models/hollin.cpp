// Hollin: the second generation of the module with four analog inputs. Its line is fixed; its flags say what it
// publishes on its PLC side, which no register shows.

#include "simulator/models/analog_inputs.h"

namespace tarvo::simulator {

namespace {

/// Each input among the selected registers.
constexpr unsigned kAllInputs = 0x0F00;

const ModelData kData = OnAFixedLine(AnalogInputs::DataOf("hollin", 0x0B));

class Hollin : public AnalogInputs {
 public:
  Hollin() : AnalogInputs(kData) { registers.Set(kFlags, state::Word(kAllInputs)); }
};

const Registration kHollin(kData.name, &Make<Hollin>);

}  // namespace

}  // namespace tarvo::simulator
