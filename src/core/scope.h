#pragma once

#include <coroutine>
#include <exception>
#include <functional>
#include <memory>

#include "core/intrusive_list.h"
#include "core/task.h"

namespace tarvo::core {

namespace detail {

/// A spawned task's place in its scope.
class ScopeEntry : public ListLink {
 public:
  std::coroutine_handle<> frame;
};

}  // namespace detail

/// Owns the tasks that run on their own. Its end destroys those that have not ended: it goes, or is cancelled, before
/// anything that they use.
class Scope {
 public:
  /// `onFault` gets each exception that a spawned task did not catch.
  explicit Scope(std::function<void(std::exception_ptr)> onFault);
  Scope(const Scope&) = delete;
  Scope& operator=(const Scope&) = delete;
  ~Scope();

  /// Runs `task` up to its first wait and keeps it until it ends. `origin`, if given, lives as long as the task.
  void Spawn(Task<> task, std::shared_ptr<Origin> origin = nullptr);

  /// Destroys every task that has not ended. Not from within one of them.
  void Cancel();

  bool Idle() const { return running_.Empty(); }

 private:
  class Root;
  static Root Drive(Scope& scope, Task<> task, std::shared_ptr<Origin> origin);

  std::function<void(std::exception_ptr)> onFault_;
  IntrusiveList<detail::ScopeEntry> running_;
};

}  // namespace tarvo::core
