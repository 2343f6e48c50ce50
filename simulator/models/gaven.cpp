// Gaven: four analog inputs.

#include "simulator/models/analog_inputs.h"

namespace tarvo::simulator {

namespace {

const ModelData kData = AnalogInputs::DataOf("gaven", 0x07);

class Gaven : public AnalogInputs {
 public:
  Gaven() : AnalogInputs(kData) {}
};

const Registration kGaven(kData.name, &Make<Gaven>);

}  // namespace

}  // namespace tarvo::simulator
