#pragma once

#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "console/console.h"
#include "core/virtual_scheduler.h"
#include "state/shared_state.h"
#include "view/ar_metor.h"
#include "view/screen.h"
#include "view/window.h"

namespace tarvo::console {

inline constexpr view::ListRow kRates[] = {{"4800", 0}, {"9600", 1}, {"38400", 3}, {"TC-K", 7}, {"TC-J", 8}};

/// A small dialog that a button of the page opens.
class TestDialog : public view::Window {
 public:
  explicit TestDialog(view::Screen& screen) : Window(screen, "ChangeValue", "Change Value") {
    OK.OnClick = [this] { return Accept(); };
    Text1.OnKey = [this](view::Key key) { return KeyInText(key); };
    Text1.OnLeave = [this]() -> core::Task<> {
      ++left;
      co_return;
    };
  }
  ~TestDialog() override { CancelTasks(); }

  view::TextBox Text1{*this, "Text1"};
  view::Label MinValue{*this, "MinValue", "Min Value :1"};
  view::Label Shared{*this, "Shared", "of the dialog"};
  view::Button OK{*this, "OK", "OK"};
  int left = 0;
  int accepted = 0;

  view::Node Arrangement() const override {
    return view::Column({view::Show(Text1), view::Show(MinValue), view::Row({view::Space(), view::Show(OK)})});
  }

 private:
  core::Task<> Accept() {
    if (Text1.Text() == "99999") {
      co_await GetScreen().MsgBox("Overflow", view::Icon::kExclamation);
      co_return;
    }
    ++accepted;
    GetScreen().CloseModal(*this);
  }
  core::Task<> KeyInText(view::Key key) {
    if (key == view::Key::kEnter) co_await Accept();
    if (key == view::Key::kEscape) GetScreen().CloseModal(*this);
  }
};

/// A page with one control of each kind and handlers that take their time.
class TestPage : public view::Window {
 public:
  TestPage(view::Screen& screen, TestDialog& dialog)
      : Window(screen, "Belk", "Belk"),
        TotIN([this](int i) { return view::Label(*this, "TotIN", "17", "40003 - Counter", i); }),
        StatoIN([this](int i) { return view::ImageBox(*this, "StatoIN", "", i); }),
        dialog_(dialog) {
    Slow.OnClick = [this] { return Work(core::milliseconds(300)); };
    Endless.OnClick = [this] { return Work(std::chrono::hours(24)); };
    Box.OnClick = [this] { return AskAndGoOn(); };
    File.OnClick = [this] { return AskForFile(); };
    TotIN[0].OnClick = [this] { return Edit(); };
    Check.OnClick = [this] { return Work(core::milliseconds(50)); };
    Rate.ListIndex = 1;
    Ticks.OnTimer = [this]() -> core::Task<> {
      TotIN[1].Caption = std::to_string(++ticks);
      co_return;
    };
    Meter.Caption = "";
    Meter.FillColor = view::kBarBlue;
    Meter.SetPercent(28);
    Disabled.Enabled = false;
    Hidden.Visible = false;
    Even.Value = true;
  }
  ~TestPage() override { CancelTasks(); }

  view::ControlArray<view::Label, 2> TotIN;
  view::ControlArray<view::ImageBox, 2> StatoIN;
  view::Label Message{*this, "MessageBelk", "OK"};
  view::Label Firmware{*this, "FirmwBelk", "Firmware rel:  3"};
  view::Clip Player{*this, "MediaPlayer1"};
  view::Button Slow{*this, "Slow", "&Slow"};
  view::Button Endless{*this, "Endless", "Endless"};
  view::Button Box{*this, "Box", "Box"};
  view::Button File{*this, "File", "File"};
  view::Button Disabled{*this, "Disabled", "Disabled"};
  view::Button Hidden{*this, "Hidden", "Hidden"};
  view::CheckBox Check{*this, "Check", "Negate Inputs"};
  view::OptionButton Even{*this, "Even", "parity", "Even"};
  view::OptionButton Odd{*this, "Odd", "parity", "Odd"};
  view::ComboBox Rate{*this, "Rate", kRates};
  view::Lamp Overflow{*this, "Overflow", "Overflow"};
  view::ARMetor Meter{*this, "Meter"};
  view::Timer Ticks{*this, "Ticks", 100};
  view::Label Shared{*this, "Shared", "of the page"};
  view::Label StartComm{*this, "RunKind", "of the page"};
  int ticks = 0;
  int done = 0;
  int escapes = 0;
  bool mayBeLeft = true;
  std::string path = "none";

  void KeyDown(view::Key key) override {
    if (key == view::Key::kEscape) ++escapes;
  }
  core::Task<bool> QueryUnload() override {
    if (!mayBeLeft) co_await GetScreen().MsgBox("Stop first!", view::Icon::kExclamation);
    co_return mayBeLeft;
  }

  view::Node Arrangement() const override {
    return view::Column({
        view::Head("Belk", "Five inputs",
                   {view::Show(Firmware), view::Show(Message), view::Show(Player), view::Show(Slow)}),
        view::Frame("Inputs", view::Table({"", "Counter", "", "Overflow"},
                                          {view::Row({view::Show(StatoIN[0]), view::Show(TotIN[0]), view::Show(Meter),
                                                      view::Show(Overflow)}),
                                           view::Row({view::Show(StatoIN[1]), view::Show(TotIN[1])})})),
        view::Row(
            {view::Frame("Flags", view::Column({view::Show(Check), view::Row({view::Show(Even), view::Show(Odd)})})),
             view::Frame("Module", view::Column({view::Field("Module Baud Rate", view::Show(Rate)),
                                                 view::Field("Filter", view::Show(TotIN[0]))}))}),
        view::Row({view::Space(), view::Show(Disabled), view::Show(Hidden)}),
    });
  }

