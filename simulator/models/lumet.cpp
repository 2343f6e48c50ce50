// Lumet: ten digital inputs, each with a counter of 16 bits or, on the two fast ones, of 32; and two measures, each of
// an input of the master's choice.

#include <algorithm>
#include <array>
#include <cstdint>

#include "simulator/model.h"

namespace tarvo::simulator {

namespace {

using namespace state::literals;

constexpr int kInputs = 10;
// The two fast inputs, from 0 on. They have wide counters and pass the filter by.
constexpr int kInput9 = 8;
constexpr int kInput10 = 9;

constexpr state::Register kStates = "40002"_reg;        // bits 0 to 9, held here as they come through the filter
constexpr state::Register kCounters = "40003"_reg;      // eight of 16 bits
constexpr state::Register kWideCounters = "40011"_reg;  // two of 32 bits, the low word first
constexpr state::Register kOverflows = "40015"_reg;     // bits 0 to 9
constexpr state::Register kMeasures = "40016"_reg;      // two of them
// Low byte the first measure, high byte the second: bits 0 to 3 the input from 1 on, bits 4 to 7 what of it.
constexpr state::Register kMeasureSetup = "40018"_reg;
constexpr state::Register kFilter = "40019"_reg;  // ms
constexpr state::Register kFlags = "40020"_reg;   // high byte: how inputs 9 and 10 count
constexpr state::Register kCommunication = "40021"_reg;
constexpr state::Register kReset = "40022"_reg;

constexpr unsigned kInputBits = 0x03FF;

constexpr unsigned kNegate = 0x01;
constexpr unsigned kDown = 0x02;  // inputs 1 to 8

// The high byte of the flags has one bit at most; any other pattern counts as none.
constexpr int k9Down10Up = 0x01;
constexpr int k9Up10Down = 0x02;
constexpr int kBothDown = 0x04;
constexpr int k9UpBy10Down = 0x08;  // input 9 takes the total of 9 up, input 10 takes it down
constexpr int k9WhileInput10Is0 = 0x10;

/// What goes by without a master beyond it, the inputs do not live through.
constexpr core::Duration kLongestSilence = core::milliseconds(300000);

const ModelData kData{
    .name = "lumet",
    .code = 0x0A,
    .registers = {{.first = "40001"_reg, .last = kStates, .writable = false},
                  {.first = kCounters, .last = kOverflows},
                  {.first = kMeasures, .last = kMeasures + 1, .writable = false},
                  // The most that both bytes can ask for: the off time of input 10.
                  {.first = kMeasureSetup, .last = kMeasureSetup, .highest = 0x3A3A},
                  {.first = kFilter, .last = kFilter, .lowest = 1, .highest = 254},
                  {.first = kFlags, .last = kReset},
                  {.first = "40082"_reg, .last = "40085"_reg}},
    .images = {{kMeasureSetup, "40082"_reg},
               {kFilter, "40083"_reg},
               {kFlags, "40084"_reg},
               {kCommunication, "40085"_reg}},
    .communication = kCommunication,
    .flags = kFlags,
    .reset = kReset,
};

/// What lies at an input: a pulse that comes again and again.
struct Pulse {
  core::Duration on;
  core::Duration off;
};
/// Inputs 7 and 8 are quick enough for a filter to take them away.
constexpr std::array<Pulse, kInputs> kPulses = {{{core::milliseconds(500), core::milliseconds(700)},
                                                 {core::milliseconds(1000), core::milliseconds(1000)},
                                                 {core::milliseconds(1400), core::milliseconds(2000)},
                                                 {core::milliseconds(300), core::milliseconds(2700)},
                                                 {core::milliseconds(2500), core::milliseconds(400)},
                                                 {core::milliseconds(5000), core::milliseconds(3000)},
                                                 {core::milliseconds(40), core::milliseconds(110)},
                                                 {core::milliseconds(20), core::milliseconds(20)},
                                                 {core::microseconds(500), core::microseconds(500)},
                                                 {core::milliseconds(3), core::milliseconds(5)}}};

// What a measure gives. No register tells the units: taken as tenths of a Hertz and as milliseconds.
constexpr core::Duration kFrequencyUnit = std::chrono::seconds(10);
constexpr core::Duration kTimeUnit = core::milliseconds(1);

enum class Measure { kFrequency, kPeriod, kOnTime, kOffTime };

int Rounded(core::Duration dividend, core::Duration divisor) {
  return static_cast<int>((dividend + divisor / 2) / divisor);
}

class Lumet : public Model {
 public:
  Lumet() : Model(kData) {
    registers.Set(kMeasureSetup, state::Word(0x0201));
    registers.Set(kFilter, state::Word(10));
  }

