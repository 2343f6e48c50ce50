#pragma once

#include <string>
#include <vector>

#include "view/ar_metor.h"
#include "view/screen.h"
#include "view/window.h"

namespace tarvo::test {

/// A page with every kind of control, arranged like a device page. Its handlers write down what they were called for.
class TestPage : public view::Window {
 public:
  explicit TestPage(view::Screen& screen)
      : Window(screen, "Page", "Page"),
        Stato([this](int i) { return view::ImageBox(*this, "Stato", "40002 - Input", i); }),
        Tot([this](int i) { return view::Label(*this, "Tot", "0", "40003 - Counter", i); }),
        Bar([this](int i) { return view::ARMetor(*this, "Bar", i); }),
        Over([this](int i) { return view::Lamp(*this, "Over", "Overflow", "40002.8 - Overflow", i); }) {
    Start.OnClick = Note("Start");
    Stop.OnClick = Note("Stop");
    Negate.OnPress = Note("press Negate");
    Negate.OnClick = Note("Negate");
    Fast.OnClick = Note("Fast");
    Even.OnClick = Note("Even");
    Odd.OnClick = Note("Odd");
    Filter.OnClick = Note("Filter");
    Entry.OnLeave = Note("leave Entry");
    Entry.OnKey = [this](view::Key key) { return Write("key " + std::to_string(static_cast<int>(key))); };
    Baud.OnSelect = [this] { written.push_back("Baud " + std::to_string(Baud.ListIndex())); };
    for (std::size_t i = 0; i < kRows; ++i) {
      Tot[i].OnClick = Note(Tot[i].Name());
      Over[i].OnClick = Note(Over[i].Name());
      Bar[i].FillColor = view::kBarBlue;
      Bar[i].SetPercent(0);
    }
  }
  ~TestPage() override { CancelTasks(); }

  static constexpr std::size_t kRows = 5;
  static constexpr view::ListRow kRates[] = {{"4800", 0}, {"9600", 1}, {"19200", 2}, {"38400", 3}, {"57600", 4}};

  view::Label Firmware{*this, "Firmware", "Firmware rel:  3"};
  view::Label Message{*this, "Message"};
  view::Clip Gears{*this, "Gears"};
  view::Button Start{*this, "Start", "&Start", "Start Communication"};
  view::Button Stop{*this, "Stop", "S&top", "Stop Communication"};
  view::ControlArray<view::ImageBox, kRows> Stato;
  view::ControlArray<view::Label, kRows> Tot;
  view::ControlArray<view::ARMetor, kRows> Bar;
  view::ControlArray<view::Lamp, kRows> Over;
  view::CheckBox Negate{*this, "Negate", "Negate Inputs", "40009.0 - Negate Inputs"};
  view::CheckBox Fast{*this, "Fast", "10KHz Counter"};
  view::OptionButton Even{*this, "Even", "parity", "Even"};
  view::OptionButton Odd{*this, "Odd", "parity", "Odd"};
  view::Label Filter{*this, "Filter", "20", "40008 - Input Filter"};
  view::ComboBox Baud{*this, "Baud", kRates};
  view::TextBox Entry{*this, "Entry"};

  /// What the handlers were called for, in order.
  std::vector<std::string> written;
  int keysSeen = 0;

  void KeyDown(view::Key /*key*/) override { ++keysSeen; }

  view::Node Arrangement() const override {
    std::vector<view::Node> rows;
    for (std::size_t i = 0; i < kRows; ++i) {
      rows.push_back(view::Row({view::Show(Stato[i]), view::Text("Input " + std::to_string(i + 1)), view::Show(Tot[i]),
                                view::Show(Bar[i]), view::Show(Over[i])}));
    }
    return view::Column({
        view::Head("Module", "Five digital inputs with counters",
                   {view::Show(Firmware), view::Show(Message), view::Show(Gears), view::Show(Start), view::Show(Stop)}),
        view::Frame("Inputs", view::Table({"", "Input", "Counter", "", "Overflow"}, std::move(rows))),
        view::Row({
            view::Frame("Flags", view::Row({view::Column({view::Show(Negate), view::Show(Fast)}),
                                            view::Column({view::Row({view::Show(Even), view::Show(Odd)})})})),
            view::Frame("Module", view::Column({view::Field("Input Filter", view::Show(Filter)),
                                                view::Field("Module Baud Rate", view::Show(Baud)),
                                                view::Field("Entry", view::Show(Entry))})),
        }),
        view::Space(),
    });
  }

