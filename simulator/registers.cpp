#include "simulator/registers.h"

namespace tarvo::simulator {

Registers::Registers(const std::vector<RegisterRange>& ranges) {
  for (const RegisterRange& range : ranges) {
    const std::size_t end = range.last.LineAddress() + std::size_t{1};
    if (cells_.size() < end) cells_.resize(end);
    for (std::size_t i = range.first.LineAddress(); i < end; ++i) cells_[i].range = &range;
  }
}

const RegisterRange* Registers::RangeOf(state::Register reg) const {
  const int index = reg - state::Register(40001);
  if (index < 0 || index >= static_cast<int>(cells_.size())) return nullptr;
  return cells_[static_cast<std::size_t>(index)].range;
}

state::Word Registers::Get(state::Register reg) const {
  return cells_.at(reg.LineAddress()).value;
}

void Registers::Set(state::Register reg, state::Word value) {
  cells_.at(reg.LineAddress()).value = value;
}

}  // namespace tarvo::simulator
