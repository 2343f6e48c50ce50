// Belk: five digital inputs, each with a 16-bit counter and an overflow bit.

#include <array>

#include "simulator/model.h"

namespace tarvo::simulator {

namespace {

using namespace state::literals;

constexpr int kInputs = 5;
constexpr int kFastInput = 4;

// Bits 0 to 4 the inputs, held here as they come in; bits 8 to 12 the overflows.
constexpr state::Register kStatus = "40002"_reg;
constexpr state::Register kCounters = "40003"_reg;  // five of them
constexpr state::Register kFilter = "40008"_reg;
constexpr state::Register kFlags = "40009"_reg;
constexpr state::Register kCommunication = "40010"_reg;
constexpr state::Register kReset = "40011"_reg;

constexpr unsigned kInputBits = 0x001F;
constexpr unsigned kOverflowBits = 0x1F00;

constexpr unsigned kNegate = 0x01;
constexpr unsigned kDown = 0x02;
constexpr unsigned kAutoreset = 0x20;
constexpr unsigned kFast = 0x80;

const ModelData kData{
    .name = "belk",
    .code = 0x01,
    .registers = {{.first = "40001"_reg, .last = "40001"_reg, .writable = false},
                  {.first = kStatus, .last = kCounters + (kInputs - 1)},
                  {.first = kFilter, .last = kFilter, .lowest = 1, .highest = 254},
                  {.first = kFlags, .last = kReset},
                  {.first = "40072"_reg, .last = "40074"_reg}},
    .images = {{kFilter, "40072"_reg}, {kFlags, "40073"_reg}, {kCommunication, "40074"_reg}},
    .communication = kCommunication,
    .flags = kFlags,
    .reset = kReset,
};

/// How long each input stays as it is: some seconds in all until the lamps have shown every pattern.
constexpr std::array<core::Duration, kInputs> kHalfPeriods = {core::milliseconds(600), core::milliseconds(1000),
                                                              core::milliseconds(1700), core::milliseconds(2900),
                                                              core::milliseconds(400)};
/// Input 5 in fast reading: 1 kHz, so that its counter goes round in about a minute.
constexpr core::Duration kFastHalfPeriod = core::microseconds(500);

class Belk : public Model {
 public:
  Belk() : Model(kData) { registers.Set(kFilter, state::Word(10)); }

  void Seed(Random& random) override {
    for (int input = 0; input < kInputs; ++input) {
      const unsigned value = std::uniform_int_distribution<unsigned>(0, 60000)(random);
      registers.Set(kCounters + input, state::Word(value));
    }
    // Goes over within half a minute, so that an overflow can be seen.
    registers.Set(kCounters, state::Word(std::uniform_int_distribution<unsigned>(65520, 65530)(random)));
  }

  void Live(core::Duration elapsed) override {
    for (int input = 0; input < kInputs; ++input) Toggle(input, elapsed);
  }

  state::Word Read(state::Register reg) const override {
    const state::Word value = registers.Get(reg);
    if (reg != kStatus || !Flags().Has(kNegate)) return value;
    return state::Word(static_cast<unsigned>(value.Unsigned()) ^ kInputBits);
  }

  void Write(state::Register reg, state::Word value) override {
    // A bit written as 0 clears its overflow; none is set this way, and the inputs are what they are.
    if (reg == kStatus) value = registers.Get(kStatus).And(static_cast<unsigned>(value.Unsigned()) | ~kOverflowBits);
    registers.Set(reg, value);
  }

  void Restarted() override {
    for (int input = 0; input < kInputs; ++input) registers.Set(kCounters + input, state::Word(0));
    registers.Set(kStatus, registers.Get(kStatus).And(kInputBits));
  }

 private:
  state::Word Flags() const { return registers.Get(kFlags); }

  void Toggle(int input, core::Duration elapsed) {
    const bool fast = input == kFastInput && Flags().Has(kFast);
    const core::Duration half = fast ? kFastHalfPeriod : kHalfPeriods[static_cast<std::size_t>(input)];
    core::Duration& phase = phases_[static_cast<std::size_t>(input)];
    phase += elapsed;
    const auto toggles = phase / half;
    phase %= half;
    const unsigned mask = 1U << input;
    const state::Word status = registers.Get(kStatus);
    const auto risingEdges = (toggles + (status.Has(mask) ? 0 : 1)) / 2;
    if (toggles % 2 != 0) registers.Set(kStatus, state::Word(static_cast<unsigned>(status.Unsigned()) ^ mask));
    Count(input, risingEdges);
  }

  void Count(int input, std::int64_t edges) {
    const state::Register counter = kCounters + input;
    const bool down = Flags().Has(kDown);
    std::int64_t value = registers.Get(counter).Unsigned() + (down ? -edges : edges);
    if (value < 0 || value > 0xFFFF) {
      registers.Set(kStatus, registers.Get(kStatus).Or(0x100U << input));
      // Counting up, going round and starting again at 0 are the same. Counting down, a counter goes on from 65535,
      // but with autoreset it starts again at 0: it never goes below.
      if (down && Flags().Has(kAutoreset)) value = 0;
    }
    registers.Set(counter, state::Word(static_cast<unsigned>(value & 0xFFFF)));
  }

  std::array<core::Duration, kInputs> phases_{};
};

const Registration kBelk(kData.name, &Make<Belk>);

}  // namespace

}  // namespace tarvo::simulator
