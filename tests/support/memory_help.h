#pragma once

#include <functional>
#include <string>
#include <utility>

#include "shell/services.h"

namespace tarvo::test {

/// A desktop that only notes that the manual was asked for.
class MemoryHelp final : public shell::HelpViewer {
 public:
  int Openings() const { return openings_; }
  /// The desktop has no program for the manual that was asked for last.
  void Fail(const std::string& manual) const { onFailed_(manual); }

  void Open(std::function<void(std::string manual)> onFailed) override {
    ++openings_;
    onFailed_ = std::move(onFailed);
  }

 private:
  int openings_ = 0;
  std::function<void(std::string manual)> onFailed_;
};

}  // namespace tarvo::test
