#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "config/settings_files.h"
#include "core/task.h"
#include "shell/services.h"
#include "state/shared_state.h"
#include "view/screen.h"
#include "view/window.h"

namespace tarvo::shell {

/// The program: owns every window and wires them. A front shows `GetScreen()` and hands gestures in there.
class Program {
 public:
  explicit Program(const Services& services);
  Program(const Program&) = delete;
  Program& operator=(const Program&) = delete;
  ~Program();

  /// The program's own start-up. Called once, before the first gesture.
  void Start();
  /// True while the start-up has not ended; a front's first gestures wait for it.
  bool Starting() const;
  /// True when the main window is closed: the front ends.
  bool Ended() const;

  view::Screen& GetScreen();
  config::SettingsFiles& Files();
  state::SharedState& State();
  /// Every window, pages first in the page table's order, the main window last.
  const std::vector<view::Window*>& Windows() const;
  view::Window* FindWindow(std::string_view name) const;

 private:
  struct Parts;
  core::Task<> Load();

  std::unique_ptr<Parts> parts_;
};

}  // namespace tarvo::shell
