#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "support/page_fixture.h"

namespace tarvo::test {

inline constexpr char kQuenbyPoll[] = "reads 40004 x4";
inline constexpr char kNotAQuenby[] = "ERROR! Module is not Quenby or communication failed";
inline constexpr char kThisIsNoQuenby[] = "This module is not a Quenby";

inline PageNames QuenbyNames() {
  return {.model = "Quenby",
          .label = "LabQuenby",
          .menu = "mnuQuenby",
          .start = "buttStart",
          .stop = "buttStop",
          .message = "Message"};
}

/// The page `frmQuenby` not shown yet, and its module on COM1: 9600,n,8,1, address 1, firmware release 3, safe time 50,
/// no flag set, all outputs and defaults at 0.
class QuenbyModule : public PageFixture {
 protected:
  static constexpr int kCommunication = 40002;
  static constexpr int kSafeTime = 40003;
  static constexpr int kFlags = 40004;
  static constexpr int kOutput1 = 40005;
  static constexpr int kStatus = 40008;
  static constexpr int kFirmware = 40010;
  static constexpr int kStoredCommunication = 40066;
  static constexpr int kStoredSafeTime = 40067;
  static constexpr int kStoredFlags = 40068;
  static constexpr int kDefault1 = 40069;
  static constexpr int kOutputs = 3;
  /// What Start reads before there is a session.
  static constexpr int kRequestsBeforeTheSession = 11;

  /// Element of `PollBuffer`; those of the outputs follow it.
  static constexpr std::size_t kPolledFlags = 0;

  /// A control that stands for a bit of the flags.
  struct Flag {
    const char* name;
    int mask;
  };
  static constexpr std::array<Flag, 4> kBoxes = {{{"CheckDelay12ms", 0x0004},
                                                  {"checkParity", 0x0008},
                                                  {"CheckResetTimer", 0x0040},
                                                  {"CheckDefaultOutputs", 0x0080}}};
  static constexpr std::array<Flag, 4> kLists = {{{"cbStartScale(0)", 0x0100},
                                                  {"cbStartScale(1)", 0x0200},
                                                  {"cbStartScale(2)", 0x0400},
                                                  {"cbFullScale(0)", 0x0800}}};
  /// Every bit that has a control.
  static constexpr int kAllFlags = 0x0FDC;

  QuenbyModule() : PageFixture(QuenbyNames()) {
    Set(kIdentity, 0x0F00);
    Set(kFirmware, 3);
    Set(kCommunication, 0x0101);
    Set(kSafeTime, 50);
  }

  void Set(int number, int word) { module[number] = static_cast<std::uint16_t>(word); }
  void SetOutputs(int first, int second, int third) {
    Set(kOutput1, first);
    Set(kOutput1 + 1, second);
    Set(kOutput1 + 2, third);
  }

  static std::string Output(int output) { return Member("txtValRam", output); }
  static std::string Default(int output) { return Member("txtVal", output); }
  std::vector<std::string> OutputTexts() const { return {Text(Output(0)), Text(Output(1)), Text(Output(2))}; }
  std::vector<std::string> DefaultTexts() const { return {Text(Default(0)), Text(Default(1)), Text(Default(2))}; }
  std::string Message() const { return Text("frmQuenby.Message"); }
  std::string Panel1() const { return Text("MDIForm1.StatusBar1(1)"); }
  std::string Panel2() const { return Text("MDIForm1.StatusBar1(2)"); }
  int Beeps() const { return program.GetScreen().Beeps(); }

  /// The flags as the view shows them.
  int FlagsShown() const {
    int flags = Checked("OptionOdd") ? 0x0010 : 0;
    for (const Flag& box : kBoxes) flags |= Checked(box.name) ? box.mask : 0;
    for (const Flag& list : kLists) flags |= ListIndex(list.name) == 1 ? list.mask : 0;
    return flags;
  }

  /// What the page's reading of its module brings over the line, in this order.
  static const std::vector<std::string>& SettingsReads() {
    static const std::vector<std::string> reads = {"reads 40001", "reads 40010", "reads 40008",
                                                   "reads 40004", "reads 40003", "reads 40002",
                                                   "reads 40005", "reads 40006", "reads 40007"};
    return reads;
  }
  /// What the session's gestures brought over the line: all but its polls.
  std::vector<std::string> Exchanges() { return TakeExchanges(kQuenbyPoll); }

  /// Leaves the page and comes back as on a first visit.
  void VisitAnew() {
    Click("MDIForm1.LabHome");
    State().pageEntered = state::kFalse;
    Click("MDIForm1.LabQuenby");
  }
  /// Sets the address that the program speaks to, as the user does, and comes back.
  void SetPcAddress(const std::string& address) {
    Click("MDIForm1.LabPCSetup");
    Edit("PCAddress", address);
    Click("MDIForm1.LabQuenby");
  }
  /// Lets time go by until a gesture's handler has ended or a box stands in front.
  void Await(const view::GestureResult& gesture) {
    ASSERT_TRUE(gesture.taken) << gesture.refusal;
    ASSERT_TRUE(RunUntil([&] { return BoxInFront() != nullptr || gesture.run == nullptr || gesture.run->Done(); }));
  }
  void Leave(const std::string& name) { Await(program.GetScreen().Leave(At(name))); }
  /// Edits a value of the page by its dialog.
  void Edit(const std::string& control, const std::string& text) {
    Click(control);
    AnswerChangeValue(text);
    ASSERT_TRUE(NothingInFront());
  }
  /// Types a default and presses Enter.
  void EnterDefault(int output, const std::string& text) {
    Type(Default(output), text);
    PressKey(Default(output), view::Key::kEnter);
  }
  /// Gives an output a new value by its dialog, up to the end of what follows from it.
  void EnterOutput(int output, const std::string& text) {
    Click(Output(output));
    ASSERT_EQ(WindowInFront(), "dlgSetNewValue");
    Type("dlgSetNewValue.txtValRam", text);
    Click("dlgSetNewValue.OK");
  }

  /// The page without a session, and quiet.
  void ExpectOffline() {
    EXPECT_FALSE(InSession());
    EXPECT_TRUE(TimersRest());
    EXPECT_FALSE(PortOpen());
    EXPECT_FALSE(line.IsOpen());
    EXPECT_FALSE(Hourglass());
    EXPECT_TRUE(NothingInFront());
    for (const char* name : {"buttStart", "buttWriteEEPROM", "buttReset", "MDIForm1.LabQuenby", "MDIForm1.mnuQuenby",
                             "MDIForm1.LabHome", "MDIForm1.buttCheckDevice"}) {
      EXPECT_TRUE(Enabled(name)) << name;
    }
    module.ForgetLog();
    Run(std::chrono::seconds(1));
    EXPECT_THAT(module.TakeLog(), testing::IsEmpty());
  }
  /// A session that polls as if nothing had happened.
  void ExpectSessionGoesOn() {
    EXPECT_TRUE(InSession());
    EXPECT_TRUE(PortOpen());
    EXPECT_TRUE(TimersRun());
    EXPECT_FALSE(Hourglass());
    EXPECT_TRUE(NothingInFront());
    module.ForgetLog();
    Run(core::milliseconds(500));
    EXPECT_THAT(module.TakeLog(), testing::AllOf(testing::SizeIs(10), testing::Each(std::string(kQuenbyPoll))));
    EXPECT_EQ(Message(), "OK");
  }
};

/// The page shown, and its module read by it.
class QuenbyFixture : public QuenbyModule {
 protected:
  QuenbyFixture() {
    OpenPage();
    module.ForgetLog();
  }
};

}  // namespace tarvo::test
