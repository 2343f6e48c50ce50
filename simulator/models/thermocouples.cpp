#include "simulator/models/thermocouples.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>
#include <vector>

namespace tarvo::simulator {

namespace {

using namespace state::literals;

// The first of four each.
constexpr state::Register kType = "40004"_reg;
constexpr state::Register kFilter = "40008"_reg;
// Read, bits 8 to 11 are the over-ranges, bits 12 to 15 the burn-outs; a 1 written restarts the module.
constexpr state::Register kStatus = "40012"_reg;
// Held here as it comes in, before span and zero.
constexpr state::Register kValue = "40013"_reg;
constexpr state::Register kZero = "40021"_reg;
constexpr state::Register kSpan = "40025"_reg;
constexpr int kToImage = 64;

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

/// A TC-J, a TC-K, a TC-T and millivolts.
constexpr std::array<unsigned, 4> kFirstTypes = {1, 2, 5, 0};

/// How often the inputs are converted, as they are and sped up.
constexpr core::Duration kConversion = core::milliseconds(100);
constexpr core::Duration kFastConversion = core::milliseconds(25);

/// What lies at an input: a slow sine about the middle of its range. A swing of 1 goes from end to end.
struct Wave {
  double swing;
  core::Duration period;
};
constexpr std::array kWaves = {Wave{0.6, std::chrono::seconds(60)}, Wave{0.9, std::chrono::seconds(45)},
                               Wave{1.03, std::chrono::seconds(30)}, Wave{0.5, std::chrono::seconds(20)}};

constexpr int kLooseInput = 3;
constexpr core::Duration kLoosePeriod = std::chrono::seconds(40);

std::size_t At(int input) {
  return static_cast<std::size_t>(input);
}

/// Within 16 bits; a half goes away from 0.
state::Word Rounded(double value) {
  using Limits = std::numeric_limits<std::int16_t>;
  const double fitting = std::clamp<double>(value, Limits::lowest(), Limits::max());
  return state::Word(static_cast<unsigned>(std::lround(fitting)));
}

/// A preset may be a type that there is not.
const Range& RangeOf(int type) {
  return kRanges.at(At(std::min(type, static_cast<int>(kRanges.size()) - 1)));
}

}  // namespace

ModelData Thermocouples::DataOf(std::string_view name, int code) {
  std::vector<ImagePair> images;
  for (state::Register live = kCommunication; live < kStatus; live = live + 1) {
    images.push_back({live, live + kToImage});
  }
  for (state::Register live = kZero; live < kSpan + kInputs; live = live + 1) {
    images.push_back({live, live + kToImage});
  }
  return {
      .name = name,
      .code = code,
      .registers = {{.first = "40001"_reg, .last = "40001"_reg, .writable = false},
                    {.first = kCommunication, .last = kFlags},
                    {.first = kType, .last = kType + (kInputs - 1), .highest = static_cast<int>(kRanges.size()) - 1},
                    {.first = kFilter, .last = kFilter + (kInputs - 1), .highest = kStrongestFilter},
                    {.first = kStatus, .last = kStatus},
                    {.first = kValue, .last = kValue + (kInputs - 1), .writable = false},
                    {.first = kZero, .last = kSpan + (kInputs - 1)},
                    {.first = kCommunication + kToImage, .last = kFilter + (kInputs - 1 + kToImage)},
                    {.first = kZero + kToImage, .last = kSpan + (kInputs - 1 + kToImage)}},
      .images = images,
      .communication = kCommunication,
      .flags = kFlags,
      .reset = kStatus,
  };
}

Thermocouples::Thermocouples(const ModelData& data) : Model(data) {
  for (int input = 0; input < kInputs; ++input) {
    registers.Set(kType + input, state::Word(kFirstTypes.at(At(input))));
    registers.Set(kSpan + input, state::Word(kUnitySpan));
  }
}

void Thermocouples::Seed(Random& random) {
  for (double& phase : phases_) phase = std::uniform_real_distribution<double>(0, 1)(random);
  // The wire opens some seconds after the start, whatever the seed.
  looseTime_ = kOpenTime + core::milliseconds(std::uniform_int_distribution<int>(0, 30000)(random));
  for (int input = 0; input < kInputs; ++input) Show(input, Signal(input));
}

void Thermocouples::Live(core::Duration elapsed) {
  const core::Duration conversion = registers.Get(kFlags).Has(kSpeedUp) ? kFastConversion : kConversion;
  sinceConversion_ += elapsed;
  for (; sinceConversion_ >= conversion; sinceConversion_ -= conversion) {
    time_ += conversion;
    MoveWire(conversion);
    for (int input = 0; input < kInputs; ++input) Convert(input);
  }
}

state::Word Thermocouples::Read(state::Register reg) const {
  if (reg == kStatus) return Status();
  if (reg >= kValue && reg < kValue + kInputs) return Corrected(reg - kValue);
  return registers.Get(reg);
}

void Thermocouples::Restarted() {
  sinceConversion_ = core::Duration::zero();
}

bool Thermocouples::BurntOut(int input) const {
  return registers.Get(kStatus).Has(kBurnOut1 << input);
}

int Thermocouples::TypeOf(int input) const {
  return registers.Get(kType + input).Unsigned();
}

/// What the converter sees: an open wire pulls it to the upper end.
int Thermocouples::Measured(int input) const {
  return BurntOut(input) ? RangeOf(TypeOf(input)).high : registers.Get(kValue + input).Signed();
}

state::Word Thermocouples::Corrected(int input) const {
  const double gain = static_cast<double>(registers.Get(kSpan + input).Signed()) / kUnitySpan;
  return Rounded(Measured(input) * gain + registers.Get(kZero + input).Signed());
}

/// The over-ranges follow from the inputs; the world outside may set more of them, and opens the wires.
state::Word Thermocouples::Status() const {
  state::Word status = registers.Get(kStatus).And(kStatusBits);
  for (int input = 0; input < kInputs; ++input) {
    const Range& range = RangeOf(TypeOf(input));
    const int measured = Measured(input);
    if (measured < range.low || measured > range.high) status = status.Or(kOverRange1 << input);
  }
  return status;
}

double Thermocouples::Signal(int input) const {
  const Wave& wave = kWaves.at(At(input));
  const Range& range = RangeOf(TypeOf(input));
  const double turns = std::chrono::duration<double>(time_) / std::chrono::duration<double>(wave.period);
  const double half = (range.high - range.low) / 2.0;
  return range.low + half * (1 + wave.swing * std::sin(2 * std::numbers::pi * (turns + phases_.at(At(input)))));
}

void Thermocouples::MoveWire(core::Duration elapsed) {
  looseTime_ = (looseTime_ + elapsed) % kLoosePeriod;
  const unsigned burnOut = kBurnOut1 << kLooseInput;
  const state::Word status = registers.Get(kStatus);
  registers.Set(kStatus, looseTime_ < kOpenTime ? status.Or(burnOut) : status.And(~burnOut));
}

/// A filter takes in only its share of what is new: all at level 0, half of it at level 1, a quarter at level 2.
void Thermocouples::Convert(int input) {
  double filtered = filtered_.at(At(input));
  const state::Word shown = registers.Get(kValue + input);
  // From a value that was set meanwhile it goes on.
  if (Rounded(filtered) != shown) filtered = shown.Signed();
  const int level = std::min(registers.Get(kFilter + input).Unsigned(), kStrongestFilter);
  Show(input, filtered + (Signal(input) - filtered) / (1 << level));
}

void Thermocouples::Show(int input, double filtered) {
  filtered_.at(At(input)) = filtered;
  registers.Set(kValue + input, Rounded(filtered));
}

}  // namespace tarvo::simulator
