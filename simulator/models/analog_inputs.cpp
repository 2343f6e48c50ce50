#include "simulator/models/analog_inputs.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>
#include <vector>

namespace tarvo::simulator {

namespace {

using namespace state::literals;

// The first of four each.
constexpr state::Register kFilter = "40004"_reg;
constexpr state::Register kFullScale = "40008"_reg;
constexpr state::Register kStartScale = "40012"_reg;
// Read, bits 8 to 15 are over- and underflow of input 1, of input 2 and so on; a 1 written restarts the module.
constexpr state::Register kStatus = "40016"_reg;
constexpr state::Register kScaled = "40017"_reg;
constexpr state::Register kRaw = "40021"_reg;
constexpr int kToImage = 64;

constexpr unsigned kSpeedUp = 0x02;
constexpr int kStrongestFilter = 6;
/// Counts of the nominal range, to either side.
constexpr int kRange = 10000;

/// How often the inputs are converted, as they are and sped up.
constexpr core::Duration kConversion = core::milliseconds(100);
constexpr core::Duration kFastConversion = core::milliseconds(25);

/// What lies at an input: a sine about 0 that goes a little beyond the range on both sides.
struct Wave {
  int swing;
  core::Duration period;
};
constexpr std::array kWaves = {Wave{10600, std::chrono::seconds(20)}, Wave{10400, std::chrono::seconds(30)},
                               Wave{10300, std::chrono::seconds(45)}, Wave{10200, std::chrono::seconds(70)}};

std::size_t At(int input) {
  return static_cast<std::size_t>(input);
}

/// Each setting has its stored copy.
std::vector<ImagePair> Images() {
  std::vector<ImagePair> images;
  images.reserve(static_cast<std::size_t>(kStatus - AnalogInputs::kCommunication));
  for (state::Register live = AnalogInputs::kCommunication; live < kStatus; live = live + 1) {
    images.push_back({live, live + kToImage});
  }
  return images;
}

}  // namespace

ModelData AnalogInputs::DataOf(std::string_view name, int code) {
  return {
      .name = name,
      .code = code,
      .registers = {{.first = "40001"_reg, .last = "40001"_reg, .writable = false},
                    {.first = kCommunication, .last = kFlags},
                    {.first = kFilter, .last = kFilter + (kInputs - 1), .highest = kStrongestFilter},
                    {.first = kFullScale, .last = kStatus},
                    {.first = kScaled, .last = kRaw + (kInputs - 1), .writable = false},
                    {.first = kCommunication + kToImage, .last = kStartScale + (kInputs - 1 + kToImage)}},
      .images = Images(),
      .communication = kCommunication,
      .flags = kFlags,
      .reset = kStatus,
  };
}

AnalogInputs::AnalogInputs(const ModelData& data) : Model(data) {
  for (int input = 0; input < kInputs; ++input) registers.Set(kFullScale + input, state::Word(kRange));
}

void AnalogInputs::Seed(Random& random) {
  for (double& phase : phases_) phase = std::uniform_real_distribution<double>(0, 1)(random);
  for (int input = 0; input < kInputs; ++input) registers.Set(kRaw + input, Signal(input));
  SettleFilters();
  ShowInputs();
}

void AnalogInputs::Live(core::Duration elapsed) {
  const core::Duration conversion = registers.Get(kFlags).Has(kSpeedUp) ? kFastConversion : kConversion;
  sinceConversion_ += elapsed;
  for (; sinceConversion_ >= conversion; sinceConversion_ -= conversion) {
    time_ += conversion;
    Convert();
  }
}

void AnalogInputs::Restarted() {
  sinceConversion_ = core::Duration::zero();
  SettleFilters();
  ShowInputs();
}

state::Word AnalogInputs::Signal(int input) const {
  const Wave& wave = kWaves.at(At(input));
  const double turns = std::chrono::duration<double>(time_) / std::chrono::duration<double>(wave.period);
  const double signal = wave.swing * std::sin(2 * std::numbers::pi * (turns + phases_.at(At(input))));
  return state::Word(static_cast<unsigned>(std::lround(signal)));
}

/// A filter takes in only its share of what is new: all at level 0, half of it at level 1, a quarter at level 2.
void AnalogInputs::Convert() {
  for (int input = 0; input < kInputs; ++input) {
    const state::Word raw = Signal(input);
    registers.Set(kRaw + input, raw);
    const int level = std::min(registers.Get(kFilter + input).Unsigned(), kStrongestFilter);
    double& filtered = filtered_.at(At(input));
    filtered += (raw.Signed() - filtered) / (1 << level);
  }
  ShowInputs();
}

void AnalogInputs::SettleFilters() {
  for (int input = 0; input < kInputs; ++input) filtered_.at(At(input)) = registers.Get(kRaw + input).Signed();
}

/// Scaled values and status follow from what was converted.
void AnalogInputs::ShowInputs() {
  unsigned status = 0;
  for (int input = 0; input < kInputs; ++input) {
    registers.Set(kScaled + input, Scaled(input));
    const int raw = registers.Get(kRaw + input).Signed();
    const unsigned overflow = 0x100U << 2 * input;
    if (raw > kRange) status |= overflow;
    if (raw < -kRange) status |= overflow << 1;
  }
  registers.Set(kStatus, state::Word(status));
}

/// The start scale stands for 0 counts, the full scale for the end of the range.
state::Word AnalogInputs::Scaled(int input) const {
  const int start = registers.Get(kStartScale + input).Signed();
  const int full = registers.Get(kFullScale + input).Signed();
  const double scaled = start + filtered_.at(At(input)) * (full - start) / kRange;
  using Limits = std::numeric_limits<std::int16_t>;
  return state::Word(static_cast<unsigned>(std::clamp<long>(std::lround(scaled), Limits::lowest(), Limits::max())));
}

}  // namespace tarvo::simulator
