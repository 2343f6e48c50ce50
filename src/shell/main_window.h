#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "bus/modcom/modcom.h"
#include "bus/ms_comm.h"
#include "bus/search/device_search.h"
#include "bus/search/frm_keyb.h"
#include "config/settings_files.h"
#include "pages/navigation.h"
#include "pages/page_context.h"
#include "shell/about.h"
#include "shell/home.h"
#include "shell/pc_setup.h"
#include "shell/services.h"
#include "shell/settings_store.h"
#include "view/window.h"

namespace tarvo::models {
class Nerith;
}

namespace tarvo::shell {

/// `MDIForm1`, the one main window: menu, page list, status bar, and the page in it. Starts the search, and takes the
/// program down.
class MainWindow : public view::Window, public pages::Navigation, private bus::SearchHost {
 public:
  MainWindow(view::Screen& screen, state::SharedState& state, pages::ChangeValue& changeValue,
             const Services& services);

  // Menu.

  view::MenuItem FileMNU{*this, nullptr, "FileMNU", "&File"};
  view::MenuItem OpenMNU{*this, &FileMNU, "OpenMNU", "&Open"};
  view::MenuItem SaveMNU{*this, &FileMNU, "SaveMNU", "&Save"};
  view::MenuItem ExitMNU{*this, &FileMNU, "ExitMNU", "&Exit"};
  view::MenuItem MenuOptions{*this, nullptr, "MenuOptions", "&Options"};
  view::MenuItem MenuHome{*this, &MenuOptions, "MenuHome", "Home"};
  view::MenuItem MenuPCSetup{*this, &MenuOptions, "MenuPCSetup", "PCSetup"};
  view::MenuItem menuEnableCheckConnection{*this, &MenuOptions, "menuEnableCheckConnection",
                                           "&Enable  Check  Connection"};
  view::MenuItem mnuCheckconnection{*this, &MenuOptions, "mnuCheckconnection", "&Check Connection"};
  view::MenuItem mnuVesk{*this, nullptr, "mnuVesk", "Vesk  Devices"};
  view::MenuItem MenuBelk{*this, &mnuVesk, "MenuBelk", "Belk"};
  view::MenuItem MenuCobin{*this, &mnuVesk, "MenuCobin", "Cobin"};
  view::MenuItem MenuDravo{*this, &mnuVesk, "MenuDravo", "Dravo"};
  view::MenuItem MenuFerrun{*this, &mnuVesk, "MenuFerrun", "Ferrun"};
  view::MenuItem MenuGaven{*this, &mnuVesk, "MenuGaven", "Gaven"};
  view::MenuItem menuJorun{*this, &mnuVesk, "menuJorun", "Jorun"};
  view::MenuItem mnuLumet{*this, &mnuVesk, "mnuLumet", "Lumet"};
  view::MenuItem menuNerith{*this, &mnuVesk, "menuNerith", "Nerith"};
  view::MenuItem mnuMarlo{*this, &mnuVesk, "mnuMarlo", "Marlo"};
  view::MenuItem mnuQuenby{*this, &mnuVesk, "mnuQuenby", "Quenby"};
  view::MenuItem menuOswin{*this, &mnuVesk, "menuOswin", "Oswin"};
  view::MenuItem mnuOthers{*this, nullptr, "mnuOthers", "Other Devices"};
  view::MenuItem menuKelmar{*this, &mnuOthers, "menuKelmar", "Kelmar"};
  view::MenuItem MenuHollin{*this, &mnuOthers, "MenuHollin", "Hollin"};
  view::MenuItem HelpMNU{*this, nullptr, "HelpMNU", "&Help"};
  view::MenuItem ContentsMNU{*this, &HelpMNU, "ContentsMNU", "&Contents"};
  view::MenuItem frmAbout{*this, &HelpMNU, "frmAbout", "&About"};

  // Bar.

  view::ComboBox cbSelectDevice;
  view::Button buttCheckDevice{*this, "buttCheckDevice", "Sear&ch", "Check if a device is on-line"};
  view::CheckBox CheckEnableCheckConnection{*this, "CheckEnableCheckConnection", "Enable Check Connection"};
  view::Button Command1{*this, "Command1", "Command1"};  ///< left over: shows the page `frmNerith`

  // Page list.

