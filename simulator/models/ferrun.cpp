// Ferrun: a PID controller with one measured input and one analog output, and the process that hangs on them: first
// order with a dead time, a load that comes and goes, a little noise.

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

#include "simulator/model.h"

namespace tarvo::simulator {

namespace {

using namespace state::literals;

constexpr state::Register kInput = "40002"_reg;         // high byte the type, from 1 on; low byte the filter
constexpr state::Register kMeasureFull = "40003"_reg;   // in the unit of the input
constexpr state::Register kMeasureStart = "40004"_reg;  // the same
constexpr state::Register kUserFull = "40005"_reg;
constexpr state::Register kUserStart = "40006"_reg;
constexpr state::Register kSpan = "40007"_reg;  // 10000 is 1
constexpr state::Register kZero = "40008"_reg;
constexpr state::Register kCommunication = "40009"_reg;
constexpr state::Register kSafeTime = "40010"_reg;
constexpr state::Register kFlags = "40011"_reg;
constexpr state::Register kSetpoint = "40012"_reg;
constexpr state::Register kGain = "40013"_reg;
constexpr state::Register kIntegralTime = "40014"_reg;
constexpr state::Register kDerivativeTime = "40015"_reg;
constexpr state::Register kManualReset = "40016"_reg;
constexpr state::Register kOutputMax = "40017"_reg;
constexpr state::Register kOutputMin = "40018"_reg;
constexpr state::Register kOutput = "40019"_reg;
constexpr state::Register kUserValue = "40020"_reg;
constexpr state::Register kMeasured = "40021"_reg;
constexpr state::Register kStatus = "40022"_reg;  // written, it is the reset
constexpr state::Register kImages = "40066"_reg;  // of 40002 to 40018
constexpr state::Register kOutputStart = "40083"_reg;
constexpr int kImageCount = 17;

// Flags that change what the registers show. "Output 4..20mA" and "4 wire PT100" only change the terminals, and "Reset
// on Tx" starts the communication timer milliseconds after the request has started it anyway.
constexpr unsigned kSquareRoot = 0x0100;
constexpr unsigned kPositiveBurnOut = 0x0200;
constexpr unsigned kAuto = 0x0400;
constexpr unsigned kInverted = 0x0800;
constexpr unsigned kReload = 0x1000;

// Bits of the status. The others are faults of the hardware: they stay as the world outside sets them.
constexpr unsigned kDataError = 0x0100;
constexpr unsigned kInputOverflow = 0x0200;
constexpr unsigned kInputUnderflow = 0x0400;
constexpr unsigned kBurnOut = 0x0800;
constexpr unsigned kOutputOverflow = 0x4000;
constexpr unsigned kOutputUnderflow = 0x8000;
constexpr unsigned kOwnBits = kDataError | kInputOverflow | kInputUnderflow | kOutputOverflow | kOutputUnderflow;

constexpr double kFull = 10000;     // of set-point, measured value and output
constexpr double kOverRange = 500;  // how far beyond its ends the input still measures
constexpr double kPerGain = 0.01;   // no register tells the units of gain and times: taken as hundredths
constexpr double kPerTime = 0.1;    // and tenths of a second
constexpr double kStepSeconds = 0.05;

constexpr core::Duration kStep = core::milliseconds(50);
/// What the safe time counts. No register tells its unit either.
constexpr core::Duration kSafeTimeUnit = core::milliseconds(100);

constexpr std::array kFilterSeconds = {0.0, 1.0, 2.0, 5.0, 10.0, 20.0, 60.0};

/// What the sensors of types 1 to 3 give while the process is at its full value. The others measure temperatures: for
/// them the scale is fixed, whatever the registers say.
constexpr std::array kSensorFull = {10000.0, 15000.0, 20000.0};
constexpr std::size_t kTypes = 13;

std::vector<ImagePair> Images() {
  std::vector<ImagePair> images;
  images.reserve(kImageCount);
  for (int i = 0; i < kImageCount; ++i) images.push_back({kInput + i, kImages + i});
  return images;
}

const ModelData kData{
    .name = "ferrun",
    .code = 0x04,
    .registers = {{.first = "40001"_reg, .last = "40001"_reg, .writable = false},
                  {.first = kInput, .last = kCommunication},
                  {.first = kSafeTime, .last = kSafeTime, .lowest = 5, .highest = 250},
                  {.first = kFlags, .last = kFlags},
                  {.first = kSetpoint, .last = kSetpoint, .highest = 10000},
                  {.first = kGain, .last = kGain, .highest = 9999},
                  {.first = kIntegralTime, .last = kIntegralTime, .highest = 6000},
                  {.first = kDerivativeTime, .last = kDerivativeTime, .highest = 9999},
                  {.first = kManualReset, .last = kOutput, .highest = 10000},
                  {.first = kUserValue, .last = kMeasured, .writable = false},
                  {.first = kStatus, .last = kStatus},
                  {.first = kImages, .last = kOutputStart}},
    .images = Images(),
    .communication = kCommunication,
    .flags = kFlags,
    .reset = kStatus,
};

state::Word ToWord(double value, double lowest, double highest) {
  return state::Word(static_cast<unsigned>(std::lround(std::clamp(value, lowest, highest))) & 0xFFFFU);
}

/// What the output drives and the input sees, in parts of 10000. First order with a dead time.
class Process {
 public:
  void Step(double output, double noise) {
    const double arrives = underWay_[next_];
    underWay_[next_] = output;
    next_ = (next_ + 1) % underWay_.size();
    phase_ = std::fmod(phase_ + kStepSeconds / kLoadPeriod, 1.0);
    const double target = kAmbient + arrives + kLoad * std::sin(2 * std::numbers::pi * phase_);
    level_ += (target - level_) * kStepSeconds / kTimeConstant;
    value_ = level_ + noise;
  }
  double Value() const { return value_; }

