#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "bus/modcom/modcom.h"
#include "core/virtual_scheduler.h"
#include "shell/program.h"
#include "support/memory_files.h"
#include "support/memory_help.h"
#include "support/memory_module.h"
#include "support/memory_port.h"
#include "support/memory_values.h"
#include "view/screen.h"

namespace tarvo::test {

/// Writes down each value that one property of a control takes, and when.
class History final : public view::Watcher {
 public:
  struct Entry {
    core::TimePoint at;
    view::PropertyValue value;
  };

  History(view::Control& control, std::string_view property)
      : control_(control), property_(property), subscription_(control.GetWindow().GetScreen().Subscribe(*this)) {
    last_ = Present();
  }

  const std::vector<Entry>& Entries() const { return entries_; }
  void Forget() { entries_.clear(); }

  /// The values in their order; only for a property of that type.
  template <class T>
  std::vector<T> Values() const {
    std::vector<T> values;
    for (const Entry& entry : entries_) values.push_back(std::get<T>(entry.value));
    return values;
  }

  void ControlsChanged(std::span<view::Control* const> changed) override {
    for (const view::Control* control : changed) {
      if (control != &control_) continue;
      view::PropertyValue present = Present();
      if (present == last_) continue;
      last_ = present;
      entries_.push_back({control_.GetWindow().GetScheduler().Now(), std::move(present)});
    }
  }
  void StageChanged() override {}

 private:
  view::PropertyValue Present() const {
    for (const view::NamedValue& value : control_.Properties()) {
      if (value.name == property_) return value.value;
    }
    throw std::logic_error(control_.Name() + " has no property " + property_);
  }

  view::Control& control_;
  std::string property_;
  view::PropertyValue last_;
  std::vector<Entry> entries_;
  view::Screen::Subscription subscription_;
};

/// The whole program in virtual time, not started yet, and a module in memory that is on no port yet. A test drives the
/// program and reads it by the names of its controls, as the console does: a bare name is looked up in the modal window
/// in front, then in the page on the screen, then in the main window; "ChangeValue.Text1" names the window as well.
class ProgramBench : public testing::Test {
 protected:
  /// No handler of a gesture takes longer, however silent its module.
  static constexpr core::Duration kLongest = std::chrono::minutes(2);

  /// The program's start-up, as far as it goes in no time. Once.
  void OpenProgram() {
    program.Start();
    scheduler.RunReady();
  }

  // Time.

  void Run(core::Duration duration) { scheduler.Run(duration); }
  /// True when `done` comes to hold within `limit`.
  bool RunUntil(const std::function<bool()>& done, core::Duration limit = kLongest) {
    return scheduler.RunUntil(done, limit);
  }
  /// Milliseconds since the first turn of the program.
  std::int64_t Milliseconds(core::TimePoint at) const {
    return std::chrono::duration_cast<core::milliseconds>(at - began_).count();
  }

  // Controls and their values.

  view::Control* FindControl(std::string_view name) const {
    if (const std::size_t dot = name.find('.'); dot != std::string_view::npos) {
      const view::Window* window = program.FindWindow(name.substr(0, dot));
      return window == nullptr ? nullptr : window->Find(name.substr(dot + 1));
    }
    const view::Screen& screen = program.GetScreen();
    const view::Window* inFront = screen.Front() == nullptr ? nullptr : screen.Front()->AsWindow();
    const std::array<const view::Window*, 3> places = {inFront, screen.Page(), screen.Main()};
    for (const view::Window* window : places) {
      if (window == nullptr) continue;
      if (view::Control* control = window->Find(name)) return control;
    }
    return nullptr;
  }
  /// The control of that name; a test that names one which is not there fails.
  view::Control& At(std::string_view name) const {
    view::Control* control = FindControl(name);
    if (control == nullptr) throw std::logic_error("there is no control " + std::string(name));
    return *control;
  }
  template <class T>
  T Get(std::string_view name, std::string_view property) const {
    for (const view::NamedValue& value : At(name).Properties()) {
      if (value.name == property) return std::get<T>(value.value);
    }
    throw std::logic_error(std::string(name) + " has no property " + std::string(property));
  }

