#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "bus/line_settings.h"
#include "core/scheduler.h"
#include "simulator/registers.h"

namespace tarvo::simulator {

/// A live register and the EEPROM register that holds its stored copy.
struct ImagePair {
  state::Register live;
  state::Register image;
};

/// What a model is by data. The defaults fit most models.
struct ModelData {
  std::string_view name;  ///< as the command line names it
  int code = 0;           ///< high byte of the identity
  std::vector<RegisterRange> registers;
  std::vector<ImagePair> images{};
  state::Register identity{40001};
  state::Register communication;           ///< high byte the baud code, low byte the address
  state::Register flags;                   ///< holds the three bits below
  std::optional<state::Register> baud{};   ///< high byte the baud code, where `communication` has the address in its
                                           ///< high byte and the parity in its two lowest bits: 1 even, 2 odd
  std::optional<state::Register> reset{};  ///< restarts the module; nothing where only its supply does
  unsigned resetValue = 1;
  unsigned delayMask = 0x04;   ///< each reply comes 12 ms later
  unsigned parityMask = 0x08;  ///< parity on
  unsigned oddMask = 0x10;     ///< odd parity, even when clear
  bool fixedLine = false;      ///< address and line stay what they are, whatever the registers hold
};

/// The same model with a fixed line: its address word cannot be written, its flags have none of the three bits.
ModelData OnAFixedLine(ModelData data);

using Random = std::mt19937;

/// What hangs on an output.
enum class Load {
  kGood,
  kOpen,   ///< no load at all
  kShort,  ///< a short circuit
  kHot,    ///< too much of it: the driver gets too warm
};

/// Address and line setting of a module.
struct Setting {
  int address = 1;  ///< 1 to 255
  bus::LineSettings line;

  friend bool operator==(const Setting&, const Setting&) = default;
};

/// The speed that a code stands for; 9600 for a code without one.
int BaudOf(int code);
/// The code of a speed; that of 9600 for a speed without one.
int CodeOf(int baud);

/// How one model of module behaves, and the registers of one such module. A new model is a file in `models/`: its
/// data, the hooks that differ, and a `Registration`.
class Model {
 public:
  /// `data` must outlive the model.
  explicit Model(const ModelData& data) : registers(data.registers), data_(data) {}
  Model(const Model&) = delete;
  Model& operator=(const Model&) = delete;
  virtual ~Model() = default;

  const ModelData& Data() const { return data_; }

  /// Puts the firmware release where the module shows it: the low byte of the identity.
  virtual void SetFirmware(int release);
  /// Gives the module something to show before its life begins; not called for a module that keeps still.
  virtual void Seed(Random& random) { (void)random; }
  /// `elapsed` has gone by: moves inputs, counters, measured values on.
  virtual void Live(core::Duration elapsed) { (void)elapsed; }
  /// A request for this module has come: what watches the communication starts again. Comes after `Live`.
  virtual void Heard() {}
  /// What a master reads in `reg`, which the module has.
  virtual state::Word Read(state::Register reg) const { return registers.Get(reg); }
  /// A master writes `value`, which the register map allows.
  virtual void Write(state::Register reg, state::Word value) { registers.Set(reg, value); }
  /// The world outside hangs `load` on an output, the first is 1; false when the module does not watch such a one.
  virtual bool SetLoad(int output, Load load) {
    (void)output;
    (void)load;
    return false;
  }
  /// The module restarts: what is not stored goes back to its start.
  virtual void Restarted() {}

  /// Address and line that the live registers tell. Values that no module could start with become address 1 and 9600.
  virtual Setting GetSetting() const;
  virtual void SetSetting(const Setting& setting);
  /// The module's EEPROM takes what is live.
  void StoreImages();
  /// The live registers take what the EEPROM holds, each within its bounds.
  void LoadImages();

  Registers registers;

 private:
  // Those of a model whose baud code has a register of its own.
  Setting SplitSetting() const;
  void SetSplitSetting(const Setting& setting);

  const ModelData& data_;
};

/// The models by name. Each model's file has one `Registration` at namespace scope.
class Registration {
 public:
  using Maker = std::unique_ptr<Model> (*)();
  Registration(std::string_view name, Maker maker);
};

template <typename Kind>
std::unique_ptr<Model> Make() {
  return std::make_unique<Kind>();
}

/// A new module of the model with this name; null when there is none.
std::unique_ptr<Model> MakeModel(std::string_view name);
/// The names of all models in alphabetical order.
std::vector<std::string> ModelNames();

}  // namespace tarvo::simulator
