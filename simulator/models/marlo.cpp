// Marlo: ten digital outputs that watch their loads. It has no EEPROM images and no reset register: what is written to
// a setting is stored at once; the serial ones take effect when its supply goes off and on.

#include <algorithm>
#include <array>
#include <optional>

#include "simulator/model.h"

namespace tarvo::simulator {

namespace {

using namespace state::literals;

constexpr std::size_t kOutputCount = 10;
constexpr unsigned kAllOutputs = 0x03FF;

constexpr state::Register kIdentity = "40001"_reg;
constexpr state::Register kStatus = "40002"_reg;
// Bits 0 to 9 of these stand for the outputs.
constexpr state::Register kOutputs = "40003"_reg;
constexpr state::Register kDiagnostics = "40004"_reg;  // latched; a bit written as 0 is cleared
constexpr state::Register kDefaults = "40005"_reg;
constexpr state::Register kOpened = "40006"_reg;
constexpr state::Register kShorted = "40007"_reg;
constexpr state::Register kHot = "40008"_reg;
constexpr state::Register kSupply = "40009"_reg;    // tenths of a volt
constexpr state::Register kAddress = "40010"_reg;   // high byte; bits 0 and 1 the parity
constexpr state::Register kBaud = "40011"_reg;      // bits 8 to 10 the code
constexpr state::Register kOptions = "40012"_reg;   // the fail led's have nothing to show here
constexpr state::Register kSafeTime = "40013"_reg;  // 0 for none
constexpr state::Register kOpenedMask = "40015"_reg;
constexpr state::Register kLimits =
    "40016"_reg;  // low byte the supply's threshold, high byte the short circuit's delay
constexpr state::Register kFirmware = "40023"_reg;

constexpr unsigned kShortCircuit = 0x01;
constexpr unsigned kOpenCircuit = 0x02;
constexpr unsigned kOvertemperature = 0x04;
constexpr unsigned kGeneralError = 0x08;
constexpr unsigned kUndervoltage = 0x40;

constexpr unsigned kWritesOnly = 0x01;  ///< of the options: a read does not start the safe time again

/// What safe time and delay count. No register tells their units.
constexpr core::Duration kSafeTimeUnit = core::milliseconds(100);
constexpr core::Duration kDelayUnit = core::milliseconds(10);

/// The supply goes to and fro between its value and this many tenths of a volt above, one at a time.
constexpr int kRipple = 4;
constexpr core::Duration kRippleStep = core::milliseconds(700);

const ModelData kData{
    .name = "marlo",
    .code = 0x0D,
    .registers = {{.first = kIdentity, .last = kStatus, .writable = false},
                  {.first = kOutputs, .last = kDefaults, .highest = kAllOutputs},
                  {.first = kOpened, .last = kSupply, .writable = false},
                  {.first = kAddress, .last = kSafeTime},
                  {.first = kOpenedMask, .last = kOpenedMask, .highest = kAllOutputs},
                  {.first = kLimits, .last = kLimits},
                  {.first = kFirmware, .last = kFirmware, .writable = false}},
    .communication = kAddress,
    .flags = kOptions,
    .baud = kBaud,
    .delayMask = 0,
};

class Marlo : public Model {
 public:
  Marlo() : Model(kData) {
    registers.Set(kSupply, state::Word(240));
    registers.Set(kOpenedMask, state::Word(kAllOutputs));
    registers.Set(kLimits, state::Word(0x05B4));
  }

  void SetFirmware(int release) override {
    registers.Set(kIdentity, state::Word(static_cast<unsigned>(kData.code) << 8));
    registers.Set(kFirmware, state::Word(static_cast<unsigned>(release)));
  }

  void Seed(Random& random) override {
    // Lamps to look at: some outputs on, among them one with a short circuit, and one without a load. And a few seconds
    // without a master show the defaults.
    std::uniform_int_distribution<unsigned> pattern(1, kAllOutputs);
    std::uniform_int_distribution<std::size_t> output(0, kOutputCount - 1);
    const std::size_t shorted = output(random);
    registers.Set(kOutputs, state::Word(pattern(random)).Or(1U << shorted));
    registers.Set(kDefaults, state::Word(pattern(random)));
    registers.Set(kSafeTime, state::Word(50));
    loads_[shorted] = Load::kShort;
    loads_[(shorted + 1 + output(random) % (kOutputCount - 1)) % kOutputCount] = Load::kOpen;
  }

