// Oswin: four resistance thermometers, each with a type, a filter, the units of its measure, and wires that add to it.
// It has no EEPROM images and no reset register: what is written is stored at once; the serial settings take effect
// when its supply goes off and on.

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

#include "simulator/model.h"

namespace tarvo::simulator {

namespace {

using namespace state::literals;

constexpr int kInputs = 4;

constexpr state::Register kIdentity = "40001"_reg;
// Bits 8 to 11 tell failed sensors, bits 12 to 15 channels that are not there. Only the world outside sets them, and
// the loose wire.
constexpr state::Register kStatus = "40002"_reg;
// The first of four each.
constexpr state::Register kMeasure = "40003"_reg;
constexpr state::Register kWire = "40016"_reg;     // resistance of one wire to the sensor, in milliohm
constexpr state::Register kAddress = "40035"_reg;  // high byte; bits 0 and 1 the parity
constexpr state::Register kBaud = "40036"_reg;     // high byte the code
constexpr state::Register kChannel = "40037"_reg;

constexpr unsigned kFailed1 = 0x0100;

// Of a channel's register. Bit 3 rejects 60 Hz in place of 50 Hz, which changes no register.
constexpr unsigned kFilterBits = 0x07;
constexpr unsigned kCompensated = 0x10;
constexpr unsigned kOhm = 0x20;
constexpr int kTypeShift = 6;
constexpr int kMostOfChannel = 0xFF;
constexpr int kStrongestFilter = 3;

const ModelData kData{
    .name = "oswin",
    .code = 0x16,
    .registers = {{.first = kIdentity, .last = kMeasure + (kInputs - 1), .writable = false},
                  {.first = kWire, .last = kWire + (kInputs - 1), .writable = false},
                  {.first = kAddress, .last = kAddress},
                  {.first = kBaud, .last = kBaud, .highest = 0x07FF},
                  {.first = kChannel, .last = kChannel + (kInputs - 1), .highest = kMostOfChannel}},
    .communication = kAddress,
    .flags = kAddress,
    .baud = kBaud,
    .delayMask = 0,
};

/// A type of sensor. Its resistance at t degrees is `atZero` * (1 + a * t + b * t * t) ohm; the smaller terms of the
/// standards are left out.
struct Sensor {
  double atZero;
  double a;
  double b;
  double lowest;  ///< degrees
  double highest;
  double unitsPerOhm;  ///< of a measure in ohm

  double ResistanceAt(double degrees) const { return atZero * (1 + degrees * (a + b * degrees)); }
  double DegreesAt(double resistance) const {
    const double root = a * a - 4 * b * (1 - resistance / atZero);
    return (std::sqrt(std::max(root, 0.0)) - a) / (2 * b);
  }
};
constexpr double kPlatinumA = 3.9083e-3;
constexpr double kPlatinumB = -5.775e-7;
constexpr std::array kSensors = {
    Sensor{100, kPlatinumA, kPlatinumB, -200, 850, 100}, Sensor{500, kPlatinumA, kPlatinumB, -200, 850, 10},
    Sensor{1000, kPlatinumA, kPlatinumB, -200, 850, 10}, Sensor{100, 5.485e-3, 6.65e-6, -60, 180, 100}};
constexpr double kUnitsPerDegree = 10;

/// How the channels are set at first: a PT100 with compensated wires, a filtered PT500, a PT1000 in ohm and an NI100.
constexpr std::array<unsigned, kInputs> kFirstChannels = {0x10, 0x41, 0xA0, 0xD2};
constexpr std::array<unsigned, kInputs> kFirstWires = {350, 820, 1500, 640};
constexpr unsigned kLongestWire = 3000;

/// How often the inputs are converted.
constexpr core::Duration kConversion = core::milliseconds(100);

/// What the sensors feel: a slow sine, in degrees.
struct Wave {
  double middle;
  double swing;
  core::Duration period;
};
constexpr std::array<Wave, kInputs> kWaves = {
    Wave{21, 4, std::chrono::seconds(60)}, Wave{-5, 30, std::chrono::seconds(45)},
    Wave{240, 180, std::chrono::seconds(90)}, Wave{70, 25, std::chrono::seconds(30)}};

/// The last input has a loose wire, open for the first part of each period.
constexpr int kLooseInput = kInputs - 1;
constexpr core::Duration kLoosePeriod = std::chrono::seconds(40);
constexpr core::Duration kOpenTime = std::chrono::seconds(5);

std::size_t At(int input) {
  return static_cast<std::size_t>(input);
}

class Oswin : public Model {
 public:
  Oswin() : Model(kData) {
    for (int input = 0; input < kInputs; ++input) {
      registers.Set(kChannel + input, state::Word(kFirstChannels.at(At(input))));
      registers.Set(kWire + input, state::Word(kFirstWires.at(At(input))));
    }
  }

