#pragma once

#include "view/screen.h"

namespace tarvo::view {

/// Shows the hourglass as long as it lives. While one lives, nothing leads away from the page and nothing closes:
/// nobody may tear what is half done.
class Hourglass {
 public:
  explicit Hourglass(Screen& screen) : screen_(screen) {
    ++screen_.hourglasses_;
    screen_.SetMousePointer(Screen::Pointer::kHourglass);
  }
  Hourglass(const Hourglass&) = delete;
  Hourglass& operator=(const Hourglass&) = delete;
  ~Hourglass() {
    if (--screen_.hourglasses_ == 0) screen_.SetMousePointer(Screen::Pointer::kDefault);
  }

 private:
  Screen& screen_;
};

}  // namespace tarvo::view