  view::Label LabHome{*this, "LabHome", "Home"};
  view::Label LabPCSetup{*this, "LabPCSetup", "PC-Setup"};
  view::Label labBelk{*this, "labBelk", "Belk"};
  view::Label labCobin{*this, "labCobin", "Cobin"};
  view::Label labDravo{*this, "labDravo", "Dravo"};
  view::Label labFerrun{*this, "labFerrun", "Ferrun"};
  view::Label labGaven{*this, "labGaven", "Gaven"};
  view::Label labJorun{*this, "labJorun", "Jorun"};
  view::Label labLumet{*this, "labLumet", "Lumet"};
  view::Label labKelmar{*this, "labKelmar", "Kelmar"};
  view::Label labHollin{*this, "labHollin", "Hollin"};
  view::Label labNerith{*this, "labNerith", "Nerith"};
  view::Label labOswin{*this, "labOswin", "Oswin"};
  view::Label labMarlo{*this, "labMarlo", "Marlo"};
  view::Label LabQuenby{*this, "LabQuenby", "Quenby"};

  view::ControlArray<view::Panel, 2> StatusBar1;  ///< named "StatusBar1(1)" and "StatusBar1(2)"
  bus::MSComm MSComm1;
  bus::ModCom ModCom1;  ///< the search's

  // Its windows.

  About about;
  Home home;
  PCsetup pcSetup;
  bus::FrmKeyb frmKeyb;

  pages::StatusPanels Panels() { return {StatusBar1[0], StatusBar1[1], ""}; }
  /// Gives the device pages to the page list. Once, before `StartUp`.
  void SetPages(pages::PageContext& context, models::Nerith& nerith);
  config::SettingsFiles& Files() { return *files_; }
  /// What the program does before the first gesture: reads the stored switch, tests the ports, shows the start page,
  /// and searches when the switch says so.
  core::Task<> StartUp();
  bool Ended() const { return ended_; }

  void DisableNavigation() override;
  void EnableNavigation() override;
  /// For the family selector's focus: hold `TimerControllo` of Dravo. Nothing enables that timer, so no front tells the
  /// focus.
  void DisableTimers();
  void ReEnableTimers();
  /// Flips the auto-search switch.
  void SetConnection();

  core::Task<bool> QueryUnload() override;
  view::Node Arrangement() const override;

 private:
  /// One row of the page list.
  struct Entry {
    view::Label& label;
    view::MenuItem& item;
    view::Window* window;                ///< null for a device page, which the page table has
    int page;                            ///< `NrFinestra`
    std::optional<std::int16_t> family;  ///< `FamilyShown` of its family, nothing where a click leaves it
  };

  core::Task<> LabelClick(const Entry& entry);
  core::Task<> GoTo(const Entry& entry);
  void ShowFamily();
  void ShowAutoScan();

  core::Task<> ExitClick();
  core::Task<> ContentsClick();
  core::Task<> AboutClick();
  core::Task<> SetConnectionClick();
  core::Task<> Command1Click();
  core::Task<> SayWhere(std::string manual);
  core::Task<> SearchClick() { return search_.CheckIfDeviceIsOnLine(); }
  void LineEvent(bus::MSComm::Event event);

  void LockRtdSettings() override;
  core::Task<> LeaveForHome() override;
  void ScanPorts() override;
  core::Task<> LoadForm(state::Word identity) override;
  const Entry& EntryOf(int page) const;

  bool MustStopFirst() const;
  core::Task<> StoreAndUnload(bool formsClosed);
  void CloseAllForms();
  std::string WhyLocked(const view::Control& control) const;

  state::SharedState& state_;
  pages::ChangeValue& changeValue_;
  HelpViewer& help_;
  config::TextFiles& textFiles_;
  SettingsStore settings_;
  bus::DeviceSearch search_;
  pages::PageContext* context_ = nullptr;
  models::Nerith* nerith_ = nullptr;
  std::optional<config::SettingsFiles> files_;  ///< once there are pages
  const std::vector<Entry> entries_;
  const std::vector<view::Control*> navigation_;  ///< what `DisableNavigation` turns off, besides the entries
  bool controlloHeld_ = false;                    ///< `TimerControllo` was on when it was held
  bool ended_ = false;
};

}  // namespace tarvo::shell
