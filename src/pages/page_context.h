#pragma once

#include <string>

#include "bus/byte_port.h"
#include "pages/change_value.h"
#include "pages/navigation.h"
#include "pages/page_table.h"
#include "state/shared_state.h"
#include "view/screen.h"

namespace tarvo::pages {

/// What all pages share. Outlives them.
struct PageContext {
  view::Screen& screen;
  state::SharedState& state;
  bus::PortOpener& ports;
  Navigation& navigation;
  PageTable& table;
  ChangeValue& changeValue;
  std::string programFolder;
  int hourglasses = 0;  ///< handlers that hold the hourglass now
};

/// Shows the hourglass as long as it lives. While one lives, nothing leads away from the page: nobody may tear what is
/// half done.
class Hourglass {
 public:
  explicit Hourglass(PageContext& context) : context_(context) {
    ++context_.hourglasses;
    context_.screen.SetMousePointer(view::Screen::Pointer::kHourglass);
  }
  Hourglass(const Hourglass&) = delete;
  Hourglass& operator=(const Hourglass&) = delete;
  ~Hourglass() {
    if (--context_.hourglasses == 0) context_.screen.SetMousePointer(view::Screen::Pointer::kDefault);
  }

 private:
  PageContext& context_;
};

}  // namespace tarvo::pages