  /// What a control says: the caption of a label, a button or a lamp, the text of a text box, a list or a panel.
  std::string Text(std::string_view name) const {
    for (const view::NamedValue& value : At(name).Properties()) {
      if (value.name == "Caption" || value.name == "Text") return std::get<std::string>(value.value);
    }
    throw std::logic_error(std::string(name) + " shows no text");
  }
  /// True for a check box that is ticked and for an option that is selected.
  bool Checked(std::string_view name) const {
    if (At(name).GetKind() == view::Kind::kOptionButton) return Get<bool>(name, "Value");
    return Get<std::int64_t>(name, "Value") == 1;
  }
  int Picture(std::string_view name) const { return Number(name, "Picture"); }
  int BackColor(std::string_view name) const { return Number(name, "BackColor"); }
  int Percent(std::string_view name) const { return Number(name, "Percent"); }
  int ListIndex(std::string_view name) const { return Number(name, "ListIndex"); }
  int Interval(std::string_view name) const { return Number(name, "Interval"); }
  std::vector<std::string> List(std::string_view name) const { return Get<std::vector<std::string>>(name, "List"); }
  std::vector<int> ItemData(std::string_view name) const { return Get<std::vector<int>>(name, "ItemData"); }
  std::string ToolTip(std::string_view name) const { return Get<std::string>(name, "ToolTipText"); }
  bool Enabled(std::string_view name) const { return Get<bool>(name, "Enabled"); }
  bool Visible(std::string_view name) const { return Get<bool>(name, "Visible"); }
  bool Playing(std::string_view name) const { return Get<bool>(name, "Playing"); }
  /// Only properties of a whole number.
  int Number(std::string_view name, std::string_view property) const {
    return static_cast<int>(Get<std::int64_t>(name, property));
  }

  /// The bus instance of the page on the screen.
  bus::ModCom& Modcom() const { return dynamic_cast<bus::ModCom&>(At("ModCom1")); }
  bool PortOpen() const { return Modcom().PortOpen(); }

  view::Window& Page() const { return *program.GetScreen().Page(); }
  state::SharedState& State() const { return program.State(); }
  bool Hourglass() const { return program.GetScreen().MousePointer() == view::Screen::Pointer::kHourglass; }

  // What stands in front.

  /// The message box in front, null when there is none.
  const view::MessageBox* BoxInFront() const {
    const view::Modal* front = program.GetScreen().Front();
    return front == nullptr ? nullptr : front->AsMessageBox();
  }
  /// The name of the modal window in front, empty when there is none.
  std::string WindowInFront() const {
    const view::Modal* front = program.GetScreen().Front();
    return front == nullptr || front->AsWindow() == nullptr ? std::string() : front->AsWindow()->Name();
  }
  bool NothingInFront() const { return program.GetScreen().Front() == nullptr; }

  // Gestures that wait: for the end of the handler that they start, or for something modal that it opens. Timers and
  // other handlers run meanwhile. A gesture that is not taken fails the test.

  void Click(std::string_view name) {
    Settle([&] { return program.GetScreen().Click(At(name)); }, name);
  }
  void Choose(std::string_view name, int position) {
    Settle([&] { return program.GetScreen().Choose(At(name), position); }, name);
  }
  void Type(std::string_view name, std::string_view text) {
    Settle([&] { return program.GetScreen().Type(At(name), text); }, name);
  }
  void PressKey(std::string_view name, view::Key key) {
    Settle([&] { return program.GetScreen().PressKey(&At(name), key); }, name);
  }
  /// A key in the window in front.
  void PressKey(view::Key key) {
    Settle([&] { return program.GetScreen().PressKey(nullptr, key); }, "the window in front");
  }
  /// The close box of the modal window in front, else of the main window.
  void Close() {
    Settle([&] { return program.GetScreen().Close(); }, "the close box");
  }
  void ClosePage() {
    Settle([&] { return program.GetScreen().ClosePage(Page()); }, "the page's close box");
  }
  void Answer(std::string_view answer) {
    Settle([&] { return program.GetScreen().Answer(answer); }, answer);
  }
  void AnswerOk() { Answer("OK"); }
  /// Types `text` into the value dialog in front and presses its OK.
  void AnswerChangeValue(std::string_view text) {
    Type("ChangeValue.Text1", text);
    Click("ChangeValue.OK");
  }