  void Seed(Random& random) override {
    for (state::Register counter = kCounters; counter < kWideCounters; counter = counter + 1) {
      registers.Set(counter, state::Word(std::uniform_int_distribution<unsigned>(0, 60000)(random)));
    }
    // The first goes over within half a minute, and that of input 9 needs its high word.
    registers.Set(kCounters, state::Word(std::uniform_int_distribution<unsigned>(65515, 65530)(random)));
    registers.Set(kWideCounters, state::Word(std::uniform_int_distribution<unsigned>(40000, 60000)(random)));
    registers.Set(kWideCounters + 2, state::Word(std::uniform_int_distribution<unsigned>(0, 60000)(random)));
    ShowMeasures();
  }

  void Live(core::Duration elapsed) override {
    // Nobody has seen what went on before: counting hours of it would hold up the reply.
    elapsed = std::min(elapsed, kLongestSilence);
    // From change to change, since what input 9 counts may depend on input 10.
    while (elapsed > core::Duration::zero()) {
      const core::Duration step = std::min(elapsed, *std::min_element(untilChange_.begin(), untilChange_.end()));
      elapsed -= step;
      unsigned risen = 0;
      for (int input = 0; input < kInputs; ++input) risen |= Pass(input, step);
      for (int input = 0; input < kInputs; ++input) {
        if ((risen & Bit(input)) != 0) Count(input);
      }
    }
    ShowMeasures();
  }

  state::Word Read(state::Register reg) const override { return reg == kStates ? States() : registers.Get(reg); }

  void Write(state::Register reg, state::Word value) override {
    // A bit written as 0 clears its overflow; none is set this way.
    if (reg == kOverflows) value = registers.Get(kOverflows).And(static_cast<unsigned>(value.Unsigned()));
    registers.Set(reg, value);
  }

  void Restarted() override {
    for (state::Register counter = kCounters; counter <= kOverflows; counter = counter + 1) {
      registers.Set(counter, state::Word(0));
    }
  }

 private:
  static constexpr unsigned Bit(int input) { return 1U << input; }

  static const Pulse& PulseAt(int input) { return kPulses.at(static_cast<std::size_t>(input)); }

  /// As a master reads them.
  state::Word States() const {
    const state::Word states = registers.Get(kStates);
    if (!registers.Get(kFlags).Has(kNegate)) return states;
    return state::Word(static_cast<unsigned>(states.Unsigned()) ^ kInputBits);
  }

  /// False for a level that is over before the filter believes it.
  bool ComesThrough(int input, core::Duration lasts) const {
    return input >= kInput9 || lasts >= core::milliseconds(registers.Get(kFilter).Unsigned());
  }

  /// Lets time go by at an input, up to its next change at most. Gives its bit when it has risen.
  unsigned Pass(int input, core::Duration step) {
    core::Duration& left = untilChange_.at(static_cast<std::size_t>(input));
    left -= step;
    if (left > core::Duration::zero()) return 0;
    bool& high = high_.at(static_cast<std::size_t>(input));
    high = !high;
    left = high ? PulseAt(input).on : PulseAt(input).off;
    if (!ComesThrough(input, left)) return 0;
    const state::Word before = registers.Get(kStates);
    const state::Word now = high ? before.Or(Bit(input)) : before.And(~Bit(input));
    registers.Set(kStates, now);
    return high && !before.Has(Bit(input)) ? Bit(input) : 0;
  }