 private:
  core::Task<> Write(std::string what) {
    written.push_back(std::move(what));
    co_return;
  }
  view::Handler Note(std::string what) {
    return [this, what] { return Write(what); };
  }
};

/// A small modal window: a text box, OK, which takes Enter too, and Cancel.
class TestDialog : public view::Window {
 public:
  explicit TestDialog(view::Screen& screen) : Window(screen, "Dialog", "Change Value") {
    OK.OnClick = [this] { return Accept(); };
    Cancel.OnClick = [this] { return Dismiss(); };
    Text1.OnKey = [this](view::Key key) { return key == view::Key::kEnter ? Accept() : Dismiss(); };
  }
  ~TestDialog() override { CancelTasks(); }

  view::Label MinValue{*this, "MinValue", "Min Value : 1"};
  view::Label MaxValue{*this, "MaxValue", "Max Value : 254"};
  view::TextBox Text1{*this, "Text1"};
  view::Button OK{*this, "OK", "OK"};
  view::Button Cancel{*this, "Cancel", "Cancel"};

  std::string accepted;

  view::Node Arrangement() const override {
    return view::Column({
        view::Show(Text1),
        view::Row({view::Show(MinValue), view::Space(), view::Show(MaxValue)}),
        view::Row({view::Space(), view::Show(OK), view::Show(Cancel)}),
    });
  }

 private:
  /// More than 254 is put right and stays open.
  core::Task<> Accept() {
    if (Text1.Text().size() > 2 && Text1.Text() > "254") {
      Text1.Text = "254";
      co_return;
    }
    accepted = Text1.Text();
    GetScreen().CloseModal(*this);
  }
  core::Task<> Dismiss() {
    GetScreen().CloseModal(*this);
    co_return;
  }
};

/// A main window with a menu, a thin bar, a page list and a status bar.
class TestMain : public view::Window {
 public:
  TestMain(view::Screen& screen, view::Window& page)
      : Window(screen, "Main", "Tarvo 1.0.0"),
        page_(page),
        labels([this](int i) {
          static constexpr std::array<const char*, kLabels> kNames = {"Home", "PC-Setup", "Belk", "Cobin", "Dravo"};
          const char* name = kNames[static_cast<std::size_t>(i)];
          return view::Label(*this, "lab" + std::string(name), name);
        }),
        StatusBar1([this](int i) { return view::Panel(*this, "StatusBar1", i + 1); }) {
    for (view::Label& label : labels) label.OnClick = [this, &label] { return GoTo(label); };
    Check.OnClick = [this] { return Count(); };
    Checked.OnClick = [this] { return Count(); };
    Exit.OnClick = [this] { return Count(); };
  }
  ~TestMain() override { CancelTasks(); }

  static constexpr std::size_t kLabels = 5;
  static constexpr view::ListRow kFamilies[] = {{"Vesk DEVICES", 0}, {"OTHER DEVICES!", 1}};

 private:
  view::Window& page_;

 public:
  view::MenuItem File{*this, nullptr, "File", "&File"};
  view::MenuItem Exit{*this, &File, "Exit", "&Exit"};
  view::MenuItem Options{*this, nullptr, "Options", "&Options"};
  view::MenuItem Checked{*this, &Options, "Checked", "&Enable  Check  Connection"};
  view::ComboBox Family{*this, "Family", kFamilies, "Set devices family"};
  view::Button Check{*this, "Check", "Check device"};
  view::CheckBox AutoSearch{*this, "AutoSearch", "Enable Check Connection"};
  view::ControlArray<view::Label, kLabels> labels;
  view::ControlArray<view::Panel, 2> StatusBar1;
  int clicks = 0;
  bool mayClose = true;
  bool ended = false;

  view::Node Arrangement() const override {
    std::vector<view::Node> entries;
    for (const view::Label& label : labels) entries.push_back(view::Show(label));
    return view::Column({
        view::Row({view::Show(Family), view::Show(Check), view::Show(AutoSearch)}),
        view::Row({view::PageList(std::move(entries)), view::PagePlace()}),
        view::Row({view::Show(StatusBar1[0]), view::Show(StatusBar1[1])}),
    });
  }

  core::Task<bool> QueryUnload() override { co_return mayClose; }
  void Unload() override { ended = true; }

 private:
  core::Task<> GoTo(view::Label& label) {
    for (view::Label& other : labels) other.BackColor = &other == &label ? view::kHighlight : 0;
    ++clicks;
    co_await GetScreen().ShowPage(&page_);
  }
  core::Task<> Count() {
    ++clicks;
    co_return;
  }
};

}  // namespace tarvo::test
