#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "bus/byte_port.h"
#include "core/scheduler.h"
#include "core/task.h"
#include "state/shared_state.h"
#include "view/screen.h"
#include "view/window.h"

namespace tarvo::shell {

/// What the program needs of the system that it runs on. All of it outlives the program.
struct Services {
  core::Scheduler& scheduler;
  bus::PortOpener& ports;
  std::string programFolder = ".";
};

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
  state::SharedState& State();
  /// Every window, pages first in the page table's order, the main window last.
  const std::vector<view::Window*>& Windows() const;
  view::Window* FindWindow(std::string_view name) const;

 private:
  struct Parts;
  core::Task<> Load();

  std::unique_ptr<Parts> parts_;
};

/// "1.0.0"
std::string_view Version();

}  // namespace tarvo::shell
