#pragma once

#include <string>

#include "view/screen.h"

namespace tarvo::console {

/// How a screen is drawn as text.
struct Drawing {
  bool utf8 = true;  ///< false draws with ASCII alone
  int width = 100;   ///< columns that the main window fills; wider when its page needs more
};

/// What stands in front: the message box, file dialog or modal window, else the main window with its page.
std::string Show(const view::Screen& screen, const Drawing& drawing);

}  // namespace tarvo::console
