#include "core/virtual_scheduler.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace tarvo::core {

void VirtualScheduler::RunReady() {
  const TimePoint end = now_;
  while (Step(end)) {
  }
}

void VirtualScheduler::Run(Duration duration) {
  const TimePoint end = now_ + duration;
  while (Step(end)) {
  }
  now_ = std::max(now_, end);
}

bool VirtualScheduler::RunUntil(const std::function<bool()>& done, Duration limit) {
  const TimePoint end = now_ + limit;
  while (!done()) {
    if (!Step(end)) return false;
  }
  return true;
}

bool VirtualScheduler::Step(TimePoint end) {
  constexpr int kMostTurnsAtOnce = 100'000;
  if (!TurnDue(end)) return false;
  if (!TurnDue()) now_ = NextDue();
  if (std::exchange(lastTurn_, now_) != now_) turnsSinceTimeMoved_ = 0;
  if (++turnsSinceTimeMoved_ > kMostTurnsAtOnce) throw std::logic_error("turn follows turn and time stands still");
  RunTurn();
  return true;
}

void VirtualScheduler::AddWatch(DescriptorWatch& /*watch*/) {
  throw std::logic_error("no descriptor can be watched in virtual time");
}

void VirtualScheduler::RemoveWatch(DescriptorWatch& /*watch*/) {}

}  // namespace tarvo::core
