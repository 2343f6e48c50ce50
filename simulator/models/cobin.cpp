// Cobin: five digital outputs, each with a safe state that a watchdog puts it into.

#include "simulator/model.h"

namespace tarvo::simulator {

namespace {

using namespace state::literals;

constexpr state::Register kOutputs = "40002"_reg;  // bits 0 to 4, as a master sets them
constexpr state::Register kSafeStates = "40003"_reg;
constexpr state::Register kSafeTime = "40004"_reg;
constexpr state::Register kFlags = "40005"_reg;
constexpr state::Register kCommunication = "40006"_reg;
constexpr state::Register kReset = "40007"_reg;

constexpr unsigned kOutputBits = 0x001F;

// Two more flags have nothing to show here. Bit 0 inverts the outputs behind their register, at the terminals. Bit 6
// lets the watchdog start again with a reply too, which goes out milliseconds after the request that started it anyway.
constexpr unsigned kSafeStateInUse = 0x80;

/// What the safe time counts. No register tells its unit: taken as 100 ms, so that its bounds are 0.5 s and 25 s.
constexpr core::Duration kSafeTimeUnit = core::milliseconds(100);

const ModelData kData{
    .name = "cobin",
    .code = 0x02,
    .registers = {{.first = "40001"_reg, .last = "40001"_reg, .writable = false},
                  {.first = kOutputs, .last = kSafeStates},
                  {.first = kSafeTime, .last = kSafeTime, .lowest = 5, .highest = 250},
                  {.first = kFlags, .last = kReset},
                  {.first = "40067"_reg, .last = "40070"_reg}},
    .images = {{kSafeStates, "40067"_reg},
               {kSafeTime, "40068"_reg},
               {kFlags, "40069"_reg},
               {kCommunication, "40070"_reg}},
    .communication = kCommunication,
    .flags = kFlags,
    .reset = kReset,
};

class Cobin : public Model {
 public:
  Cobin() : Model(kData) { registers.Set(kSafeTime, state::Word(50)); }

  void Seed(Random& random) override {
    // Some output on, some safe state set and in use: a few seconds without a master already show the watchdog.
    std::uniform_int_distribution<unsigned> pattern(1, kOutputBits);
    registers.Set(kOutputs, state::Word(pattern(random)));
    registers.Set(kSafeStates, state::Word(pattern(random)));
    registers.Set(kFlags, state::Word(kSafeStateInUse));
  }

  void Live(core::Duration elapsed) override {
    silence_ += elapsed;
    if (!registers.Get(kFlags).Has(kSafeStateInUse)) return;
    if (silence_ < kSafeTimeUnit * registers.Get(kSafeTime).Unsigned()) return;
    const state::Word safe = registers.Get(kSafeStates).And(kOutputBits);
    registers.Set(kOutputs, registers.Get(kOutputs).And(~kOutputBits).Or(static_cast<unsigned>(safe.Unsigned())));
  }

  void Heard() override { silence_ = core::Duration::zero(); }

  void Restarted() override {
    registers.Set(kOutputs, state::Word(0));
    silence_ = core::Duration::zero();
  }

 private:
  core::Duration silence_{};  // since the last request
};

const Registration kCobin(kData.name, &Make<Cobin>);

}  // namespace

}  // namespace tarvo::simulator
