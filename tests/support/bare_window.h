#pragma once

#include <string_view>

#include "view/window.h"

namespace tarvo::test {

/// A window that shows nothing: a home for controls under test. Its tasks end before the members of a window that
/// derives from it only when that one calls `CancelTasks` in its destructor.
class BareWindow : public view::Window {
 public:
  explicit BareWindow(view::Screen& screen, std::string_view name = "Bare") : Window(screen, name, name) {}
  ~BareWindow() override { CancelTasks(); }

  view::Node Arrangement() const override { return {}; }
  void EndTasks() { CancelTasks(); }
};

}  // namespace tarvo::test
