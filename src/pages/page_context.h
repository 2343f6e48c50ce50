#pragma once

#include <string>

#include "bus/byte_port.h"
#include "pages/change_value.h"
#include "pages/navigation.h"
#include "pages/page_table.h"
#include "pages/status_panels.h"
#include "state/shared_state.h"
#include "view/screen.h"

namespace tarvo::pages {

/// What all pages share. Outlives them.
struct PageContext {
  view::Screen& screen;
  state::SharedState& state;
  bus::PortOpener& ports;
  Navigation& navigation;
  StatusPanels status;
  PageTable& table;
  ChangeValue& changeValue;
  std::string programFolder;
};

}  // namespace tarvo::pages
