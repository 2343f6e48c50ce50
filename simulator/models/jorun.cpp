// Jorun: four thermocouple inputs, each with a type, a filter, and the span and zero that correct what it measures.

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <numbers>

#include "simulator/model.h"

namespace tarvo::simulator {

namespace {

using namespace state::literals;

constexpr int kInputs = 4;

constexpr state::Register kCommunication = "40002"_reg;
constexpr state::Register kFlags = "40003"_reg;
// The first of four each.
constexpr state::Register kType = "40004"_reg;
constexpr state::Register kFilter = "40008"_reg;
// Read, bits 8 to 11 are the over-ranges, bits 12 to 15 the burn-outs; a 1 written restarts the module.
constexpr state::Register kStatus = "40012"_reg;
// Held here as it comes in, before span and zero.
constexpr state::Register kValue = "40013"_reg;
constexpr state::Register kZero = "40021"_reg;
constexpr state::Register kSpan = "40025"_reg;

constexpr unsigned kSpeedUp = 0x02;
constexpr unsigned kOverRange1 = 0x0100;
constexpr unsigned kBurnOut1 = 0x1000;
constexpr unsigned kStatusBits = 0xFF00;
constexpr int kStrongestFilter = 6;
/// The span of a gain of 1.
constexpr int kUnitySpan = 10000;

/// What an input type can measure, in tenths of a degree; the first in counts of 5 microvolts.
struct Range {
  int low;
  int high;
};
constexpr std::array kRanges = {Range{-16000, 16000}, Range{-2000, 10000}, Range{-2500, 12000},
                                Range{0, 17500},      Range{0, 17500},     Range{-2000, 4000},
                                Range{0, 18000},      Range{-2000, 8000},  Range{-2000, 13000}};

std::vector<ImagePair> Images() {
  constexpr int kDistance = 64;
  std::vector<ImagePair> images;
  for (state::Register live = kCommunication; live < kStatus; live = live + 1) {
    images.push_back({live, live + kDistance});
  }
  for (state::Register live = kZero; live < kSpan + kInputs; live = live + 1) {
    images.push_back({live, live + kDistance});
  }
  return images;
}

const ModelData kData{
    .name = "jorun",
    .code = 0x06,
    .registers = {{.first = "40001"_reg, .last = "40001"_reg, .writable = false},
                  {.first = kCommunication, .last = kFlags},
                  {.first = kType, .last = kType + (kInputs - 1), .highest = static_cast<int>(kRanges.size()) - 1},
                  {.first = kFilter, .last = kFilter + (kInputs - 1), .highest = kStrongestFilter},
                  {.first = kStatus, .last = kStatus},
                  {.first = kValue, .last = kValue + (kInputs - 1), .writable = false},
                  {.first = kZero, .last = kSpan + (kInputs - 1)},
                  {.first = "40066"_reg, .last = "40075"_reg},
                  {.first = "40085"_reg, .last = "40092"_reg}},
    .images = Images(),
    .communication = kCommunication,
    .flags = kFlags,
    .reset = kStatus,
};

/// A TC-J, a TC-K, a TC-T and millivolts.
constexpr std::array<unsigned, kInputs> kFirstTypes = {1, 2, 5, 0};

/// How often the inputs are converted, as they are and sped up.
constexpr core::Duration kConversion = core::milliseconds(100);
constexpr core::Duration kFastConversion = core::milliseconds(25);

/// What lies at an input: a slow sine about the middle of its range. A swing of 1 goes from end to end.
struct Wave {
  double swing;
  core::Duration period;
};
constexpr std::array<Wave, kInputs> kWaves = {Wave{0.6, std::chrono::seconds(60)}, Wave{0.9, std::chrono::seconds(45)},
                                              Wave{1.03, std::chrono::seconds(30)},
                                              Wave{0.5, std::chrono::seconds(20)}};

/// The last input has a loose wire, open for the first part of each period.
constexpr int kLooseInput = kInputs - 1;
constexpr core::Duration kLoosePeriod = std::chrono::seconds(40);
constexpr core::Duration kOpenTime = std::chrono::seconds(5);

std::size_t At(int input) {
  return static_cast<std::size_t>(input);
}

/// Within 16 bits; a half goes away from 0.
state::Word Rounded(double value) {
  using Limits = std::numeric_limits<std::int16_t>;
  const double fitting = std::clamp<double>(value, Limits::lowest(), Limits::max());
  return state::Word(static_cast<unsigned>(std::lround(fitting)));
}

class Jorun : public Model {
 public:
  Jorun() : Model(kData) {
    for (int input = 0; input < kInputs; ++input) {
      registers.Set(kType + input, state::Word(kFirstTypes.at(At(input))));
      registers.Set(kSpan + input, state::Word(kUnitySpan));
    }
  }

