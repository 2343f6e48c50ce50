#include "core/scope.h"

#include <cassert>
#include <utility>

namespace tarvo::core {

/// The outermost frame of a spawned task: takes itself out of the scope when the task has ended.
class Scope::Root {
 public:
  class promise_type : public detail::ScopeEntry {
   public:
    promise_type(Scope& scope, Task<>& /*task*/, std::shared_ptr<Origin>& given) : origin(given.get()) {
      frame = std::coroutine_handle<promise_type>::from_promise(*this);
      scope.running_.PushBack(*this);
    }
    static void* operator new(std::size_t size) { return FramePool::Take(size); }
    static void operator delete(void* memory, std::size_t size) noexcept { FramePool::Give(memory, size); }

    Root get_return_object() { return Root(frame); }
    std::suspend_always initial_suspend() const noexcept { return {}; }
    // The frame ends itself: the entry leaves the list with it.
    std::suspend_never final_suspend() const noexcept { return {}; }
    void return_void() const noexcept {}
    void unhandled_exception() const noexcept { std::terminate(); }

    Origin* origin;
  };

  explicit Root(std::coroutine_handle<> frame) : frame_(frame) {}
  void Start() const { frame_.resume(); }

 private:
  std::coroutine_handle<> frame_;
};

Scope::Root Scope::Drive(Scope& scope, Task<> task, std::shared_ptr<Origin> /*origin*/) {
  std::exception_ptr fault;
  try {
    co_await std::move(task);
  } catch (...) {
    fault = std::current_exception();
  }
  // The task's frame goes before its fault is told, so that what it held is free by then.
  task = Task<>();
  if (fault) scope.onFault_(fault);
}

Scope::Scope(std::function<void(std::exception_ptr)> onFault) : onFault_(std::move(onFault)) {}

Scope::~Scope() {
  Cancel();
}

void Scope::Spawn(Task<> task, std::shared_ptr<Origin> origin) {
  assert(task);
  Drive(*this, std::move(task), std::move(origin)).Start();
}

void Scope::Cancel() {
  while (detail::ScopeEntry* entry = running_.PopFront()) entry->frame.destroy();
}

}  // namespace tarvo::core
