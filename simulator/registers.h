#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "state/word.h"

namespace tarvo::simulator {

/// A run of registers that a master finds in a module, first and last included.
struct RegisterRange {
  state::Register first{40001};
  state::Register last{40001};
  bool writable = true;
  /// What a master may write, read without sign; another value is refused.
  int lowest = 0;
  int highest = 0xFFFF;
};

/// The holding registers of one module; all start at 0.
class Registers {
 public:
  /// A register that several ranges hold goes by the last of them.
  explicit Registers(const std::vector<RegisterRange>& ranges);

  bool Has(state::Register reg) const { return RangeOf(reg) != nullptr; }
  /// The range that holds `reg`; null when the module has no such register.
  const RegisterRange* RangeOf(state::Register reg) const;

  /// The register must exist.
  state::Word Get(state::Register reg) const;
  void Set(state::Register reg, state::Word value);

 private:
  struct Cell {
    const RegisterRange* range = nullptr;
    state::Word value;
  };
  std::vector<Cell> cells_;  // by the address on the line
};

}  // namespace tarvo::simulator