  // Gestures that don't wait.

  /// A click whose handler goes on when time does.
  std::shared_ptr<view::GestureRun> ClickAndGoOn(std::string_view name) {
    const view::GestureResult result = program.GetScreen().Click(At(name));
    EXPECT_TRUE(result.taken) << name << ": " << result.refusal;
    return result.run;
  }
  /// Why a click is refused; empty when it is taken.
  std::string RefusalOf(std::string_view name) { return program.GetScreen().Click(At(name)).refusal; }

  // The line.

  /// What went over the line since the last call, the poll of the session left out.
  std::vector<std::string> TakeExchanges(std::string_view poll) {
    std::vector<std::string> exchanges = module.TakeLog();
    std::erase_if(exchanges, [&](const std::string& exchange) { return exchange == poll; });
    return exchanges;
  }

  core::VirtualScheduler scheduler;
  MemoryLine line{scheduler};
  MemoryPorts ports;
  MemoryValues values;
  MemoryHelp help;
  MemoryFiles files;
  MemoryModule module{scheduler, line};

 private:
  const std::unique_ptr<shell::Program> program_ =
      std::make_unique<shell::Program>(shell::Services{scheduler, ports, values, help, files, "/programs/tarvo"});

 protected:
  shell::Program& program = *program_;

 private:
  template <class Gesture>
  void Settle(Gesture gesture, std::string_view name) {
    view::Screen& screen = program.GetScreen();
    const view::Modal* front = screen.Front();
    const int frontBefore = front == nullptr ? 0 : front->Id();
    const std::shared_ptr<view::GestureRun> opener = front == nullptr ? nullptr : front->Opener();
    const auto opened = [&] { return screen.Front() != nullptr && screen.Front()->Id() > frontBefore; };
    const auto stillThere = [&] {
      for (const auto& modal : screen.Modals()) {
        if (modal->Id() == frontBefore) return true;
      }
      return false;
    };

    const view::GestureResult result = gesture();
    ASSERT_TRUE(result.taken) << name << ": " << result.refusal;
    const auto ended = [&] { return result.run == nullptr || result.run->Done(); };
    ASSERT_TRUE(RunUntil([&] { return opened() || ended(); })) << name << ": the handler does not end";
    // A handler that waited for what was in front goes on because of the gesture.
    if (opener == nullptr || opened() || stillThere()) return;
    ASSERT_TRUE(RunUntil([&] { return opened() || opener->Done(); })) << name << ": the handler behind does not end";
  }

  const core::TimePoint began_ = scheduler.Now();
};

/// The program as it is for a user who has turned the search at start-up off, with a module in memory on COM1.
class ProgramFixture : public ProgramBench {
 protected:
  ProgramFixture() {
    ports.Connect(1, line);
    values.Keep("AUTOSCAN", "FALSE");
    OpenProgram();
  }
};

/// EXPECT_THAT(BoxInFront(), IsBox("Overflow", view::Icon::kExclamation))
MATCHER_P2(IsBox, text, icon, "is the message box \"" + std::string(text) + "\"") {
  if (arg == nullptr) {
    *result_listener << "no message box is in front";
    return false;
  }
  *result_listener << "text \"" << arg->text << "\", caption \"" << arg->caption << "\", icon "
                   << static_cast<int>(arg->icon) << ", " << arg->buttons.size() << " buttons";
  return arg->text == text && arg->icon == icon && arg->caption == "Tarvo" &&
         arg->buttons == std::vector<std::string>{"OK"};
}

}  // namespace tarvo::test
