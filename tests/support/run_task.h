#pragma once

#include <exception>
#include <optional>
#include <stdexcept>
#include <utility>

#include "core/scope.h"
#include "core/task.h"
#include "core/virtual_scheduler.h"

namespace tarvo::test {

namespace detail {

template <class T>
core::Task<> KeepResult(core::Task<T> task, std::optional<T>* result) {
  result->emplace(co_await std::move(task));
}

inline void RunToItsEnd(core::VirtualScheduler& scheduler, core::Task<> task, core::Duration limit) {
  std::exception_ptr fault;
  core::Scope scope([&fault](std::exception_ptr thrown) { fault = std::move(thrown); });
  scope.Spawn(std::move(task));
  const bool ended = scheduler.RunUntil([&scope] { return scope.Idle(); }, limit);
  if (fault) std::rethrow_exception(fault);
  if (!ended) throw std::runtime_error("the task hangs: nothing that is due within the limit lets it end");
}

}  // namespace detail

/// Runs `task` to its end in virtual time and gives its result. Throws what the task throws; throws at once when
/// nothing is left that could bring its end about, or when it takes longer than `limit`.
template <class T>
T RunTask(core::VirtualScheduler& scheduler, core::Task<T> task, core::Duration limit = std::chrono::minutes(1)) {
  std::optional<T> result;
  detail::RunToItsEnd(scheduler, detail::KeepResult(std::move(task), &result), limit);
  return std::move(*result);
}

inline void RunTask(core::VirtualScheduler& scheduler, core::Task<> task,
                    core::Duration limit = std::chrono::minutes(1)) {
  detail::RunToItsEnd(scheduler, std::move(task), limit);
}

}  // namespace tarvo::test
