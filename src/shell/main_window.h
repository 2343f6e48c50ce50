#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "pages/device_page.h"
#include "pages/navigation.h"
#include "pages/page_context.h"
#include "view/window.h"

namespace tarvo::shell {

/// `MDIForm1`, the one main window: the page list, the menu, the status bar, and the page in it.
class MainWindow : public view::Window, public pages::Navigation {
 public:
  MainWindow(view::Screen& screen, state::SharedState& state);

  view::MenuItem FileMNU{*this, nullptr, "FileMNU", "&File"};
  view::MenuItem ExitMNU{*this, &FileMNU, "ExitMNU", "&Exit"};
  view::MenuItem mnuVesk{*this, nullptr, "mnuVesk", "Vesk  Devices"};
  view::MenuItem MenuBelk{*this, &mnuVesk, "MenuBelk", "Belk"};
  view::Label labBelk{*this, "labBelk", "Belk"};
  view::ControlArray<view::Panel, 2> StatusBar1;  ///< named "StatusBar1(1)" and "StatusBar1(2)"

  /// Gives the pages to the page list. Once, before `ShowFirstPage`.
  void SetPages(pages::PageContext& context);
  core::Task<> ShowFirstPage();
  bool Ended() const { return ended_; }

  void DisableNavigation() override;
  void EnableNavigation() override;

  core::Task<bool> QueryUnload() override;
  void Unload() override;
  view::Node Arrangement() const override;

 private:
  /// One row of the page list.
  struct Entry {
    view::Label& label;
    view::MenuItem& item;
    int page;             ///< its number in the page table
    std::int16_t family;  ///< `FamilyShown` of its family
  };

  core::Task<> LabelClick(Entry entry);
  core::Task<> ExitClick();
  bool MustStopFirst() const;
  std::string WhyLocked(const view::Control& control) const;

  state::SharedState& state_;
  pages::PageContext* context_ = nullptr;
  std::vector<Entry> entries_;
  bool ended_ = false;
};

}  // namespace tarvo::shell