  /// An input has risen.
  void Count(int input) {
    if (input < kInput9) {
      const bool down = registers.Get(kFlags).Has(kDown);
      const int total = registers.Get(kCounters + input).Unsigned() + (down ? -1 : 1);
      registers.Set(kCounters + input, state::Word(static_cast<unsigned>(total)));
      if (total < 0 || total > 0xFFFF) TellOverflow(input);
      return;
    }
    const int configuration = registers.Get(kFlags).High();
    if (configuration == k9UpBy10Down) {
      CountWide(kInput9, input == kInput9 ? 1 : -1);
    } else if (configuration == k9WhileInput10Is0) {
      if (input == kInput9 && !States().Has(Bit(kInput10))) CountWide(kInput9, 1);
    } else {
      const int otherWay = input == kInput9 ? k9Down10Up : k9Up10Down;
      CountWide(input, configuration == otherWay || configuration == kBothDown ? -1 : 1);
    }
  }

  void CountWide(int input, int step) {
    const state::Register low = kWideCounters + 2 * (input - kInput9);
    const std::int64_t total =
        std::int64_t{registers.Get(low + 1).Unsigned()} << 16 | std::int64_t{registers.Get(low).Unsigned()};
    const std::int64_t now = total + step;
    registers.Set(low, state::Word(static_cast<unsigned>(now & 0xFFFF)));
    registers.Set(low + 1, state::Word(static_cast<unsigned>(now >> 16 & 0xFFFF)));
    if (now < 0 || now > 0xFFFFFFFF) TellOverflow(input);
  }

  void TellOverflow(int input) { registers.Set(kOverflows, registers.Get(kOverflows).Or(Bit(input))); }

  void ShowMeasures() {
    const state::Word setup = registers.Get(kMeasureSetup);
    registers.Set(kMeasures, Measured(setup.Low()));
    registers.Set(kMeasures + 1, Measured(setup.High()));
  }

  /// 0 where there is nothing to measure: no such input or kind, or an input that the filter holds still.
  state::Word Measured(int setup) const {
    const int input = std::max((setup & 0x0F) - 1, 0);
    if (input >= kInputs) return state::Word(0);
    const Pulse& pulse = PulseAt(input);
    if (!ComesThrough(input, pulse.on) || !ComesThrough(input, pulse.off)) return state::Word(0);
    const auto measure = input >= kInput9 ? Measure::kFrequency : static_cast<Measure>(setup >> 4);
    switch (measure) {
      case Measure::kFrequency:
        return state::Word(static_cast<unsigned>(Rounded(kFrequencyUnit, pulse.on + pulse.off)));
      case Measure::kPeriod:
        return state::Word(static_cast<unsigned>(Rounded(pulse.on + pulse.off, kTimeUnit)));
      case Measure::kOnTime:
        return state::Word(static_cast<unsigned>(Rounded(pulse.on, kTimeUnit)));
      case Measure::kOffTime:
        return state::Word(static_cast<unsigned>(Rounded(pulse.off, kTimeUnit)));
    }
    return state::Word(0);
  }

  static std::array<core::Duration, kInputs> FirstChanges() {
    std::array<core::Duration, kInputs> changes;
    std::transform(kPulses.begin(), kPulses.end(), changes.begin(), [](const Pulse& pulse) { return pulse.off; });
    return changes;
  }

  // What comes in, before the filter: all begin low.
  std::array<bool, kInputs> high_{};
  std::array<core::Duration, kInputs> untilChange_ = FirstChanges();
};

const Registration kLumet(kData.name, &Make<Lumet>);

}  // namespace

}  // namespace tarvo::simulator
