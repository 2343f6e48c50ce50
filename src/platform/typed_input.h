#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "core/scheduler.h"

namespace tarvo::platform {

/// Reads lines from a descriptor while the scheduler goes on with everything else.
class TypedInput {
 public:
  /// `onLine` gets each line, without its end; `onEnd` is called once, when nothing more comes. Of a line longer than
  /// `longest` only a part comes, still longer than that.
  TypedInput(core::Scheduler& scheduler, int descriptor, std::size_t longest,
             std::function<void(std::string_view)> onLine, std::function<void()> onEnd);

 private:
  void ReadSome();
  void Take(std::string_view bytes);

  int descriptor_;
  std::size_t longest_;
  std::function<void(std::string_view)> onLine_;
  std::function<void()> onEnd_;
  std::string begun_;
  std::optional<core::DescriptorWatch> watch_;
  core::Call endWatch_;
  bool ended_ = false;
};

}  // namespace tarvo::platform
