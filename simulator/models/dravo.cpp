// Dravo: one measured input of thirteen kinds, shown as a share of its scale and in the user's own.

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <numbers>
#include <optional>

#include "simulator/model.h"

namespace tarvo::simulator {

namespace {

using namespace state::literals;

constexpr state::Register kInput = "40002"_reg;  // high byte the kind, from 1 on; bits 0 to 2 the filter
constexpr state::Register kMeasureFull = "40003"_reg;
constexpr state::Register kMeasureInit = "40004"_reg;
constexpr state::Register kUserFull = "40005"_reg;
constexpr state::Register kUserInit = "40006"_reg;
constexpr state::Register kSpan = "40007"_reg;  // ten thousandths
constexpr state::Register kZero = "40008"_reg;  // ten thousandths of the scale
constexpr state::Register kCommunication = "40009"_reg;
constexpr state::Register kFlags = "40010"_reg;
constexpr state::Register kUserValue = "40011"_reg;
constexpr state::Register kMeasured = "40012"_reg;  // ten thousandths of the scale
// Read, the status; a 1 written restarts the module.
constexpr state::Register kStatus = "40013"_reg;

// A third flag of the input, 4-wire reading, only takes the resistance of the wires away: nothing to show here.
constexpr unsigned kSquareRoot = 0x0100;
constexpr unsigned kPositiveBurnOut = 0x0200;

// Of the status.
constexpr unsigned kWrongData = 0x0100;
constexpr unsigned kOverflow = 0x0200;
constexpr unsigned kUnderflow = 0x0400;
constexpr unsigned kBurnOut = 0x0800;
/// Burn-out, EEPROM and converter: only the world outside brings these about.
constexpr unsigned kHardware = 0x3800;

constexpr int kWhole = 10000;
constexpr int kLargestZero = 1000;
/// How far the converter reads beyond either end of the scale, and where a broken sensor lies.
constexpr double kMargin = 0.05;

/// What can lie at an input of each kind, in the unit of its scale.
struct Signal {
  int lowest;
  int highest;
};
constexpr std::array<Signal, 13> kSignals = {{{0, 10000},
                                              {0, 15000},
                                              {0, 20000},
                                              {-200, 600},
                                              {-60, 180},
                                              {-200, 1000},
                                              {-250, 1200},
                                              {0, 1750},
                                              {0, 1750},
                                              {-200, 400},
                                              {0, 1800},
                                              {-200, 800},
                                              {-200, 1300}}};
/// Time constants of the filters.
constexpr std::array<core::Duration, 7> kFilters = {
    std::chrono::seconds(0),  std::chrono::seconds(1),  std::chrono::seconds(2), std::chrono::seconds(5),
    std::chrono::seconds(10), std::chrono::seconds(20), std::chrono::seconds(60)};

/// Each of 40002 to 40010 has its stored copy 64 above.
std::vector<ImagePair> Images() {
  std::vector<ImagePair> images;
  for (state::Register live = kInput; live <= kFlags; live = live + 1) images.push_back({live, live + 64});
  return images;
}

const ModelData kData{
    .name = "dravo",
    .code = 0x03,
    .registers = {{.first = "40001"_reg, .last = "40001"_reg, .writable = false},
                  {.first = kInput, .last = kUserInit},
                  {.first = kSpan, .last = kSpan, .lowest = 9000, .highest = 11000},
                  {.first = kZero, .last = kFlags},
                  {.first = kUserValue, .last = kMeasured, .writable = false},
                  {.first = kStatus, .last = kStatus},
                  {.first = "40066"_reg, .last = "40074"_reg}},
    .images = Images(),
    .communication = kCommunication,
    .flags = kFlags,
    .reset = kStatus,
};

constexpr core::Duration kConversion = core::milliseconds(100);
/// The input goes up and down like a sine, a little beyond both ends of what its kind has.
constexpr core::Duration kPeriod = std::chrono::seconds(40);
constexpr double kSwing = 0.52;

class Dravo : public Model {
 public:
  Dravo() : Model(kData) {
    registers.Set(kInput, state::Word(0x0100));
    registers.Set(kMeasureFull, state::Word(kWhole));
    registers.Set(kUserFull, state::Word(kWhole));
    registers.Set(kSpan, state::Word(kWhole));
  }

