#pragma once

#include <string>
#include <string_view>

#include "bus/modcom/modcom.h"
#include "view/control.h"

namespace tarvo::pages {

/// The status bar of the main window.
struct StatusPanels {
  view::Panel& passing;     ///< panel 1: passing texts
  view::Panel& connection;  ///< panel 2: the connection line, the result of a search or of an identity test
  std::string refusal;      ///< why the last port did not open, as panel 1 showed it
};

/// "Connected to Belk, COM1,9600,n,8,1  Module Address:1": what `modcom` is connected to. `begin` ends in a blank.
std::string ConnectionLine(std::string_view begin, const bus::ModCom& modcom);

/// Opens the port that `modcom` is set up for. When it may not be opened, panel 1 says why and what to do; else a
/// former refusal leaves panel 1. The fault is told thereby: most callers leave it at that.
core::Status OpenPort(bus::ModCom& modcom, StatusPanels& status);

}  // namespace tarvo::pages
