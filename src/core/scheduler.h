#pragma once

#include <chrono>
#include <coroutine>
#include <cstdint>
#include <functional>

#include "core/intrusive_list.h"

namespace tarvo::core {

using Duration = std::chrono::nanoseconds;
using TimePoint = std::chrono::time_point<std::chrono::steady_clock, Duration>;
using std::chrono::microseconds;
using std::chrono::milliseconds;

class Scheduler;

/// One function that the scheduler calls when told: soon, after a time, or at the turn's end. Made once and used
/// again and again; queueing allocates nothing, and the end of a `Call` withdraws it.
class Call : public ListLink {
 public:
  Call(Scheduler& scheduler, std::function<void()> function);

  /// In the next turn, after those posted before. Nothing when it waits already.
  void Post();
  /// Once, when `delay` has gone by; replaces an earlier time. One that is overdue is called once.
  void After(Duration delay);
  /// Like `After`, at a given time.
  void At(TimePoint due);
  /// Like `After`, for something that arrives from outside: when both are due, arrivals come before time-outs.
  void ArriveAfter(Duration delay);
  /// When the present turn has done all else: change notices.
  void AtTurnEnd();
  void Cancel() { Unlink(); }

  bool Pending() const { return Linked(); }
  /// When it was due last; the base of a period that does not drift.
  TimePoint Due() const { return due_; }

 private:
  friend class Scheduler;

  Scheduler& scheduler_;
  std::function<void()> function_;
  TimePoint due_{};
  std::uint64_t round_ = 0;
};

/// What a watched descriptor has to tell.
struct DescriptorEvents {
  bool readable = false;
  bool lost = false;  ///< hung up, or no longer valid
};

/// A descriptor that is watched until this object ends. Only schedulers of a real system watch descriptors.
class DescriptorWatch : public ListLink {
 public:
  DescriptorWatch(Scheduler& scheduler, int descriptor, std::function<void(DescriptorEvents)> onEvents);
  ~DescriptorWatch();

  int Descriptor() const { return descriptor_; }
  void Tell(DescriptorEvents events) { onEvents_(events); }

 private:
  Scheduler& scheduler_;
  int descriptor_;
  std::function<void(DescriptorEvents)> onEvents_;
};

/// Time and turns. Everything of the program runs in turns of one scheduler, on one thread. A turn: what descriptors
/// have to tell, then posted calls, then arrivals and timers that are due, then the calls for the turn's end. What is
/// queued for a part of the turn that has begun waits for the next turn. A hard wait ends the turn's arrivals and
/// timers: what has arrived meanwhile is told first.
class Scheduler {
 public:
  Scheduler() = default;
  Scheduler(const Scheduler&) = delete;
  Scheduler& operator=(const Scheduler&) = delete;
  virtual ~Scheduler() = default;

  virtual TimePoint Now() const = 0;

  /// The hard wait: tells the fronts what changed, then lets nothing run for that long.
  void Block(Duration duration);

  /// `co_await scheduler.Sleep(...)`: goes on when that long has gone by.
  class Sleeper {
   public:
    Sleeper(Scheduler& scheduler, Duration duration)
        : duration_(duration), call_(scheduler, [this] { frame_.resume(); }) {}
    bool await_ready() const noexcept { return false; }
    void await_suspend(std::coroutine_handle<> frame) {
      frame_ = frame;
      call_.After(duration_);
    }
    void await_resume() const noexcept {}

   private:
    Duration duration_;
    std::coroutine_handle<> frame_;
    Call call_;
  };
  Sleeper Sleep(Duration duration) { return {*this, duration}; }

 protected:
  /// One turn. The forms of scheduler call it when something is there to do.
  void RunTurn();

  /// True when a turn now would do something, descriptors left aside.
  bool TurnDue() const { return TurnDue(Now()); }
  /// The same for a turn at a given time.
  bool TurnDue(TimePoint time) const;
  /// The time of the earliest timer or arrival; `TimePoint::max()` when there is none.
  TimePoint NextDue() const;

  /// Called when a call is queued from outside a turn, so that a loop that sleeps wakes up in time.
  virtual void Wake() {}
  /// Lets real or virtual time go by.
  virtual void SpendTime(Duration duration) = 0;
  /// Tells each watch what its descriptor has, without waiting.
  virtual void PollDescriptors() {}
  virtual void AddWatch(DescriptorWatch& watch) = 0;
  virtual void RemoveWatch(DescriptorWatch& watch) = 0;

 private:
  friend class Call;
  friend class DescriptorWatch;

  void QueueTimed(IntrusiveList<Call>& queue, Call& call, TimePoint due);
  void RunDue(IntrusiveList<Call>& queue, TimePoint now, std::uint64_t blocks);
  void RunTurnEnd();

  IntrusiveList<Call> posted_;
  IntrusiveList<Call> arrivals_;
  IntrusiveList<Call> timers_;
  IntrusiveList<Call> turnEnd_;
  std::uint64_t round_ = 0;   // of arrivals or timers: tells those queued meanwhile
  std::uint64_t blocks_ = 0;  // hard waits so far
};

}  // namespace tarvo::core
