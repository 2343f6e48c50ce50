#include "bus/search/device_search.h"

#include <array>
#include <exception>
#include <optional>
#include <string>
#include <string_view>

#include "core/fault.h"
#include "view/screen.h"

namespace tarvo::bus {

using state::kFalse;
using state::kTrue;
using state::Word;
using namespace state::literals;

namespace {

constexpr std::array<std::string_view, 3> kLines = {"38400,n,8,1", "9600,n,8,1", "2400,n,8,1"};
constexpr int kSteps = static_cast<int>(kLines.size()) * DeviceSearch::kPorts;
constexpr char kNoDevices[] = "No devices on line";

}  // namespace

core::Task<> DeviceSearch::CheckIfDeviceIsOnLine() {
  state::SharedState& state = parts_.state;
  if (state.StartComm == kTrue) co_return;
  state.SearchRunning = kTrue;
  view::Screen& screen = parts_.frmKeyb.GetScreen();
  co_await screen.ShowInFront(parts_.frmKeyb);

  std::optional<std::string> fault;
  try {
    co_await Search();
  } catch (const std::exception& met) {
    fault = met.what();
  }
  if (fault) co_await screen.MsgBox(*fault, view::Icon::kExclamation);

  state.SearchRunning = kFalse;
  // An ESC that came too late for this search does not stop the next one.
  state.EscPressed = 0;
  screen.TakeFromFront(parts_.frmKeyb);
  state.StartComm = kFalse;
  host_.EnableNavigation();
  (void)parts_.ModCom1.SetPortOpen(false);
}

core::Task<> DeviceSearch::Search() {
  state::SharedState& state = parts_.state;
  state.pageReadDone = kFalse;
  host_.LockRtdSettings();
  state.StartComm = kTrue;
  host_.DisableNavigation();
  if (state.NrFinestra != -1) co_await host_.LeaveForHome();

  ModCom& modCom = parts_.ModCom1;
  modCom.Settings = kLines.front();
  modCom.LinkParamA = 3;
  modCom.LinkParamB = 1;
  modCom.ModuleAddr = 1;
  modCom.ReplyTimeout = 2000;
  modCom.ReplyMode = 1;
  (void)modCom.ResetLink();

  host_.ScanPorts();
  parts_.panel1.Text = "Check if a device is on line...";
  co_await TryAll();
}

core::Task<> DeviceSearch::TryAll() {
  state::SharedState& state = parts_.state;
  ModCom& modCom = parts_.ModCom1;
  std::optional<Word> identity;
  int step = 0;
  for (const std::string_view line : kLines) {
    modCom.Settings = line;
    if (line != kLines.front()) (void)modCom.ResetLink();
    for (int port = 1; port <= kPorts && state.EscPressed == 0; ++port) {
      parts_.frmKeyb.ShowStep(port, line, ++step, kSteps);
      // The search's own port would look like one that is in use.
      (void)modCom.SetPortOpen(false);
      if (TestPort(parts_.MSComm1, port) != 1) continue;
      modCom.CommPort = port;
      if (const core::Status opened = modCom.SetPortOpen(true); !opened.Ok()) throw opened.GetFault();
      co_await modCom.ReadPLC("40001"_reg, identity, 1, kFormat);
      co_await modCom.Free();
      if (!identity || *identity == Word(0)) continue;
      state.StartComm = kFalse;
      host_.EnableNavigation();
      co_await host_.LoadForm(*identity);
      co_return;
    }
    if (state.EscPressed != 0) break;
  }
  parts_.panel2.Text = kNoDevices;
}

}  // namespace tarvo::bus
