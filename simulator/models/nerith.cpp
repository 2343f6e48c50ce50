// Nerith and Pellor: four and three RTD inputs. They have no EEPROM images and no reset register: what is written to a
// setting is stored at once; the serial ones take effect when the supply goes off and on.

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <numbers>

#include "simulator/model.h"

namespace tarvo::simulator {

namespace {

using namespace state::literals;

constexpr int kMostInputs = 4;
constexpr int kPellorInputs = 3;

constexpr state::Register kIdentity = "40001"_reg;
// Bits 0 to 3 are the failed channels, bits 4 to 7 the broken sensors; the world outside sets both.
constexpr state::Register kStatus = "40002"_reg;
// The first of four, also where there are three inputs: a master reads them in one block.
constexpr state::Register kValue = "40003"_reg;
constexpr state::Register kSerial = "40035"_reg;  // low byte the address, then the parity and the baud code
constexpr state::Register kSystem = "40040"_reg;  // units, digits, coefficients
constexpr state::Register kSensor = "40062"_reg;  // of the first input: dump factor and sensor
constexpr state::Register kRange = "40063"_reg;   // of the first input: range and where a broken sensor points
constexpr int kInputDistance = 16;

constexpr unsigned kFailed1 = 0x01;
constexpr unsigned kBroken1 = 0x10;

constexpr unsigned kAddressBits = 0x00FF;
constexpr unsigned kParityBits = 0x0300;
constexpr int kEven = 1;
constexpr int kOdd = 2;
constexpr unsigned kBaudBits = 0x1C00;
constexpr int kBaudUnit = 1024;

constexpr unsigned kUnitBits = 0x07;
constexpr unsigned kCelsius = 1;
constexpr unsigned kDigitBits = 0x18;
constexpr unsigned kOneDigit = 0x08;
constexpr unsigned kDin = 0x20;
constexpr int kSystemBits = 0x3F;

constexpr unsigned kDumpBits = 0x0007;
constexpr int kSensorBits = 0x0707;
constexpr unsigned kNickel = 0x0300;  ///< the code of an NI100 in either layout
constexpr unsigned kDownScale = 0x4000;
constexpr int kRangeBits = 0x7000;

/// From this release on the sensor has two bits, and the third one asks for a resistance.
constexpr int kResistanceRelease = 18;
constexpr unsigned kOldSensorBits = 0x0700;
constexpr unsigned kNewSensorBits = 0x0300;
constexpr unsigned kResistance = 0x0400;

/// In degrees Celsius.
struct Span {
  double low;
  double high;
};
constexpr std::array kPlatinumSpans = {Span{-200, 400}, Span{-200, 850}, Span{-200, 200}};
constexpr Span kNickelSpan = {-60, 180};

/// Of the resistance of platinum over its temperature.
struct Coefficients {
  double a;
  double b;
  double c;  ///< below freezing only
};
constexpr Coefficients kDinCoefficients = {3.9083e-3, -5.775e-7, -4.183e-12};
constexpr Coefficients kAnsiCoefficients = {3.9692e-3, -5.8495e-7, -4.2325e-12};

ModelData Data(std::string_view name, int code, int inputs) {
  ModelData data{.name = name,
                 .code = code,
                 .registers = {{.first = kIdentity, .last = kValue + (kMostInputs - 1), .writable = false},
                               {.first = kSerial, .last = kSerial},
                               {.first = kSystem, .last = kSystem, .highest = kSystemBits}},
                 .communication = kSerial,
                 .flags = kSerial,
                 .delayMask = 0};
  for (int input = 0; input < inputs; ++input) {
    const state::Register sensor = kSensor + kInputDistance * input;
    const state::Register range = kRange + kInputDistance * input;
    data.registers.push_back({.first = sensor, .last = sensor, .highest = kSensorBits});
    data.registers.push_back({.first = range, .last = range, .highest = kRangeBits});
  }
  return data;
}

const ModelData kNerithData = Data("nerith", 0x08, kMostInputs);
const ModelData kPellorData = Data("pellor", 0x09, kPellorInputs);

constexpr core::Duration kConversion = core::milliseconds(100);

/// What lies at an input: a slow sine, in degrees Celsius.
struct Wave {
  double middle;
  double swing;
  core::Duration period;
};
constexpr std::array<Wave, kMostInputs> kWaves = {
    Wave{25, 15, std::chrono::seconds(60)}, Wave{80, 40, std::chrono::seconds(45)},
    Wave{-20, 30, std::chrono::seconds(30)}, Wave{50, 10, std::chrono::seconds(20)}};

/// The last input has a loose wire, open for the first part of each period.
constexpr core::Duration kLoosePeriod = std::chrono::seconds(40);
constexpr core::Duration kOpenTime = std::chrono::seconds(5);

/// Within 16 bits; a half goes away from 0.
state::Word Rounded(double value) {
  using Limits = std::numeric_limits<std::int16_t>;
  const double fitting = std::clamp<double>(value, Limits::lowest(), Limits::max());
  return state::Word(static_cast<unsigned>(std::lround(fitting)));
}

class Rtd : public Model {
 public:
  Rtd(const ModelData& data, int inputs) : Model(data), inputs_(inputs) {
    registers.Set(kSystem, state::Word(kDin | kOneDigit | kCelsius));
  }

