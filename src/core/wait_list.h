#pragma once

#include <coroutine>

#include "core/intrusive_list.h"

namespace tarvo::core {

/// Someone who waits in a `WaitList`.
class Waiter : public ListLink {
 public:
  Waiter() = default;
  virtual void Woken() = 0;

 protected:
  ~Waiter() = default;
};

/// Those who wait for one thing, first come first.
class WaitList {
 public:
  /// A coroutine that waits; it leaves the list when its frame ends.
  class Awaiter final : public Waiter {
   public:
    explicit Awaiter(WaitList& list) : list_(list) {}
    bool await_ready() const noexcept { return false; }
    void await_suspend(std::coroutine_handle<> frame) {
      frame_ = frame;
      list_.waiters_.PushBack(*this);
    }
    void await_resume() const noexcept {}
    void Woken() override { frame_.resume(); }

   private:
    WaitList& list_;
    std::coroutine_handle<> frame_;
  };

  /// `co_await list.Wait()`: goes on when woken, at the latest place in the line.
  Awaiter Wait() { return Awaiter(*this); }
  void Add(Waiter& waiter) { waiters_.PushBack(waiter); }

  bool Empty() const { return waiters_.Empty(); }
  /// Wakes the first in line; false when nobody waits.
  bool WakeOne() {
    Waiter* first = waiters_.PopFront();
    if (first == nullptr) return false;
    first->Woken();
    return true;
  }
  /// Wakes all who wait now; who comes back waits on.
  void WakeAll() {
    IntrusiveList<Waiter> waiters;
    waiters.TakeAll(waiters_);
    while (Waiter* first = waiters.PopFront()) first->Woken();
  }

 private:
  IntrusiveList<Waiter> waiters_;
};

}  // namespace tarvo::core
