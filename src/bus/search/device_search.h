#pragma once

#include "bus/modcom/modcom.h"
#include "bus/ms_comm.h"
#include "bus/search/frm_keyb.h"
#include "core/task.h"
#include "state/shared_state.h"
#include "state/word.h"
#include "view/control.h"

namespace tarvo::bus {

/// What the search needs of the shell, and has it do.
class SearchHost {
 public:
  virtual void DisableNavigation() = 0;
  virtual void EnableNavigation() = 0;
  /// Disables the settings of the page of RTD inputs, until a session enables them.
  virtual void LockRtdSettings() = 0;
  /// Leaves the current page for the start page.
  virtual core::Task<> LeaveForHome() = 0;
  /// Offers the ports that can be opened now.
  virtual void ScanPorts() = 0;
  /// Opens the page of the module found, whose register 40001 is `identity`.
  virtual core::Task<> LoadForm(state::Word identity) = 0;

 protected:
  ~SearchHost() = default;
};

/// Searches the serial ports for a module at address 1 on three fixed line settings.
class DeviceSearch {
 public:
  static constexpr int kPorts = 4;

  /// What the search works with, all of it the main window's.
  struct Parts {
    state::SharedState& state;
    ModCom& ModCom1;
    MSComm& MSComm1;
    FrmKeyb& frmKeyb;
    view::Panel& panel1;  ///< passing texts
    view::Panel& panel2;  ///< what came of it
  };

  DeviceSearch(const Parts& parts, SearchHost& host) : parts_(parts), host_(host) {}

  /// Runs one search to its end. Nothing while a session or a search runs.
  core::Task<> CheckIfDeviceIsOnLine();

 private:
  core::Task<> Search();
  core::Task<> TryAll();

  Parts parts_;
  SearchHost& host_;
};

}  // namespace tarvo::bus
