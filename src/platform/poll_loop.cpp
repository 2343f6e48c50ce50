#include "platform/poll_loop.h"

#include <algorithm>
#include <ctime>
#include <thread>
#include <utility>

namespace tarvo::platform {

namespace {

/// Waits for one of `descriptors`; `timeout` may be cut short by a signal. False when none has anything to tell.
bool WaitForDescriptors(std::vector<pollfd>& descriptors, core::Duration timeout) {
  const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(timeout);
  timespec time{};
  time.tv_sec = seconds.count();
  time.tv_nsec = (timeout - seconds).count();
  return ppoll(descriptors.data(), descriptors.size(), &time, nullptr) > 0;
}

}  // namespace

void PollLoop::RunOnce(core::Duration limit) {
  constexpr core::Duration kNoTime = core::Duration::zero();
  constexpr core::Duration kLongest = std::chrono::hours(1);
  if (!TurnDue()) {
    const core::Duration longest = std::clamp(limit, kNoTime, kLongest);
    const core::TimePoint next = NextDue();
    sleep_ = next == core::TimePoint::max() ? longest : std::clamp(next - Now(), kNoTime, longest);
  }
  RunTurn();
}

bool PollLoop::RunUntil(const std::function<bool()>& done, core::Duration limit) {
  const core::TimePoint start = Now();
  while (!done()) {
    const core::Duration gone = Now() - start;
    if (gone >= limit) return false;
    RunOnce(limit - gone);
  }
  return true;
}

void PollLoop::SpendTime(core::Duration duration) {
  std::this_thread::sleep_for(duration);
}

void PollLoop::PollDescriptors() {
  // The sleep before a turn and the turn's look at the descriptors are one: what ended the sleep is told at once.
  const core::Duration sleep = std::exchange(sleep_, core::Duration::zero());
  if (watches_.empty() && sleep == core::Duration::zero()) return;
  told_ = watches_;
  descriptors_.clear();
  for (const core::DescriptorWatch* watch : told_) descriptors_.push_back({watch->Descriptor(), POLLIN, 0});
  if (!WaitForDescriptors(descriptors_, sleep)) return;
  for (std::size_t i = 0; i < descriptors_.size(); ++i) {
    const short events = descriptors_[i].revents;
    // A watch that an earlier one of this round ended is not told.
    if (events == 0 || told_[i] == nullptr) continue;
    core::DescriptorEvents tell;
    tell.readable = (events & POLLIN) != 0;
    tell.lost = (events & (POLLHUP | POLLERR | POLLNVAL)) != 0;
    told_[i]->Tell(tell);
  }
}

void PollLoop::RemoveWatch(core::DescriptorWatch& watch) {
  std::erase(watches_, &watch);
  // By the place in the round, not by asking later whether it is still watched: a new watch may live at its address.
  std::replace(told_.begin(), told_.end(), &watch, static_cast<core::DescriptorWatch*>(nullptr));
}

}  // namespace tarvo::platform
