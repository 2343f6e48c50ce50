#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "core/scheduler.h"
#include "simulator/model.h"

namespace tarvo::simulator {

/// A register and the value that it has at the start.
struct Preset {
  state::Register reg{40001};
  state::Word value;
};

/// How a module is set when the simulator starts.
struct ModuleOptions {
  Setting setting;
  int firmware = 3;
  std::vector<Preset> presets;
  bool still = false;  ///< no life: inputs and counters stay as they are set
  unsigned seed = 1;   ///< of what the counters start with
};

/// Exception codes of Modbus.
enum class ModbusException : std::uint8_t { kFunction = 1, kRegister = 2, kValue = 3, kDevice = 4 };

/// One simulated module: a Modbus slave over the registers of its model. Knows frames and time, no line.
class Module {
 public:
  static constexpr core::Duration kRestartTime = core::milliseconds(300);

  Module(std::unique_ptr<Model> model, const ModuleOptions& options, core::TimePoint now);

  const Model& GetModel() const { return *model_; }
  int Firmware() const { return firmware_; }
  /// Address and line in force, which a reset changes.
  const Setting& InForce() const { return inForce_; }

  /// Lets time go by: life, and the end of a restart.
  void Advance(core::TimePoint now);
  /// Its supply goes off and on: it restarts as by its reset register.
  void Restart(core::TimePoint now);
  /// True while it restarts and hears nothing.
  bool Restarting() const { return restarting_; }

  /// Executes a request: a whole frame with a right CRC. Gives the reply, CRC included; empty when the module keeps
  /// silent, since the request is a broadcast or another's or it is restarting. With `failing` it refuses whatever it
  /// would answer, and does nothing of it.
  std::vector<std::uint8_t> Execute(std::span<const std::uint8_t> request, core::TimePoint now, bool failing = false);
  /// How much later than usual its replies come.
  core::Duration ReplyDelay() const;

  /// What a master would read in `reg`, which the module has.
  state::Word Get(state::Register reg, core::TimePoint now);
  /// The world outside gives `reg`, which the module has, this value: no bounds, and it may be one that no master
  /// writes.
  void Set(state::Register reg, state::Word value, core::TimePoint now);
  /// The world outside hangs `load` on an output; false when the module does not watch such a one.
  bool SetLoad(int output, Load load, core::TimePoint now);

 private:
  using Bytes = std::vector<std::uint8_t>;

  Bytes Answer(std::span<const std::uint8_t> request);
  Bytes ReadRegisters(std::span<const std::uint8_t> request) const;
  Bytes WriteRegister(std::span<const std::uint8_t> request);
  Bytes WriteRegisters(std::span<const std::uint8_t> request);
  std::optional<ModbusException> WhyNot(state::Register reg, state::Word value) const;
  void Write(state::Register reg, state::Word value);
  void BeginRestart();

  std::unique_ptr<Model> model_;
  int firmware_;
  Setting inForce_;
  bool still_;
  bool restarting_ = false;
  core::TimePoint restarted_{};
  core::TimePoint now_;
};

}  // namespace tarvo::simulator
