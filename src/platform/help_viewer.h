#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "core/scheduler.h"
#include "shell/services.h"

namespace tarvo::platform {

/// Shows the manual by the desktop's opener, `xdg-open`, found in PATH.
class DesktopHelp : public shell::HelpViewer {
 public:
  /// `manual` is the file to show.
  DesktopHelp(core::Scheduler& scheduler, std::filesystem::path manual);
  ~DesktopHelp() override;

  /// Where the manual stands for a program in `programFolder`: the same place as seen from an installed program and
  /// from one in its build folder.
  static std::filesystem::path ManualOf(const std::filesystem::path& programFolder);

  /// Tells a failure when the opener cannot be started, or when it gives up within half a minute. One that ends later
  /// has shown the manual: it may stay as long as its viewer.
  void Open(std::function<void(std::string manual)> onFailed) override;

 private:
  class Opener;

  void Sweep();

  core::Scheduler& scheduler_;
  std::filesystem::path manual_;
  std::vector<std::unique_ptr<Opener>> openers_;
  core::Call sweep_;
};

}  // namespace tarvo::platform