  void Seed(Random& random) override {
    for (double& phase : phases_) phase = std::uniform_real_distribution<double>(0, 1)(random);
    // The wire opens some seconds after the start, whatever the seed.
    looseTime_ = kOpenTime + core::milliseconds(std::uniform_int_distribution<int>(0, 30000)(random));
    for (int input = 0; input < kInputs; ++input) Show(input, Signal(input));
  }

  void Live(core::Duration elapsed) override {
    const core::Duration conversion = registers.Get(kFlags).Has(kSpeedUp) ? kFastConversion : kConversion;
    sinceConversion_ += elapsed;
    for (; sinceConversion_ >= conversion; sinceConversion_ -= conversion) {
      time_ += conversion;
      MoveWire(conversion);
      for (int input = 0; input < kInputs; ++input) Convert(input);
    }
  }

  state::Word Read(state::Register reg) const override {
    if (reg == kStatus) return Status();
    if (reg >= kValue && reg < kValue + kInputs) return Corrected(reg - kValue);
    return registers.Get(reg);
  }

  void Restarted() override { sinceConversion_ = core::Duration::zero(); }

 private:
  const Range& RangeOf(int input) const {
    // A preset may be a type that there is not.
    const int type = registers.Get(kType + input).Unsigned();
    return kRanges.at(At(std::min(type, static_cast<int>(kRanges.size()) - 1)));
  }
  bool BurntOut(int input) const { return registers.Get(kStatus).Has(kBurnOut1 << input); }

  /// What the converter sees: an open wire pulls it to the upper end.
  int Measured(int input) const {
    return BurntOut(input) ? RangeOf(input).high : registers.Get(kValue + input).Signed();
  }

  state::Word Corrected(int input) const {
    const double gain = static_cast<double>(registers.Get(kSpan + input).Signed()) / kUnitySpan;
    return Rounded(Measured(input) * gain + registers.Get(kZero + input).Signed());
  }

  /// The over-ranges follow from the inputs; the world outside may set more of them, and opens the wires.
  state::Word Status() const {
    state::Word status = registers.Get(kStatus).And(kStatusBits);
    for (int input = 0; input < kInputs; ++input) {
      const Range& range = RangeOf(input);
      const int measured = Measured(input);
      if (measured < range.low || measured > range.high) status = status.Or(kOverRange1 << input);
    }
    return status;
  }

  double Signal(int input) const {
    const Wave& wave = kWaves.at(At(input));
    const Range& range = RangeOf(input);
    const double turns = std::chrono::duration<double>(time_) / std::chrono::duration<double>(wave.period);
    const double half = (range.high - range.low) / 2.0;
    return range.low + half * (1 + wave.swing * std::sin(2 * std::numbers::pi * (turns + phases_.at(At(input)))));
  }

  void MoveWire(core::Duration elapsed) {
    looseTime_ = (looseTime_ + elapsed) % kLoosePeriod;
    const unsigned burnOut = kBurnOut1 << kLooseInput;
    const state::Word status = registers.Get(kStatus);
    registers.Set(kStatus, looseTime_ < kOpenTime ? status.Or(burnOut) : status.And(~burnOut));
  }

  /// A filter takes in only its share of what is new: all at level 0, half of it at level 1, a quarter at level 2.
  void Convert(int input) {
    double filtered = filtered_.at(At(input));
    const state::Word shown = registers.Get(kValue + input);
    // From a value that was set meanwhile it goes on.
    if (Rounded(filtered) != shown) filtered = shown.Signed();
    const int level = std::min(registers.Get(kFilter + input).Unsigned(), kStrongestFilter);
    Show(input, filtered + (Signal(input) - filtered) / (1 << level));
  }

  void Show(int input, double filtered) {
    filtered_.at(At(input)) = filtered;
    registers.Set(kValue + input, Rounded(filtered));
  }

  std::array<double, kInputs> phases_{};
  std::array<double, kInputs> filtered_{};
  /// How long the waves have gone on.
  core::Duration time_{};
  core::Duration sinceConversion_{};
  /// Where the loose wire stands in its period.
  core::Duration looseTime_ = kOpenTime;
};

const Registration kJorun(kData.name, &Make<Jorun>);

}  // namespace

}  // namespace tarvo::simulator
