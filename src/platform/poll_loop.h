#pragma once

#include <poll.h>

#include <functional>
#include <vector>

#include "core/scheduler.h"

namespace tarvo::platform {

/// The scheduler of a program without a window: sleeps in poll(2) until a descriptor or a timer has something to tell.
class PollLoop : public core::Scheduler {
 public:
  core::TimePoint Now() const override { return std::chrono::steady_clock::now(); }

  /// One turn; sleeps before it until something is there to do, `limit` at most. A signal ends the sleep early.
  void RunOnce(core::Duration limit);
  /// Turns until `done` holds, for `limit` at most; gives what `done` says at the end.
  bool RunUntil(const std::function<bool()>& done, core::Duration limit = core::Duration::max());

 protected:
  void SpendTime(core::Duration duration) override;
  void PollDescriptors() override;
  void AddWatch(core::DescriptorWatch& watch) override { watches_.push_back(&watch); }
  void RemoveWatch(core::DescriptorWatch& watch) override;

 private:
  core::Duration sleep_{};  // that the next look at the descriptors may take
  std::vector<core::DescriptorWatch*> watches_;
  // Kept between turns, so that a turn allocates nothing.
  std::vector<core::DescriptorWatch*> told_;
  std::vector<pollfd> descriptors_;
};

}  // namespace tarvo::platform
