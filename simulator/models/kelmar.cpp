// Kelmar: the second generation of the module with four thermocouple inputs. Its line is fixed; its flags say what it
// publishes on its PLC side, which no register shows.

#include "simulator/models/thermocouples.h"

namespace tarvo::simulator {

namespace {

/// Each input among the selected registers.
constexpr unsigned kAllInputs = 0x0F00;

const ModelData kData = OnAFixedLine(Thermocouples::DataOf("kelmar", 0x0C));

class Kelmar : public Thermocouples {
 public:
  Kelmar() : Thermocouples(kData) { registers.Set(kFlags, state::Word(kAllInputs)); }
};

const Registration kKelmar(kData.name, &Make<Kelmar>);

}  // namespace

}  // namespace tarvo::simulator
