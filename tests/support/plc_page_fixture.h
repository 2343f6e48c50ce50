#pragma once

#include <array>
#include <ostream>
#include <string>
#include <vector>

#include "support/page_fixture.h"

namespace tarvo::test {

/// A page of the family "OTHER DEVICES!": its module's line is fixed, its flags say what goes to a PLC.
struct PlcPage {
  const char* model;
  const char* menu;
  int number;  ///< `NrFinestra`
  int code;    ///< high byte of the identity
  int reset;   ///< register
  int firstCount;
  int pollRegister;
  int pollCount;
  std::vector<std::string> startReads;
  std::string poll;

  friend void PrintTo(const PlcPage& page, std::ostream* out) { *out << page.model; }
};

inline const PlcPage& HollinPage() {
  static const PlcPage page = {"Hollin",
                               "MenuHollin",
                               8,
                               0x0B,
                               40016,
                               11,
                               40013,
                               12,
                               {"reads 40001", "reads 40002 x11", "reads 40013 x12"},
                               "reads 40013 x12"};
  return page;
}

inline const PlcPage& KelmarPage() {
  static const PlcPage page = {
      "Kelmar",        "menuKelmar", 7, 0x0C, 40012, 10, 40012, 5, {"reads 40001", "reads 40002 x10", "reads 40012 x5"},
      "reads 40012 x5"};
  return page;
}

/// Such a page with its module on COM1: firmware release 1, 9600,n,8,1, address 1, all else 0.
class PlcPageFixture : public PageFixture {
 protected:
  static constexpr int kCommunication = 40002;
  static constexpr int kFlags = 40003;
  static constexpr int kStoredCommunication = 40066;
  static constexpr int kStoredFlags = 40067;
  static constexpr int kInputs = 4;
  static constexpr int kLamps = 8;

  /// Bits of the flags: those of the six boxes, input 1 to 4 at 1 to 4, then those of the controls beside them.
  static constexpr std::array kMasks = {0x0002, 0x0100, 0x0200, 0x0400, 0x0800, 0x1000};
  static constexpr int kBoxes = static_cast<int>(kMasks.size());
  static constexpr int kRawData = 0x2000;
  static constexpr int kReversed = 0x4000;

  static constexpr int kNegativeColour = 255;
  static constexpr int kPositiveColour = 0xFF8080;

  explicit PlcPageFixture(const PlcPage& page)
      : PageFixture(PageNames{.model = page.model, .label = page.menu, .menu = page.menu}), page_(page) {
    SetRelease(1);
    Set(kCommunication, 0x0101);
    Set(kStoredCommunication, 0x0101);
    OpenPage();
  }

  void SetRelease(int release) { Set(kIdentity, page_.code << 8 | release); }
  /// Any value that fits 16 bits with or without sign.
  void Set(int number, int value) { module[number] = static_cast<std::uint16_t>(value); }

  /// "Start" gives "StartHollin".
  std::string Own(const char* control) const { return std::string(control) + page_.model; }
  std::string Own(const char* array, int index) const { return Member(Own(array).c_str(), index); }
  std::string Label() const { return Own("MDIForm1.lab"); }
  std::string Menu() const { return std::string("MDIForm1.") + page_.menu; }
  std::string Box(int index) const { return Own("Check", index); }
  std::string BitOrder() const { return Own("Check") + "BitOrder"; }
  std::string ScaledData() const { return Own("Option") + "1"; }
  std::string RawData() const { return Own("Option") + "2"; }
  static int Mask(int box) { return kMasks.at(static_cast<std::size_t>(box)); }
  std::string NotOurs() const {
    return std::string("ERROR! Module is not ") + page_.model + " or communication failed";
  }

  /// A session that has just begun, after the one before it, if any.
  void Begin() {
    if (InSession()) Click(Own("Stop"));
    Click(Own("Start"));
    ASSERT_TRUE(InSession());
  }
  void BeginWithFlags(int flags) {
    Set(kFlags, flags);
    Begin();
    RunUntilTheBusIsFree();
    module.ForgetLog();
  }
  /// A session that has come and gone, so that the page shows what its module has.
  void ReadModule() {
    Begin();
    Click(Own("Stop"));
    module.ForgetLog();
  }
  /// Presses Start and lets time go by until the module has taken so many requests.
  void StartUntilRequest(int requests) {
    const int before = module.Requests();
    ClickAndGoOn(Own("Start"));
    ASSERT_TRUE(RunUntil([&] { return module.Requests() == before + requests; }));
  }
  /// Lets time go by until no gesture's handler is under way.
  void RunUntilIdle() {
    ASSERT_TRUE(RunUntil([this] { return program.GetScreen().Idle(); }));
  }
  /// Makes a control that the page locks in a session take clicks there.
  void Unlock(const std::string& name) { At(name).Enabled = true; }

  /// What went over the line, the polls of a session left out.
  std::vector<std::string> Exchanges() { return TakeExchanges(page_.poll); }

  void SetPanel(int panel, const char* text) {
    dynamic_cast<view::Panel&>(At(Member("MDIForm1.StatusBar1", panel))).Text = text;
  }
  std::string Panel(int panel) const { return Text(Member("MDIForm1.StatusBar1", panel)); }

  /// The lamps that are lit; the others must be dark.
  std::vector<int> LitLamps() const {
    std::vector<int> lit;
    for (int lamp = 0; lamp < kLamps; ++lamp) {
      const int colour = BackColor(Own("Overflow", lamp));
      if (colour == 255) {
        lit.push_back(lamp);
      } else {
        EXPECT_EQ(colour, 64) << lamp;
      }
    }
    return lit;
  }
  std::string Bar(int input) const { return Own("Barg", input); }
  int FillColor(int input) const { return Number(Bar(input), "FillColor"); }

  void ExpectOffline() const {
    EXPECT_FALSE(InSession());
    EXPECT_TRUE(TimersRest());
    EXPECT_FALSE(line.IsOpen());
    for (const char* button : {"Start", "WEEP", "Reset"}) EXPECT_TRUE(Enabled(Own(button))) << button;
    EXPECT_TRUE(Enabled(Label()));
    EXPECT_TRUE(Enabled(Menu()));
    EXPECT_FALSE(Hourglass());
    EXPECT_TRUE(NothingInFront());
  }
  void ExpectNothingOnTheLine() {
    Run(std::chrono::seconds(1));
    EXPECT_EQ(ports.Attempts(), 0);
    EXPECT_THAT(module.TakeLog(), testing::IsEmpty());
  }

 private:
  const PlcPage& page_;
};

}  // namespace tarvo::test