  void Seed(Random& random) override {
    for (double& phase : phases_) phase = std::uniform_real_distribution<double>(0, 1)(random);
    // The wire opens some seconds after the start, whatever the seed.
    looseTime_ = kOpenTime + core::milliseconds(std::uniform_int_distribution<int>(0, 30000)(random));
    for (int input = 0; input < kInputs; ++input) {
      registers.Set(kWire + input, state::Word(std::uniform_int_distribution<unsigned>(100, kLongestWire)(random)));
    }
    SettleFilters();
    ShowInputs();
  }

  void Live(core::Duration elapsed) override {
    sinceConversion_ += elapsed;
    for (; sinceConversion_ >= kConversion; sinceConversion_ -= kConversion) {
      time_ += kConversion;
      MoveWire(kConversion);
      for (int input = 0; input < kInputs; ++input) Convert(input);
      ShowInputs();
    }
  }

  void Restarted() override {
    sinceConversion_ = core::Duration::zero();
    SettleFilters();
  }

 private:
  state::Word Channel(int input) const { return registers.Get(kChannel + input); }
  const Sensor& SensorAt(int input) const { return kSensors.at(At(Channel(input).Low() >> kTypeShift)); }

  /// What the sensor feels, and it can bear no more than its range.
  double Degrees(int input) const {
    const Wave& wave = kWaves.at(At(input));
    const double turns = std::chrono::duration<double>(time_) / std::chrono::duration<double>(wave.period);
    const double degrees = wave.middle + wave.swing * std::sin(2 * std::numbers::pi * (turns + phases_.at(At(input))));
    const Sensor& sensor = SensorAt(input);
    return std::clamp(degrees, sensor.lowest, sensor.highest);
  }

  void MoveWire(core::Duration elapsed) {
    looseTime_ = (looseTime_ + elapsed) % kLoosePeriod;
    const unsigned failed = kFailed1 << kLooseInput;
    const state::Word status = registers.Get(kStatus);
    registers.Set(kStatus, looseTime_ < kOpenTime ? status.Or(failed) : status.And(~failed));
  }

  /// A filter takes in only its share of what is new: all at level 0, half of it at level 1, a quarter at level 2.
  void Convert(int input) {
    const int level = std::min(Channel(input).And(kFilterBits).Low(), kStrongestFilter);
    double& filtered = filtered_.at(At(input));
    filtered += (Degrees(input) - filtered) / (1 << level);
  }

  void SettleFilters() {
    for (int input = 0; input < kInputs; ++input) filtered_.at(At(input)) = Degrees(input);
  }

  void ShowInputs() {
    for (int input = 0; input < kInputs; ++input) registers.Set(kMeasure + input, Measured(input));
  }

  /// In the channel's units. An open wire pulls the input to the upper end.
  state::Word Measured(int input) const {
    const Sensor& sensor = SensorAt(input);
    double resistance = sensor.ResistanceAt(sensor.highest);
    if (!registers.Get(kStatus).Has(kFailed1 << input)) {
      resistance = sensor.ResistanceAt(filtered_.at(At(input)));
      // There and back, unless the third wire tells how much it is.
      if (!Channel(input).Has(kCompensated)) resistance += 2 * registers.Get(kWire + input).Unsigned() / 1000.0;
    }
    const double measure =
        Channel(input).Has(kOhm) ? resistance * sensor.unitsPerOhm : sensor.DegreesAt(resistance) * kUnitsPerDegree;
    return state::Word(static_cast<unsigned>(std::lround(measure)));
  }

  std::array<double, kInputs> phases_{};
  std::array<double, kInputs> filtered_{};  ///< degrees
  /// How long the waves have gone on.
  core::Duration time_{};
  core::Duration sinceConversion_{};
  /// Where the loose wire stands in its period.
  core::Duration looseTime_ = kOpenTime;
};

const Registration kOswin(kData.name, &Make<Oswin>);

}  // namespace

}  // namespace tarvo::simulator
