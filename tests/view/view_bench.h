#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <string>

#include "core/virtual_scheduler.h"
#include "support/test_window.h"
#include "view/screen.h"

namespace tarvo::view {

using core::milliseconds;
using test::Log;
using test::TestWatcher;
using test::TestWindow;
using testing::ElementsAre;
using testing::IsEmpty;

inline constexpr std::array<ListRow, 5> kBauds = {
    {{"4800", 0}, {"9600", 1}, {"19200", 2}, {"38400", 3}, {"115200", 6}}};

/// A page with one control of each kind.
class KindsPage : public TestWindow {
 public:
  using TestWindow::TestWindow;
  ~KindsPage() override { CancelTasks(); }

  Button StartBelk{*this, "StartBelk", "&Start"};
  CheckBox CheckBelk1{*this, "CheckBelk1", "Negate Inputs"};
  OptionButton Even{*this, "Even", "parity", "Even"};
  OptionButton Odd{*this, "Odd", "parity", "Odd"};
  OptionButton Raw{*this, "Raw", "scale", "Raw"};
  ComboBox BaudBelk{*this, "BaudBelk", kBauds};
  TextBox Text1{*this, "Text1"};
  ImageBox StatoIN{*this, "StatoIN"};
  Lamp Overflow{*this, "Overflow"};
  Label FilterBelk{*this, "FilterBelk", "20"};
  Timer Timer1{*this, "Timer1", 100};
  MenuItem FileMNU{*this, nullptr, "FileMNU", "&File"};
  MenuItem SaveMNU{*this, &FileMNU, "SaveMNU", "&Save"};
};

/// A screen in virtual time: a main window, the page that is shown in it, another page, and two dialogs.
class ViewBench : public testing::Test {
 protected:
  void SetUp() override {
    screen_.SetMain(&main_);
    ShowPage(&page_);
    log_.clear();
  }

  /// Shows `page` up to the first wait of its Activate.
  void ShowPage(Window* page) { main_.Spawn(ShowTask(page)); }
  /// Opens `window` from `opener`, which writes down when it goes on.
  Handler Opening(TestWindow& opener, Window& window) {
    return [this, &opener, &window] { return OpenTask(opener, window); };
  }
  /// A handler that asks and writes the answer down.
  Handler Asking(std::string text, std::vector<std::string> buttons) {
    return [this, text, buttons] { return AskTask(text, buttons); };
  }
  std::string FrontText() const {
    const MessageBox* box = screen_.Front() == nullptr ? nullptr : screen_.Front()->AsMessageBox();
    return box == nullptr ? "" : box->text;
  }

  core::VirtualScheduler scheduler_;
  Log log_;
  Screen screen_{scheduler_};
  KindsPage main_{screen_, "MDIForm1", log_};
  KindsPage page_{screen_, "Belk", log_};
  KindsPage other_{screen_, "Cobin", log_};
  KindsPage dialog_{screen_, "ChangeValue", log_};
  KindsPage second_{screen_, "About", log_};

 private:
  core::Task<> ShowTask(Window* page) {
    const std::string name = page == nullptr ? "nothing" : page->Name();
    const bool shown = co_await screen_.ShowPage(page);
    log_.push_back(name + (shown ? " is shown" : " was overtaken"));
  }
  core::Task<> OpenTask(TestWindow& opener, Window& window) {
    co_await screen_.ShowModal(window);
    log_.push_back(opener.Name() + " goes on");
  }
  core::Task<> AskTask(std::string text, std::vector<std::string> buttons) {
    const std::string answer = co_await screen_.Ask(std::move(text), Icon::kQuestion, std::move(buttons));
    log_.push_back("answer " + answer);
  }
};

}  // namespace tarvo::view