 private:
  core::Task<> Work(core::Duration duration) {
    co_await GetScheduler().Sleep(duration);
    ++done;
  }
  core::Task<> AskAndGoOn() {
    co_await GetScheduler().Sleep(core::milliseconds(10));
    co_await GetScreen().MsgBox("EEProm updated! Please reset module to apply changes.", view::Icon::kInformation);
    co_await Work(core::milliseconds(200));
  }
  core::Task<> AskForFile() {
    std::string filter = "All Files (*.txt) | *.txt";
    const std::optional<std::string> chosen = co_await GetScreen().AskForFile(false, std::move(filter));
    path = chosen.value_or("cancelled");
  }
  core::Task<> Edit() {
    co_await GetScreen().ShowModal(dialog_);
    co_await Work(core::milliseconds(200));
    TotIN[0].Caption = dialog_.Text1.Text();
  }

  TestDialog& dialog_;
};

class TestMain : public view::Window {
 public:
  explicit TestMain(view::Screen& screen)
      : Window(screen, "MDIForm1", "Tarvo"),
        StatusBar1([this](int i) { return view::Panel(*this, "StatusBar1", i + 1); }) {
    ExitMNU.OnClick = [this]() -> core::Task<> {
      ended = true;
      co_return;
    };
    labBelk.OnClick = []() -> core::Task<> { co_return; };
    labBelk.BackColor = view::kHighlight;
  }
  ~TestMain() override { CancelTasks(); }

  view::MenuItem FileMNU{*this, nullptr, "FileMNU", "&File"};
  view::MenuItem ExitMNU{*this, &FileMNU, "ExitMNU", "&Exit"};
  view::Label labBelk{*this, "labBelk", "Belk"};
  view::Label labCobin{*this, "labCobin", "Cobin"};
  view::Label Shared{*this, "Shared", "of the main window"};
  view::Label OnlyHere{*this, "PollCount", "of the main window"};
  view::ControlArray<view::Panel, 2> StatusBar1;
  bool ended = false;

  void Unload() override { ended = true; }
  view::Node Arrangement() const override {
    return view::Column({view::Row({view::PageList({view::Show(labBelk), view::Show(labCobin)}), view::PagePlace()}),
                         view::Row({view::Show(StatusBar1[0]), view::Show(StatusBar1[1])})});
  }
};

/// A page that exists and is not shown.
class OtherPage : public view::Window {
 public:
  explicit OtherPage(view::Screen& screen) : Window(screen, "Jorun", "Jorun") {}

  view::Button StartJorun{*this, "StartJorun", "Start"};
  view::Node Arrangement() const override { return view::Show(StartJorun); }
};

/// A page that no navigation leads to. It takes its time until it is there.
class UnlistedPage : public view::Window {
 public:
  explicit UnlistedPage(view::Screen& screen) : Window(screen, "frmUnlisted", "Unlisted") {}
  ~UnlistedPage() override { CancelTasks(); }

  view::Label Parameter{*this, "Parameter", "1"};

  bool Hidden() const override { return true; }
  core::Task<> Activate() override { co_await GetScheduler().Sleep(core::milliseconds(300)); }
  view::Node Arrangement() const override { return view::Show(Parameter); }
};

/// A console over small windows, in virtual time.
class ConsoleBench {
 public:
  explicit ConsoleBench(Style style = Style::kJson) : console(MakeBench(), style, out) {
    screen.SetMain(&main);
    main.Spawn(ShowPage());
    scheduler.RunReady();
  }

  /// The reply to one line.
  std::string operator()(const std::string& line) { return console.Execute(line); }
  /// How much virtual time `line` takes.
  core::Duration TimeOf(const std::string& line) {
    const core::TimePoint start = scheduler.Now();
    console.Execute(line);
    return scheduler.Now() - start;
  }

  core::VirtualScheduler scheduler;
  view::Screen screen{scheduler};
  state::SharedState state;
  TestDialog dialog{screen};
  TestPage page{screen, dialog};
  OtherPage other{screen};
  UnlistedPage unlisted{screen};
  TestMain main{screen};
  std::vector<view::Window*> windows{&page, &other, &unlisted, &dialog, &main};
  bool starting = false;
  std::ostringstream out;
  Console console;

 private:
  core::Task<> ShowPage() { co_await screen.ShowPage(&page); }
  Bench MakeBench() {
    return {screen,
            windows,
            state,
            [this] { return starting; },
            [this] { return main.ended; },
            [this](const std::function<bool()>& done) {
              if (!scheduler.RunUntil(done, std::chrono::hours(100))) throw std::logic_error("nothing brings it about");
            },
            Drawing{}};
  }
};

inline constexpr char kOk[] = R"({"ok":true,"modal":null})";

inline std::string Value(const std::string& json) {
  return R"({"ok":true,"value":)" + json + R"(,"modal":null})";
}
inline std::string Failure(const std::string& why) {
  return R"({"ok":false,"error":")" + why + R"(","modal":null})";
}

}  // namespace tarvo::console
