// What the user changes in a Belk session, looked up in the module itself once the session is over.

#include <array>
#include <ostream>

#include "e2e/belk_bench.h"

namespace tarvo {
namespace {

using test::BoxJson;
using test::kFlagsRegister;
using test::kLampOff;
using test::kLampOn;
using test::kNothing;
using test::kValueDialog;

struct Flag {
  std::string control;
  int mask;
};
void PrintTo(const Flag& flag, std::ostream* out) {
  *out << flag.control;
}

const std::array<Flag, 6> kFlags = {{{"CheckBelk1", 0x80},
                                     {"CheckBelk2", 0x01},
                                     {"CheckBelk3", 0x20},
                                     {"CheckBelk4", 0x02},
                                     {"CheckBelk5", 0x04},
                                     {"CheckBelk6", 0x08}}};
/// Bit 6 has no control: nothing may touch it.
constexpr int kForeignBit = 0x40;

class BelkChange : public test::BelkBench {};

class BelkFlag : public test::BelkBench, public testing::WithParamInterface<Flag> {};

TEST_P(BelkFlag, IsShownByItsOwnControlAlone) {
  OpenSessionWithFlags(GetParam().mask);
  for (const Flag& flag : kFlags) {
    EXPECT_EQ(Get(flag.control + ".Value"), flag.control == GetParam().control ? "1" : "0") << flag.control;
  }
  EXPECT_EQ(Get("LabelFASTBelk.Visible"), GetParam().control == "CheckBelk1" ? "true" : "false");
  EXPECT_EQ(Get("OptionBelk1.Value"), "true");
  EXPECT_EQ(Get("OptionBelk2.Value"), "false");
}

TEST_P(BelkFlag, IsSetInTheModuleByAClick) {
  OpenSessionWithFlags(kForeignBit);
  EXPECT_EQ(Do("click " + GetParam().control), kNothing);
  EXPECT_EQ(Get(GetParam().control + ".Value"), "1");
  LetPoll();
  EXPECT_EQ(Get(GetParam().control + ".Value"), "1");
  StopSession();
  EXPECT_EQ(Register(kFlagsRegister), kForeignBit | GetParam().mask);
}

TEST_P(BelkFlag, IsClearedInTheModuleByAClick) {
  OpenSessionWithFlags(0xFF);
  EXPECT_EQ(Do("click " + GetParam().control), kNothing);
  EXPECT_EQ(Get(GetParam().control + ".Value"), "0");
  LetPoll();
  EXPECT_EQ(Get(GetParam().control + ".Value"), "0");
  StopSession();
  EXPECT_EQ(Register(kFlagsRegister), 0xFF & ~GetParam().mask);
}

INSTANTIATE_TEST_SUITE_P(Checks, BelkFlag, testing::ValuesIn(kFlags),
                         [](const auto& instance) { return instance.param.control; });

TEST_F(BelkChange, OfTheFastCounterShowsAndHidesItsMark) {
  OpenSession("belk");
  Do("click CheckBelk1");
  EXPECT_EQ(Get("LabelFASTBelk.Visible"), "true");
  LetPoll();
  EXPECT_EQ(Get("LabelFASTBelk.Visible"), "true");
  Do("click CheckBelk1");
  EXPECT_EQ(Get("LabelFASTBelk.Visible"), "false");
}

TEST_F(BelkChange, OfTheParityKindLandsInTheModule) {
  OpenSessionWithFlags(kForeignBit | 0x08);
  EXPECT_EQ(Do("click OptionBelk2"), kNothing);
  LetPoll();
  EXPECT_EQ(Get("OptionBelk1.Value"), "false");
  EXPECT_EQ(Get("OptionBelk2.Value"), "true");
  StopSession();
  EXPECT_EQ(Register(kFlagsRegister), kForeignBit | 0x18);

  StartSession();
  EXPECT_EQ(Get("OptionBelk2.Value"), "true");
  EXPECT_EQ(Do("click OptionBelk1"), kNothing);
  LetPoll();
  EXPECT_EQ(Get("OptionBelk1.Value"), "true");
  EXPECT_EQ(Get("OptionBelk2.Value"), "false");
  StopSession();
  EXPECT_EQ(Register(kFlagsRegister), kForeignBit | 0x08);
}

TEST_F(BelkChange, OfTheParityEnablesItsKindsAndKeepsThem) {
  OpenSessionWithFlags(0x18);
  Do("click CheckBelk6");
  LetPoll();
  EXPECT_EQ(Get("OptionBelk1.Enabled"), "false");
  EXPECT_EQ(Get("OptionBelk2.Enabled"), "false");
  EXPECT_EQ(Get("OptionBelk2.Value"), "true");
  Do("click CheckBelk6");
  LetPoll();
  EXPECT_EQ(Get("OptionBelk2.Enabled"), "true");
  EXPECT_EQ(Get("OptionBelk2.Value"), "true");
  StopSession();
  EXPECT_EQ(Register(kFlagsRegister), 0x18);
}

TEST_F(BelkChange, IsNotLostAmongManyAtOnceWhilePollingGoesOn) {
  OpenSessionWithFlags(kForeignBit);
  int expected = kForeignBit;
  for (const Flag& flag : kFlags) {
    Do("nowait click " + flag.control);
    expected |= flag.mask;
  }
  Do("idle within 3s");
  LetPoll();
  for (const Flag& flag : kFlags) EXPECT_EQ(Get(flag.control + ".Value"), "1") << flag.control;
  StopSession();
  EXPECT_EQ(Register(kFlagsRegister), expected);
}

TEST_F(BelkChange, OfAFlagWithoutASessionStaysOnThePage) {
  StartSimulator("belk:40009=" + std::to_string(kForeignBit));
  OpenConsole();
  Do("click CheckBelk4");
  Do("click CheckBelk1");
  EXPECT_EQ(Get("CheckBelk4.Value"), "1");
  EXPECT_EQ(Get("LabelFASTBelk.Visible"), "true");
  EXPECT_EQ(Register(kFlagsRegister), kForeignBit);
  StartSession();
  EXPECT_EQ(Get("CheckBelk4.Value"), "0");
  EXPECT_EQ(Get("LabelFASTBelk.Visible"), "false");
}

TEST_F(BelkChange, OfANewerFlagIsRefusedOnOldFirmware) {
  OpenSession("belk:fw=1");
  EXPECT_EQ(console->Try("click CheckBelk4").Error(), "CheckBelk4 is disabled");
  StopSession();
  EXPECT_EQ(Register(kFlagsRegister), 0);
}

TEST_F(BelkChange, OfAnOverflowMarkClearsItAlone) {
  OpenSession("belk:40002=0x1F15");
  int status = 0x1F15;
  for (const int i : {2, 0, 4, 1, 3}) {
    const std::string mark = "OverFlowIN(" + std::to_string(i) + ")";
    EXPECT_EQ(Get(mark + ".BackColor"), kLampOn);
    EXPECT_EQ(Do("click " + mark), kNothing);
    Until(mark + ".BackColor = " + kLampOff);
    status &= ~(0x100 << i);
    for (int j = 0; j < 5; ++j) {
      EXPECT_EQ(Get("OverFlowIN(" + std::to_string(j) + ").BackColor"),
                (status & 0x100 << j) != 0 ? kLampOn : kLampOff);
    }
  }
  StopSession();
  EXPECT_EQ(Register(2), 0x15);
}

TEST_F(BelkChange, OfAnOverflowMarkNeedsASession) {
  OpenSession("belk:40002=0x1F00");
  StopSession();
  EXPECT_EQ(Do("click OverFlowIN(1)"), kNothing);
  EXPECT_EQ(Register(2), 0x1F00);
}

TEST_F(BelkChange, OfEachCounterArrivesInItsRegister) {
  OpenSession("belk");
  for (int i = 0; i < 5; ++i) {
    const std::string counter = "TotIN(" + std::to_string(i) + ")";
    const std::string value = std::to_string(65535 - 1000 * i);
    EXPECT_EQ(Do("click " + counter), kValueDialog);
    EXPECT_EQ(EnterValue(value), kNothing);
    EXPECT_EQ(Get(counter + ".Caption"), value);
  }
  LetPoll();
  EXPECT_EQ(Get("TotIN(4).Caption"), "61535");
  EXPECT_EQ(Get("BargBelk5.Percent"), "94");
  StopSession();
  EXPECT_EQ(Registers(3, 5), (std::map<int, int>{{3, 65535}, {4, 64535}, {5, 63535}, {6, 62535}, {7, 61535}}));
}

TEST_F(BelkChange, OfACounterIsHeldInItsBounds) {
  OpenSession("belk:40003=7,40004=7");
  EXPECT_EQ(Do("click TotIN(0)"), kValueDialog);
  EXPECT_EQ(Get("MinValue.Caption"), "Min Value :0");
  EXPECT_EQ(Get("MaxValue.Caption"), "Max Value :65535");
  EXPECT_EQ(EnterValue("65536"), kValueDialog);
  EXPECT_EQ(Get("Text1.Text"), "65535");
  EXPECT_EQ(Do("click OK"), kNothing);
  EXPECT_EQ(Do("click TotIN(1)"), kValueDialog);
  EXPECT_EQ(EnterValue("-1"), kValueDialog);
  EXPECT_EQ(Get("Text1.Text"), "0");
  EXPECT_EQ(Do("click OK"), kNothing);
  StopSession();
  EXPECT_EQ(Registers(3, 2), (std::map<int, int>{{3, 65535}, {4, 0}}));
}

TEST_F(BelkChange, OfACounterTakesNoTextThatIsNoNumber) {
  OpenSession("belk:40003=7");
  EXPECT_EQ(Do("click TotIN(0)"), kValueDialog);
  EXPECT_EQ(EnterValue("abc"), kValueDialog);
  EXPECT_EQ(Get("Text1.Text"), "");
  EXPECT_EQ(EnterValue(""), kValueDialog);
  EXPECT_EQ(EnterValue("1.5.2"), kValueDialog);
  EXPECT_EQ(Get("Text1.Text"), "");
  EXPECT_EQ(Do("key Text1 Escape"), kNothing);
  EXPECT_EQ(Get("TotIN(0).Caption"), "7");
  StopSession();
  EXPECT_EQ(Register(3), 7);
}

TEST_F(BelkChange, OfACounterTellsANumberTooLargeForAnything) {
  OpenSession("belk:40003=7");
  EXPECT_EQ(Do("click TotIN(0)"), kValueDialog);
  EXPECT_EQ(EnterValue("99999999999"), BoxJson("Overflow", "exclamation"));
  EXPECT_EQ(Do("answer OK"), kValueDialog);
  EXPECT_EQ(EnterValue("8"), kNothing);
  StopSession();
  EXPECT_EQ(Register(3), 8);
}

TEST_F(BelkChange, OfACounterIsRoundedWhereItIsSent) {
  OpenSession("belk:40003=7");
  EXPECT_EQ(Do("click TotIN(0)"), kValueDialog);
  EXPECT_EQ(EnterValue("12.4"), kNothing);
  Until("TotIN(0).Caption = 12");
  StopSession();
  EXPECT_EQ(Register(3), 12);
}

TEST_F(BelkChange, OfACounterIsTakenByEnterAndDroppedByEscapeOrCancel) {
  OpenSession("belk:40003=7");
  for (const char* leave : {"key Text1 Escape", "click Cancel", "close"}) {
    EXPECT_EQ(Do("click TotIN(0)"), kValueDialog);
    Do("type Text1 \"9\"");
    EXPECT_EQ(Do(leave), kNothing) << leave;
    EXPECT_EQ(Get("TotIN(0).Caption"), "7") << leave;
  }
  EXPECT_EQ(Do("click TotIN(0)"), kValueDialog);
  Do("type Text1 \"10\"");
  EXPECT_EQ(Do("key Text1 Enter"), kNothing);
  EXPECT_EQ(Get("TotIN(0).Caption"), "10");
  StopSession();
  EXPECT_EQ(Register(3), 10);
}

TEST_F(BelkChange, OfACounterNeedsASession) {
  StartSimulator("belk");
  OpenConsole();
  EXPECT_EQ(Do("click TotIN(2)"), kNothing);
}

TEST_F(BelkChange, CoversThePageWhileItIsAsked) {
  OpenSession("belk");
  EXPECT_EQ(Do("click TotIN(0)"), kValueDialog);
  const test::ConsoleReply reply = console->Try("click Belk.StopBelk");
  EXPECT_FALSE(reply.Ok());
  EXPECT_EQ(reply.Modal(), kValueDialog);
  EXPECT_EQ(Get("StartComm"), "-1");
}

struct Edit {
  std::string control;
  std::string highest;
  std::string tooHigh;
};
void PrintTo(const Edit& edit, std::ostream* out) {
  *out << edit.control;
}

class BelkSetting : public test::BelkBench, public testing::WithParamInterface<Edit> {};

TEST_P(BelkSetting, IsHeldInItsBounds) {
  const Edit& edit = GetParam();
  OpenSession("belk:40008=20");
  EXPECT_EQ(Do("click " + edit.control), kValueDialog);
  EXPECT_EQ(Get("MinValue.Caption"), "Min Value :1");
  EXPECT_EQ(Get("MaxValue.Caption"), "Max Value :" + edit.highest);
  for (const std::string& text : {std::string("300"), edit.tooHigh}) {
    EXPECT_EQ(EnterValue(text), kValueDialog) << text;
    EXPECT_EQ(Get("Text1.Text"), edit.highest) << text;
  }
  EXPECT_EQ(Do("click OK"), kNothing);
  EXPECT_EQ(Get(edit.control + ".Caption"), edit.highest);
  EXPECT_EQ(Do("click " + edit.control), kValueDialog);
  EXPECT_EQ(EnterValue("0"), kValueDialog);
  EXPECT_EQ(Get("Text1.Text"), "1");
  EXPECT_EQ(Do("click OK"), kNothing);
  EXPECT_EQ(Get(edit.control + ".Caption"), "1");
}

TEST_P(BelkSetting, StaysOnThePageUntilItIsCommitted) {
  const Edit& edit = GetParam();
  OpenSession("belk:40008=20");
  EXPECT_EQ(Do("click " + edit.control), kValueDialog);
  EXPECT_EQ(EnterValue("33"), kNothing);
  LetPoll();
  EXPECT_EQ(Get(edit.control + ".Caption"), "33");
  StopSession();
  EXPECT_EQ(Registers(8, 3), (std::map<int, int>{{8, 20}, {9, 0}, {10, 0x0101}}));
}

TEST_P(BelkSetting, KeepsWhatItShowsWhenTheDialogIsLeft) {
  const Edit& edit = GetParam();
  OpenSession("belk:40008=1");
  for (const char* leave : {"key Text1 Escape", "click Cancel"}) {
    EXPECT_EQ(Do("click " + edit.control), kValueDialog);
    EXPECT_EQ(EnterValue("abc"), kValueDialog);
    Do("type Text1 \"9\"");
    EXPECT_EQ(Do(leave), kNothing);
    EXPECT_EQ(Get(edit.control + ".Caption"), "1");
  }
}

TEST_P(BelkSetting, CanBeEditedWithoutASession) {
  OpenConsole("/dev/null");
  EXPECT_EQ(Do("click " + GetParam().control), kValueDialog);
  EXPECT_EQ(EnterValue("44"), kNothing);
  EXPECT_EQ(Get(GetParam().control + ".Caption"), "44");
}

INSTANTIATE_TEST_SUITE_P(Settings, BelkSetting,
                         testing::Values(Edit{"FilterBelk", "254", "255"}, Edit{"AddressBelk", "255", "256"}),
                         [](const auto& instance) { return instance.param.control; });

TEST_F(BelkChange, OfTheSpeedStaysOnThePageUntilItIsCommitted) {
  OpenSession("belk");
  EXPECT_EQ(Do("choose BaudBelk \"57600\""), kNothing);
  LetPoll();
  EXPECT_EQ(Get("BaudBelk.Text"), "57600");
  EXPECT_EQ(Get("MessageBelk.Caption"), "OK");
  StopSession();
  EXPECT_EQ(Register(10), 0x0101);
  StartSession();
  EXPECT_EQ(Get("BaudBelk.Text"), "9600");
}

}  // namespace
}  // namespace tarvo
