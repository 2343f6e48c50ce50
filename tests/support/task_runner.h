#pragma once

#include <exception>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "core/scope.h"
#include "core/task.h"

namespace tarvo::test {

/// A scope whose faults a test can look at.
class TaskRunner {
 public:
  /// Starts `task` and leaves it running.
  void Start(core::Task<> task, std::shared_ptr<core::Origin> origin = nullptr) {
    scope_.Spawn(std::move(task), std::move(origin));
  }

  /// What the faults of tasks told, in their order.
  const std::vector<std::string>& Faults() const { return faults_; }
  bool Idle() const { return scope_.Idle(); }
  void Cancel() { scope_.Cancel(); }

 private:
  void TakeFault(const std::exception_ptr& fault) {
    try {
      std::rethrow_exception(fault);
    } catch (const std::exception& known) {
      faults_.emplace_back(known.what());
    }
  }

  std::vector<std::string> faults_;
  core::Scope scope_{[this](const std::exception_ptr& fault) { TakeFault(fault); }};
};

}  // namespace tarvo::test