 private:
  static constexpr double kAmbient = 400;  // without any output
  static constexpr double kLoad = 300;
  static constexpr double kLoadPeriod = 45;
  static constexpr double kTimeConstant = 4;
  static constexpr std::size_t kDeadSteps = 12;  // 0.6 s

  std::array<double, kDeadSteps> underWay_{};
  std::size_t next_ = 0;
  double phase_ = 0;
  double level_ = kAmbient;
  double value_ = kAmbient;
};

class Ferrun : public Model {
 public:
  Ferrun() : Model(kData) {
    registers.Set(kInput, state::Word(0x0100));
    registers.Set(kMeasureFull, state::Word(10000));
    registers.Set(kUserFull, state::Word(1000));
    registers.Set(kSpan, state::Word(10000));
    registers.Set(kSafeTime, state::Word(50));
    registers.Set(kSetpoint, state::Word(5000));
    registers.Set(kGain, state::Word(140));
    registers.Set(kIntegralTime, state::Word(40));
    registers.Set(kDerivativeTime, state::Word(1));
    registers.Set(kOutputMax, state::Word(10000));
  }

  void Seed(Random& random) override {
    registers.Set(kSetpoint, state::Word(std::uniform_int_distribution<unsigned>(40, 60)(random) * 100));
    registers.Set(kFlags, state::Word(kAuto));
    noise_.seed(random());
  }

  void Live(core::Duration elapsed) override {
    pending_ += elapsed;
    for (; pending_ >= kStep; pending_ -= kStep) Step();
  }

  void Heard() override {
    silence_ = core::Duration::zero();
    timedOut_ = false;
  }

  // The process does not restart with its controller.
  void Restarted() override {
    Heard();
    StartOutput();
  }

 private:
  double Unsigned(state::Register reg) const { return registers.Get(reg).Unsigned(); }
  double Signed(state::Register reg) const { return registers.Get(reg).Signed(); }
  bool Flag(unsigned mask) const { return registers.Get(kFlags).Has(mask); }

  void Step() {
    WatchCommunication();
    process_.Step(Unsigned(kOutput), std::uniform_int_distribution<int>(-2, 2)(noise_));
    status_ = registers.Get(kStatus).And(~kOwnBits);
    const double measured = Measure();
    Control(measured);
    last_ = measured;
    if (Contradictory()) status_ = status_.Or(kDataError);
    registers.Set(kStatus, status_);
  }

  void WatchCommunication() {
    silence_ += kStep;
    if (timedOut_ || silence_ < kSafeTimeUnit * registers.Get(kSafeTime).Unsigned()) return;
    timedOut_ = true;
    if (!Flag(kReload)) return;
    LoadImages();
    StartOutput();
  }

  void StartOutput() {
    registers.Set(kOutput, ToWord(Unsigned(kOutputStart), 0, kFull));
    automatic_ = false;
  }

