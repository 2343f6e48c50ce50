// Quenby: three analog outputs, each with a default that the EEPROM keeps: what it starts with, and what it goes back
// to when no master has been heard for the safe time.

#include <algorithm>

#include "simulator/model.h"

namespace tarvo::simulator {

namespace {

using namespace state::literals;

constexpr state::Register kIdentity = "40001"_reg;  // of the model alone: the release has a register of its own
constexpr state::Register kCommunication = "40002"_reg;
constexpr state::Register kSafeTime = "40003"_reg;
constexpr state::Register kFlags = "40004"_reg;
constexpr state::Register kFirstOutput = "40005"_reg;  // ten thousandths of the full scale
constexpr state::Register kLastOutput = "40007"_reg;
// Read, the status, whose errors only the world outside brings about; a 1 written restarts the module.
constexpr state::Register kStatus = "40008"_reg;
constexpr state::Register kFirmware = "40010"_reg;

/// Each of 40002 to 40007 has its stored copy so many registers above.
constexpr int kToImage = 64;

constexpr int kFullScale = 10000;

// Four more flags choose the start scales of the outputs and the full scale of the first: they change what lies at the
// terminals, no register.
constexpr unsigned kWritesOnly = 0x40;  // reading does not start the safe time again
constexpr unsigned kDefaultsInUse = 0x80;

/// What the safe time counts. No register tells its unit: taken as 100 ms.
constexpr core::Duration kSafeTimeUnit = core::milliseconds(100);

std::vector<ImagePair> Images() {
  std::vector<ImagePair> images;
  images.reserve(static_cast<std::size_t>(kLastOutput - kCommunication) + 1);
  for (state::Register live = kCommunication; live <= kLastOutput; live = live + 1) {
    images.push_back({live, live + kToImage});
  }
  return images;
}

const ModelData kData{
    .name = "quenby",
    .code = 0x0F,
    .registers = {{.first = kIdentity, .last = kIdentity, .writable = false},
                  {.first = kCommunication, .last = kFlags},
                  {.first = kFirstOutput, .last = kLastOutput, .highest = kFullScale},
                  {.first = kStatus, .last = kStatus},
                  {.first = kFirmware, .last = kFirmware, .writable = false},
                  {.first = kCommunication + kToImage, .last = kLastOutput + kToImage}},
    .images = Images(),
    .communication = kCommunication,
    .flags = kFlags,
    .reset = kStatus,
};

class Quenby : public Model {
 public:
  Quenby() : Model(kData) { registers.Set(kSafeTime, state::Word(50)); }

  void SetFirmware(int release) override {
    Model::SetFirmware(0);
    registers.Set(kFirmware, state::Word(static_cast<unsigned>(release)));
  }

  void Seed(Random& random) override {
    // Defaults that are in use: a few seconds without a master and the outputs are back at them.
    std::uniform_int_distribution<unsigned> value(0, kFullScale);
    for (state::Register output = kFirstOutput; output <= kLastOutput; output = output + 1) {
      registers.Set(output, state::Word(value(random)));
    }
    registers.Set(kFlags, state::Word(kDefaultsInUse));
  }

  void Live(core::Duration elapsed) override {
    silence_ += elapsed;
    if (SafeTimeElapsed()) TakeDefaults();
  }

  void Heard() override {
    if (!registers.Get(kFlags).Has(kWritesOnly)) silence_ = core::Duration::zero();
  }

  void Write(state::Register reg, state::Word value) override {
    Model::Write(reg, value);
    silence_ = core::Duration::zero();
  }

  void Restarted() override { silence_ = core::Duration::zero(); }

 private:
  /// A safe time of 0 watches nothing: the outputs could never leave their defaults.
  bool SafeTimeElapsed() const {
    const int time = registers.Get(kSafeTime).Unsigned();
    return registers.Get(kFlags).Has(kDefaultsInUse) && time > 0 && silence_ >= kSafeTimeUnit * time;
  }

  void TakeDefaults() {
    for (state::Register output = kFirstOutput; output <= kLastOutput; output = output + 1) {
      const int stored = registers.Get(output + kToImage).Unsigned();
      registers.Set(output, state::Word(static_cast<unsigned>(std::min(stored, kFullScale))));
    }
  }

  core::Duration silence_{};  // since the last request that starts the safe time
};

const Registration kQuenby(kData.name, &Make<Quenby>);

}  // namespace

}  // namespace tarvo::simulator