  void Seed(Random& random) override {
    for (double& phase : phases_) phase = std::uniform_real_distribution<double>(0, 1)(random);
    // The wire opens some seconds after the start, whatever the seed.
    looseTime_ = kOpenTime + core::milliseconds(std::uniform_int_distribution<int>(0, 30000)(random));
    registers.Set(At(kSensor, inputs_ - 1), state::Word(kNickel));
    for (int input = 0; input < inputs_; ++input) Show(input, Signal(input));
  }

  void Live(core::Duration elapsed) override {
    sinceConversion_ += elapsed;
    for (; sinceConversion_ >= kConversion; sinceConversion_ -= kConversion) {
      time_ += kConversion;
      MoveWire();
      for (int input = 0; input < inputs_; ++input) Convert(input);
    }
  }

  state::Word Read(state::Register reg) const override {
    if (reg < kValue || reg >= kValue + inputs_) return registers.Get(reg);
    const int input = reg - kValue;
    if (!Broken(input)) return registers.Get(reg);
    const Span& span = SpanOf(input);
    return InUnits(input, registers.Get(At(kRange, input)).Has(kDownScale) ? span.low : span.high);
  }

  void Restarted() override { sinceConversion_ = core::Duration::zero(); }

  Setting GetSetting() const override {
    Setting setting;
    const state::Word serial = registers.Get(kSerial);
    if (serial.Low() != 0) setting.address = serial.Low();
    setting.line.baud = BaudOf(serial.And(kBaudBits).Unsigned() / kBaudUnit);
    const int parity = serial.And(kParityBits).High();
    if (parity == kEven) setting.line.parity = bus::Parity::kEven;
    if (parity == kOdd) setting.line.parity = bus::Parity::kOdd;
    return setting;
  }

  void SetSetting(const Setting& setting) override {
    int parity = 0;
    if (setting.line.parity == bus::Parity::kEven) parity = kEven;
    if (setting.line.parity == bus::Parity::kOdd) parity = kOdd;
    const int word = CodeOf(setting.line.baud) * kBaudUnit | parity << 8 | setting.address;
    const state::Word others = registers.Get(kSerial).And(~(kBaudBits | kParityBits | kAddressBits));
    registers.Set(kSerial, others.Or(static_cast<unsigned>(word)));
  }

 private:
  /// A setting of an input by that of the first one.
  static state::Register At(state::Register first, int input) { return first + kInputDistance * input; }
  static std::size_t Index(int input) { return static_cast<std::size_t>(input); }

  bool New() const { return registers.Get(kIdentity).Low() >= kResistanceRelease; }
  bool Failed(int input) const { return registers.Get(kStatus).Has(kFailed1 << input); }
  bool Broken(int input) const { return registers.Get(kStatus).Has(kBroken1 << input); }
  int SensorOf(int input) const {
    return registers.Get(At(kSensor, input)).And(New() ? kNewSensorBits : kOldSensorBits).High();
  }
  bool IsNickel(int input) const { return SensorOf(input) == 3; }
  bool ShowsResistance(int input) const { return New() && registers.Get(At(kSensor, input)).Has(kResistance); }