  /// From 1 on; 0 is none.
  std::size_t Type() const { return static_cast<std::size_t>(registers.Get(kInput).High()); }
  /// Whether the scale registers count.
  bool Scaled() const { return Type() >= 1 && Type() <= kSensorFull.size(); }

  /// Settings that no page would store.
  bool Contradictory() const {
    if (Type() < 1 || Type() > kTypes) return true;
    if (Scaled() && registers.Get(kMeasureFull) == registers.Get(kMeasureStart)) return true;
    if (static_cast<std::size_t>(registers.Get(kInput).Low()) >= kFilterSeconds.size()) return true;
    return registers.Get(kOutputMax).Unsigned() < registers.Get(kOutputMin).Unsigned();
  }

  /// The share of its scale that the input shows, before filter and calibration.
  double Sensed() const {
    if (registers.Get(kStatus).Has(kBurnOut)) return Flag(kPositiveBurnOut) ? kFull + kOverRange : -kOverRange;
    const double full = Signed(kMeasureFull);
    const double start = Signed(kMeasureStart);
    if (!Scaled() || full == start) return process_.Value();
    const double sensor = process_.Value() / kFull * kSensorFull[Type() - 1];
    return (sensor - start) / (full - start) * kFull;
  }

  double Measure() {
    const auto filter = static_cast<std::size_t>(registers.Get(kInput).Low());
    const double seconds = filter < kFilterSeconds.size() ? kFilterSeconds[filter] : 0;
    filtered_ += (Sensed() - filtered_) * kStepSeconds / (seconds + kStepSeconds);
    double measured = filtered_;
    if (Flag(kSquareRoot)) measured = std::sqrt(std::max(measured, 0.0) * kFull);
    measured = measured * Signed(kSpan) / kFull + Signed(kZero);
    measured = std::clamp(measured, -kOverRange, kFull + kOverRange);
    if (measured > kFull) status_ = status_.Or(kInputOverflow);
    if (measured < 0) status_ = status_.Or(kInputUnderflow);

    const double start = Signed(kUserStart);
    registers.Set(kMeasured, ToWord(measured, -32768, 32767));
    registers.Set(kUserValue, ToWord(start + measured / kFull * (Signed(kUserFull) - start), -32768, 32767));
    return measured;
  }

  void Control(double measured) {
    if (!Flag(kAuto)) {
      automatic_ = false;
      return;
    }
    const double direction = Flag(kInverted) ? -1 : 1;
    const double gain = Unsigned(kGain) * kPerGain * direction;
    const double error = Unsigned(kSetpoint) - measured;
    const double integralTime = Unsigned(kIntegralTime) * kPerTime;
    const double derivativeTime = Unsigned(kDerivativeTime) * kPerTime;
    // Without a bump: the loop takes over the output that it finds.
    if (!automatic_) {
      automatic_ = true;
      last_ = measured;
      integral_ = Unsigned(kOutput) - gain * error;
    }

    // The manual reset stands in for the integral where there is none.
    if (integralTime == 0) integral_ = Unsigned(kManualReset);
    const double rest = gain * error - gain * derivativeTime * (measured - last_) / kStepSeconds;
    const double wanted = integral_ + rest;
    const double highest = Unsigned(kOutputMax);
    const double lowest = Unsigned(kOutputMin);
    if (wanted > highest) status_ = status_.Or(kOutputOverflow);
    if (wanted < lowest) status_ = status_.Or(kOutputUnderflow);
    const double output = std::min(std::max(wanted, lowest), highest);
    registers.Set(kOutput, ToWord(output, 0, kFull));

    if (integralTime == 0) return;
    // At a limit the integral does not run on into it.
    const double more = gain * error * kStepSeconds / integralTime;
    if ((wanted <= highest || more < 0) && (wanted >= lowest || more > 0)) integral_ += more;
  }

  core::Duration pending_{};
  core::Duration silence_{};  // since the last request
  bool timedOut_ = false;
  Random noise_;
  Process process_;
  state::Word status_;
  double filtered_ = 0;
  double last_ = 0;  // measured one step before
  double integral_ = 0;
  bool automatic_ = false;  // whether the loop had the output one step before
};

const Registration kFerrun(kData.name, &Make<Ferrun>);

}  // namespace

}  // namespace tarvo::simulator