  void Seed(Random& random) override {
    phase_ = std::uniform_real_distribution<double>(0, 1)(random);
    Convert();
  }

  void Live(core::Duration elapsed) override {
    sinceConversion_ += elapsed;
    for (; sinceConversion_ >= kConversion; sinceConversion_ -= kConversion) {
      time_ += kConversion;
      Convert();
    }
  }

  void Restarted() override {
    filtered_.reset();
    sinceConversion_ = core::Duration::zero();
  }

 private:
  int Signed(state::Register reg) const { return registers.Get(reg).Signed(); }
  bool Flag(unsigned mask) const { return registers.Get(kFlags).Has(mask); }
  /// From 0 on, whether it exists or not.
  std::size_t Kind() const { return static_cast<std::size_t>(registers.Get(kInput).High()) - 1; }
  std::size_t Filter() const { return static_cast<std::size_t>(registers.Get(kInput).And(0x07).Low()); }

  /// False for settings that nothing can be measured by.
  bool CanMeasure() const {
    return Kind() < kSignals.size() && Filter() < kFilters.size() && Signed(kMeasureFull) != Signed(kMeasureInit) &&
           std::abs(Signed(kZero)) <= kLargestZero;
  }

  void Convert() {
    auto status = static_cast<unsigned>(registers.Get(kStatus).And(kHardware).Unsigned());
    if (CanMeasure()) {
      const double share = Share();
      if (share > 1) status |= kOverflow;
      if (share < 0) status |= kUnderflow;
      Show(std::clamp(share, -kMargin, 1 + kMargin));
    } else {
      status |= kWrongData;
    }
    registers.Set(kStatus, state::Word(status));
  }

  /// What lies at the input, as a share of the measure's scale: 0 at its start, 1 at its full scale.
  double Share() {
    if (registers.Get(kStatus).Has(kBurnOut)) {
      filtered_.reset();
      return Flag(kPositiveBurnOut) ? 1 + kMargin : -kMargin;
    }
    const Signal& signal = kSignals.at(Kind());
    const double value = signal.lowest + Filtered() * (signal.highest - signal.lowest);
    const double share = (value - Signed(kMeasureInit)) / (Signed(kMeasureFull) - Signed(kMeasureInit));
    const double calibrated = (share * registers.Get(kSpan).Unsigned() + Signed(kZero)) / kWhole;
    return Flag(kSquareRoot) && calibrated > 0 ? std::sqrt(calibrated) : calibrated;
  }

  /// The wave from 0 to 1, through a low pass.
  double Filtered() {
    const double turns = std::chrono::duration<double>(time_) / std::chrono::duration<double>(kPeriod);
    const double wave = 0.5 + kSwing * std::sin(2 * std::numbers::pi * (turns + phase_));
    const double before = filtered_.value_or(wave);
    const std::chrono::duration<double> step = kConversion;
    filtered_ = before + (wave - before) * (step / (step + kFilters.at(Filter())));
    return *filtered_;
  }

  void Show(double share) {
    Set(kMeasured, share * kWhole);
    Set(kUserValue, Signed(kUserInit) + share * (Signed(kUserFull) - Signed(kUserInit)));
  }

  void Set(state::Register reg, double value) {
    using Limits = std::numeric_limits<std::int16_t>;
    const long whole = std::clamp<long>(std::lround(value), Limits::lowest(), Limits::max());
    registers.Set(reg, state::Word(static_cast<unsigned>(whole)));
  }

  double phase_ = 0;
  std::optional<double> filtered_;
  /// How long the wave has gone on.
  core::Duration time_{};
  core::Duration sinceConversion_{};
};

const Registration kDravo(kData.name, &Make<Dravo>);

}  // namespace

}  // namespace tarvo::simulator
