#pragma once

#include <cassert>
#include <coroutine>
#include <cstddef>
#include <exception>
#include <optional>
#include <utility>

#include "core/frame_pool.h"

namespace tarvo::core {

/// What a chain of tasks was started for (a gesture, say). Every task inherits it from the one that awaits it.
class Origin {
 public:
  virtual ~Origin() = default;
};

namespace detail {

class PromiseBase {
 public:
  static void* operator new(std::size_t size) { return FramePool::Take(size); }
  static void operator delete(void* frame, std::size_t size) noexcept { FramePool::Give(frame, size); }

  class ResumeAwaiting {
   public:
    bool await_ready() const noexcept { return false; }
    template <class Promise>
    std::coroutine_handle<> await_suspend(std::coroutine_handle<Promise> ended) noexcept {
      return ended.promise().awaiting;
    }
    void await_resume() const noexcept {}
  };

  std::suspend_always initial_suspend() const noexcept { return {}; }
  ResumeAwaiting final_suspend() const noexcept { return {}; }
  void unhandled_exception() noexcept { exception = std::current_exception(); }

  std::coroutine_handle<> awaiting = std::noop_coroutine();
  std::exception_ptr exception;
  Origin* origin = nullptr;
};

}  // namespace detail

/// A coroutine that starts when it is awaited and gives its result, or its exception, to the one that awaits it.
/// Destroying a task that has not ended destroys its frame, and with it whatever it was waiting for.
template <class T = void>
class [[nodiscard]] Task;

namespace detail {

template <class T>
class Promise : public PromiseBase {
 public:
  Task<T> get_return_object();
  template <class U>
  void return_value(U&& given) {
    value.emplace(std::forward<U>(given));
  }
  T TakeResult() {
    if (exception) std::rethrow_exception(exception);
    return std::move(*value);
  }

  std::optional<T> value;
};

template <>
class Promise<void> : public PromiseBase {
 public:
  Task<void> get_return_object();
  void return_void() const noexcept {}
  void TakeResult() const {
    if (exception) std::rethrow_exception(exception);
  }
};

}  // namespace detail

template <class T>
class [[nodiscard]] Task {
 public:
  using promise_type = detail::Promise<T>;
  using Handle = std::coroutine_handle<promise_type>;

  Task() = default;
  explicit Task(Handle frame) : frame_(frame) {}
  Task(Task&& other) noexcept : frame_(std::exchange(other.frame_, nullptr)) {}
  Task& operator=(Task&& other) noexcept {
    if (this != &other) {
      Destroy();
      frame_ = std::exchange(other.frame_, nullptr);
    }
    return *this;
  }
  ~Task() { Destroy(); }

  /// False for a task that was moved from or default-made; such a one cannot be awaited.
  explicit operator bool() const { return frame_ != nullptr; }

  class Awaiter {
   public:
    explicit Awaiter(Handle frame) : frame_(frame) {}
    bool await_ready() const noexcept { return false; }
    template <class Awaiting>
    Handle await_suspend(std::coroutine_handle<Awaiting> awaiting) noexcept {
      frame_.promise().awaiting = awaiting;
      frame_.promise().origin = awaiting.promise().origin;
      return frame_;
    }
    T await_resume() { return frame_.promise().TakeResult(); }

   private:
    Handle frame_;
  };

  Awaiter operator co_await() && {
    assert(frame_);
    return Awaiter(frame_);
  }

 private:
  void Destroy() {
    if (frame_) frame_.destroy();
  }

  Handle frame_;
};

template <class T>
Task<T> detail::Promise<T>::get_return_object() {
  return Task<T>(std::coroutine_handle<Promise<T>>::from_promise(*this));
}

inline Task<void> detail::Promise<void>::get_return_object() {
  return Task<void>(std::coroutine_handle<Promise<void>>::from_promise(*this));
}

}  // namespace tarvo::core
