#pragma once

#include <functional>

#include "core/scheduler.h"

namespace tarvo::core {

/// Time that goes by only when told: an hour of polling takes milliseconds, and the order is the same each time.
class VirtualScheduler : public Scheduler {
 public:
  TimePoint Now() const override { return now_; }

  /// Runs whatever is due now, without letting time go by (but for hard waits in what runs).
  void RunReady();
  /// Lets `duration` go by and runs all that is due in it.
  void Run(Duration duration);
  /// Runs until `done` holds. False when it does not within `limit`, or when nothing is left that could bring it about.
  /// All three throw when turn follows turn and time stands still: something waits for itself.
  bool RunUntil(const std::function<bool()>& done, Duration limit);

 protected:
  void SpendTime(Duration duration) override { now_ += duration; }
  /// There are no descriptors in virtual time; asking for one is a mistake in a test.
  void AddWatch(DescriptorWatch& watch) override;
  void RemoveWatch(DescriptorWatch& watch) override;

 private:
  /// One turn, the time set to what is due next; false when nothing is due up to `end`.
  bool Step(TimePoint end);

  TimePoint now_{std::chrono::hours(1)};
  TimePoint lastTurn_{};
  int turnsSinceTimeMoved_ = 0;
};

}  // namespace tarvo::core
