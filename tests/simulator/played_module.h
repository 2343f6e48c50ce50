#pragma once

#include <utility>

#include "simulator/module.h"
#include "support/slave_frames.h"

namespace tarvo::simulator {

inline bus::LineSettings LineOf(std::string_view text) {
  return *bus::LineSettings::Parse(text);
}

/// A module that stands still, with some registers set.
inline ModuleOptions StillWith(const std::vector<std::pair<int, unsigned>>& presets) {
  ModuleOptions options;
  options.still = true;
  for (const auto& [reg, value] : presets) options.presets.push_back({state::Register(reg), state::Word(value)});
  return options;
}

/// One that lives.
inline ModuleOptions AliveWith(const std::vector<std::pair<int, unsigned>>& presets) {
  ModuleOptions options = StillWith(presets);
  options.still = false;
  return options;
}

/// A module in virtual time that a test reads and writes as a master does, by frames.
class PlayedModule {
 public:
  PlayedModule(std::string_view model, const ModuleOptions& options) : module_(MakeModel(model), options, now_) {}

  Module& GetModule() { return module_; }
  core::TimePoint Now() const { return now_; }
  void Pass(core::Duration time) { now_ += time; }

  test::Bytes Execute(const test::Bytes& request) { return module_.Execute(request, now_); }

  /// The register's value, as its line setting's present address answers; -1 when it keeps silent or refuses.
  int Read(int reg) {
    const test::Bytes reply = Execute(test::ReadRequest(module_.InForce().address, reg, 1));
    return reply.size() == 7 ? reply[3] << 8 | reply[4] : -1;
  }
  std::vector<int> ReadAll(int first, int last) {
    std::vector<int> values;
    for (int reg = first; reg <= last; ++reg) values.push_back(Read(reg));
    return values;
  }
  /// What `Read` would give, without a word on the line.
  int Peek(int reg) { return module_.Get(state::Register(reg), now_).Unsigned(); }
  /// The world outside gives a register this value.
  void Set(int reg, unsigned value) { module_.Set(state::Register(reg), state::Word(value), now_); }

  /// True when the module has echoed the request.
  bool Write(int reg, int value) {
    const test::Bytes request = test::WriteRequest(module_.InForce().address, reg, value);
    return Execute(request) == request;
  }

  /// Writes what restarts it to its reset register and waits until it is back.
  void Reset() {
    const ModelData& data = module_.GetModel().Data();
    Write(data.reset->Number(), static_cast<int>(data.resetValue));
    AwaitRestart();
  }
  /// Its supply goes off and on; waits until it is back.
  void Restart() {
    module_.Restart(now_);
    AwaitRestart();
  }

 private:
  void AwaitRestart() {
    Pass(Module::kRestartTime);
    module_.Advance(now_);
  }

  core::TimePoint now_{std::chrono::hours(1)};
  Module module_;
};

class PlayedBelk : public PlayedModule {
 public:
  explicit PlayedBelk(const ModuleOptions& options) : PlayedModule("belk", options) {}
};

}  // namespace tarvo::simulator
