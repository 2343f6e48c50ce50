// Jorun: four thermocouple inputs.

#include "simulator/models/thermocouples.h"

namespace tarvo::simulator {

namespace {

const ModelData kData = Thermocouples::DataOf("jorun", 0x06);

class Jorun : public Thermocouples {
 public:
  Jorun() : Thermocouples(kData) {}
};

const Registration kJorun(kData.name, &Make<Jorun>);

}  // namespace

}  // namespace tarvo::simulator