  void Live(core::Duration elapsed) override {
    Sway(elapsed);
    const auto left = UntilTimeOut();
    silence_ += elapsed;
    if (!left || *left > elapsed) {
      Watch(elapsed);
      return;
    }
    Watch(*left);
    registers.Set(kOutputs, registers.Get(kDefaults));
    Watch(elapsed - *left);
  }

  void Heard() override {
    if (!registers.Get(kOptions).Has(kWritesOnly)) silence_ = core::Duration::zero();
  }

  void Write(state::Register reg, state::Word value) override {
    silence_ = core::Duration::zero();
    if (reg == kDiagnostics) value = registers.Get(kDiagnostics).And(static_cast<unsigned>(value.Unsigned()));
    registers.Set(reg, value);
  }

  bool SetLoad(int output, Load load) override {
    if (output < 1 || output > static_cast<int>(kOutputCount)) return false;
    loads_.at(static_cast<std::size_t>(output) - 1) = load;
    return true;
  }

  void Restarted() override {
    registers.Set(kOutputs, registers.Get(kDefaults));
    registers.Set(kDiagnostics, state::Word(0));
    silence_ = core::Duration::zero();
    shortFor_ = {};
  }

 private:
  /// How much silence is left before the outputs take their defaults; nothing when there is no safe time.
  std::optional<core::Duration> UntilTimeOut() const {
    const int time = registers.Get(kSafeTime).Unsigned();
    if (time == 0) return std::nullopt;
    return std::max(kSafeTimeUnit * time - silence_, core::Duration::zero());
  }

  /// The outputs have been as they are for `time`: shows and latches what their loads make of it.
  void Watch(core::Duration time) {
    const core::Duration delay = kDelayUnit * registers.Get(kLimits).High();
    unsigned opened = 0;
    unsigned shorted = 0;
    unsigned hot = 0;
    for (std::size_t i = 0; i < kOutputCount; ++i) {
      const unsigned bit = 1U << i;
      const bool on = registers.Get(kOutputs).Has(bit);
      const bool inShort = on && loads_[i] == Load::kShort;
      shortFor_[i] = inShort ? shortFor_[i] + time : core::Duration::zero();
      if (inShort && shortFor_[i] >= delay) shorted |= bit;
      if (on && loads_[i] == Load::kHot) hot |= bit;
      if (loads_[i] == Load::kOpen && registers.Get(kOpenedMask).Has(bit)) opened |= bit;
    }
    registers.Set(kOpened, state::Word(opened));
    registers.Set(kShorted, state::Word(shorted));
    registers.Set(kHot, state::Word(hot));
    registers.Set(kDiagnostics, registers.Get(kDiagnostics).Or(opened | shorted | hot));

    unsigned status = 0;
    if (shorted != 0) status |= kShortCircuit;
    if (opened != 0) status |= kOpenCircuit;
    if (hot != 0) status |= kOvertemperature;
    if (registers.Get(kSupply).Unsigned() < registers.Get(kLimits).Low()) status |= kUndervoltage;
    // What is latched counts too: something was wrong, and nobody has taken notice yet.
    if (status != 0 || registers.Get(kDiagnostics) != state::Word(0)) status |= kGeneralError;
    registers.Set(kStatus, state::Word(status));
  }

  /// Moves the supply by what the ripple has changed, so that one set from outside stays about what it is.
  void Sway(core::Duration elapsed) {
    const int before = Ripple();
    time_ += elapsed;
    const int supply = registers.Get(kSupply).Unsigned() + Ripple() - before;
    registers.Set(kSupply, state::Word(static_cast<unsigned>(std::max(supply, 0))));
  }
  int Ripple() const {
    const auto step = static_cast<int>(time_ / kRippleStep % (2L * kRipple));
    return std::min(step, 2 * kRipple - step);
  }

  std::array<Load, kOutputCount> loads_{};
  std::array<core::Duration, kOutputCount> shortFor_{};
  core::Duration silence_{};  // since the last request that counts
  core::Duration time_{};
};

const Registration kMarlo(kData.name, &Make<Marlo>);

}  // namespace

}  // namespace tarvo::simulator