  const Span& SpanOf(int input) const {
    if (IsNickel(input)) return kNickelSpan;
    const int range = registers.Get(At(kRange, input)).Unsigned() >> 12 & 3;
    return kPlatinumSpans.at(std::min(Index(range), kPlatinumSpans.size() - 1));
  }

  /// In ohms.
  double ResistanceAt(int input, double celsius) const {
    if (IsNickel(input)) {
      return 100 * (1 + 5.485e-3 * celsius + 6.65e-6 * std::pow(celsius, 2) + 2.805e-11 * std::pow(celsius, 4));
    }
    const Coefficients& k = registers.Get(kSystem).Has(kDin) ? kDinCoefficients : kAnsiCoefficients;
    double ratio = 1 + k.a * celsius + k.b * std::pow(celsius, 2);
    if (celsius < 0) ratio += k.c * (celsius - 100) * std::pow(celsius, 3);
    // Only the older layout has these two; a code that there is not measures as a PT100.
    if (!New() && SensorOf(input) == 1) return 500 * ratio;
    if (!New() && SensorOf(input) == 2) return 1000 * ratio;
    return 100 * ratio;
  }

  double TemperatureInUnits(double celsius) const {
    constexpr double kFreezing = 273.15;
    constexpr double kFahrenheit = 1.8;
    switch (registers.Get(kSystem).And(kUnitBits).Low()) {
      case 0:
        return celsius + kFreezing;
      case 2:
        return celsius * kFahrenheit + 32;
      case 3:
        return (celsius + kFreezing) * kFahrenheit;
      default:
        return celsius;
    }
  }

  /// What a register tells of an input at that temperature.
  state::Word InUnits(int input, double celsius) const {
    const double value = ShowsResistance(input) ? ResistanceAt(input, celsius) : TemperatureInUnits(celsius);
    const int digits = std::min(registers.Get(kSystem).And(kDigitBits).Low() >> 3, 2);
    return Rounded(value * std::pow(10, digits));
  }

  double Signal(int input) const {
    const Wave& wave = kWaves.at(Index(input));
    const double turns = std::chrono::duration<double>(time_) / std::chrono::duration<double>(wave.period);
    return wave.middle + wave.swing * std::sin(2 * std::numbers::pi * (turns + phases_.at(Index(input))));
  }

  /// Touches the status only when the wire opens or closes, so that an order about it lasts until then.
  void MoveWire() {
    const bool wasOpen = looseTime_ < kOpenTime;
    looseTime_ = (looseTime_ + kConversion) % kLoosePeriod;
    const bool open = looseTime_ < kOpenTime;
    if (open == wasOpen) return;
    // The last input's wire is the loose one.
    const unsigned broken = kBroken1 << static_cast<unsigned>(inputs_ - 1);
    const state::Word status = registers.Get(kStatus);
    registers.Set(kStatus, open ? status.Or(broken) : status.And(~broken));
  }

  /// A dump factor takes in only its share of what is new: all at 0, half of it at 1, a quarter at 2. A failed channel
  /// stays where it is.
  void Convert(int input) {
    if (Failed(input)) return;
    const double filtered = filtered_.at(Index(input));
    const int factor = registers.Get(At(kSensor, input)).And(kDumpBits).Low();
    Show(input, filtered + (Signal(input) - filtered) / (1 << factor));
  }

  void Show(int input, double filtered) {
    filtered_.at(Index(input)) = filtered;
    registers.Set(kValue + input, InUnits(input, filtered));
  }

  int inputs_;
  std::array<double, kMostInputs> phases_{};
  std::array<double, kMostInputs> filtered_{};  // degrees Celsius
  /// How long the waves have gone on.
  core::Duration time_{};
  core::Duration sinceConversion_{};
  /// Where the loose wire stands in its period.
  core::Duration looseTime_ = kOpenTime;
};

class Nerith : public Rtd {
 public:
  Nerith() : Rtd(kNerithData, kMostInputs) {}
};

class Pellor : public Rtd {
 public:
  Pellor() : Rtd(kPellorData, kPellorInputs) {}
};

const Registration kNerith(kNerithData.name, &Make<Nerith>);
const Registration kPellor(kPellorData.name, &Make<Pellor>);

}  // namespace

}  // namespace tarvo::simulator
