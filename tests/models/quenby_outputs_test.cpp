// The values of the Quenby page: the outputs, which a new value reaches at once, and the defaults, which it keeps until
// the commit.

#include <tuple>

#include "support/quenby_fixture.h"

namespace tarvo::test {
namespace {

using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr char kNotNumeric[] = "Value is not numeric !";
constexpr char kDialog[] = "dlgSetNewValue";

/// One of the three outputs.
class QuenbyOutput : public QuenbyFixture, public testing::WithParamInterface<int> {
 protected:
  std::string Name() const { return Output(GetParam()); }
  int Register() const { return kOutput1 + GetParam(); }
  std::string UnableToWrite() const { return "unable to write " + std::to_string(Register()); }
  void Enter(const std::string& text) { EnterOutput(GetParam(), text); }
};

INSTANTIATE_TEST_SUITE_P(Outputs, QuenbyOutput, testing::Values(0, 1, 2),
                         [](const auto& given) { return "Output" + std::to_string(given.param + 1); });

TEST_P(QuenbyOutput, AsksForANewValueByItsNumber) {
  Click(Name());
  EXPECT_EQ(WindowInFront(), kDialog);
  EXPECT_EQ(program.FindWindow(kDialog)->Caption, "Set new value of output " + std::to_string(GetParam() + 1));
}

TEST_P(QuenbyOutput, ForgetsTheValueOfAnEarlierDialogWhenItAsks) {
  State().NewValueText = "77";
  Click(Name());
  EXPECT_EQ(State().NewValueText, "");
  Click("dlgSetNewValue.Cancel");
  EXPECT_EQ(Text(Name()), "0");
  EXPECT_EQ(ports.Attempts(), 0);
}

TEST_P(QuenbyOutput, AsksForNoValueThatACommitUnderWayWouldHoldUp) {
  ClickAndGoOn("buttWriteEEPROM");
  ClickAndGoOn(Name());
  EXPECT_TRUE(NothingInFront());
  ASSERT_TRUE(RunUntil([this] { return BoxInFront() != nullptr; }));
  AnswerOk();
  Enter("1234");
  EXPECT_EQ(module[Register()], 1234);
}

TEST_P(QuenbyOutput, IsWrittenAtOnceInASession) {
  StartSession();
  Enter("1234");
  EXPECT_THAT(Exchanges(), ElementsAre(Writing(Register(), 1234)));
  EXPECT_EQ(Text(Name()), "1234");
  RunThroughADecode();
  EXPECT_EQ(Text(Name()), "1234");
  ExpectSessionGoesOn();
}

TEST_P(QuenbyOutput, IsWrittenThroughAPortOpenedForItWithoutASession) {
  Enter("1234");
  EXPECT_THAT(module.TakeLog(), ElementsAre(Writing(Register(), 1234)));
  EXPECT_EQ(Text(Name()), "1234");
  EXPECT_EQ(line.Opens(), 1);
  EXPECT_EQ(line.Closes(), 1);
  ExpectOffline();
}

TEST_P(QuenbyOutput, IsWrittenToTheAddressOnPcSetupWithoutASession) {
  SetPcAddress("9");
  module.Address = 9;
  Enter("1234");
  EXPECT_THAT(module.TakeLog(), ElementsAre(Writing(Register(), 1234)));
}

TEST_P(QuenbyOutput, IsTheOnlyOneThatItsNewValueChanges) {
  SetOutputs(1, 20, 300);
  VisitAnew();
  Enter("1234");
  for (int output = 0; output < kOutputs; ++output) {
    const bool changed = output == GetParam();
    EXPECT_EQ(Text(Output(output)) == "1234", changed) << output;
    EXPECT_EQ(module[kOutput1 + output] == 1234, changed) << output;
  }
  EXPECT_THAT(DefaultTexts(), Each(std::string("0")));
}

TEST_P(QuenbyOutput, LeavesTheStoredDefaultAlone) {
  StartSession();
  Enter("1234");
  Run(std::chrono::seconds(1));
  EXPECT_EQ(module[kDefault1 + GetParam()], 0);
}

TEST_P(QuenbyOutput, TakesBothItsBoundsWithoutABeep) {
  for (const int bound : {10000, 0}) {
    Enter(std::to_string(bound));
    EXPECT_EQ(module[Register()], bound);
    EXPECT_EQ(Text(Name()), std::to_string(bound));
  }
  EXPECT_EQ(Beeps(), 0);
}

TEST_P(QuenbyOutput, IsHeldToItsBoundsWithABeepEach) {
  const std::tuple<const char*, int> rows[] = {{"-1", 0},        {"10001", 10000}, {"-30000", 0},
                                               {"65535", 10000}, {"-0.4", 0},      {"10000.6", 10000}};
  for (const bool session : {false, true}) {
    if (session) StartSession();
    for (const auto& [typed, sent] : rows) {
      SCOPED_TRACE(typed);
      Set(Register(), 77);
      module.ForgetLog();
      const int before = Beeps();
      Enter(typed);
      EXPECT_EQ(Beeps(), before + 1);
      EXPECT_THAT(Exchanges(), ElementsAre(Writing(Register(), sent)));
      EXPECT_EQ(Text(Name()), std::to_string(sent));
    }
  }
}

TEST_P(QuenbyOutput, IsShownWithACommaAndSentAsTheNearestInteger) {
  const std::tuple<const char*, const char*, int> rows[] = {{"12.4", "12,4", 12},
                                                            {"12.6", "12,6", 13},
                                                            {"12,5", "12,5", 12},
                                                            {"13.5", "13,5", 14},
                                                            {"9999.9", "9999,9", 10000}};
  for (const auto& [typed, shown, sent] : rows) {
    SCOPED_TRACE(typed);
    Enter(typed);
    EXPECT_EQ(Text(Name()), shown);
    EXPECT_THAT(module.TakeLog(), ElementsAre(Writing(Register(), sent)));
  }
  EXPECT_EQ(Beeps(), 0);
}

TEST_P(QuenbyOutput, AsksAgainForATextThatIsNoNumber) {
  Enter("abc");
  EXPECT_THAT(BoxInFront(), IsBox(kNotNumeric, view::Icon::kExclamation));
  AnswerOk();
  EXPECT_EQ(WindowInFront(), kDialog);
  EXPECT_EQ(ports.Attempts(), 0);
  Click("dlgSetNewValue.OK");
  EXPECT_THAT(module.TakeLog(), ElementsAre(Writing(Register(), 0)));
  EXPECT_EQ(Text(Name()), "0");
}

TEST_P(QuenbyOutput, IsLeftAloneByADialogThatGivesNothing) {
  SetOutputs(7, 7, 7);
  VisitAnew();
  for (const bool session : {false, true}) {
    if (session) StartSession();
    module.ForgetLog();
    ports.ForgetAttempts();
    Click(Name());
    Type("dlgSetNewValue.txtValRam", "1234");
    Click("dlgSetNewValue.Cancel");
    Click(Name());
    Close();
    Click(Name());
    PressKey("dlgSetNewValue.txtValRam", view::Key::kEscape);
    ASSERT_TRUE(NothingInFront());
    EXPECT_EQ(Text(Name()), "7");
    EXPECT_THAT(Exchanges(), IsEmpty());
    EXPECT_EQ(ports.Attempts(), 0);
  }
  ExpectSessionGoesOn();
}

TEST_P(QuenbyOutput, IsGivenByEnterToo) {
  Click(Name());
  Type("dlgSetNewValue.txtValRam", "1234");
  PressKey("dlgSetNewValue.txtValRam", view::Key::kEnter);
  EXPECT_THAT(module.TakeLog(), ElementsAre(Writing(Register(), 1234)));
  EXPECT_EQ(Text(Name()), "1234");
}

TEST_P(QuenbyOutput, WaitsForThePollUnderWay) {
  StartSession();
  RunThroughADecode();
  const History message(At("frmQuenby.Message"), "Caption");
  for (int moment = 0; moment < 60; moment += 5) {
    Click(Name());
    Type("dlgSetNewValue.txtValRam", std::to_string(1000 + moment));
    Run(core::milliseconds(moment));
    Click("dlgSetNewValue.OK");
    EXPECT_EQ(module[Register()], 1000 + moment);
    Run(std::chrono::seconds(1));
  }
  EXPECT_THAT(message.Entries(), IsEmpty());
}

TEST_P(QuenbyOutput, NeverShowsTheOldValueAfterAGoodWrite) {
  StartSession();
  RunThroughADecode();
  for (int step = 1; step <= 20; ++step) {
    const std::string value = std::to_string(100 * step);
    const History shown(At(Name()), "Caption");
    Enter(value);
    Run(core::milliseconds(450 + 13 * step));
    EXPECT_THAT(shown.Values<std::string>(), ElementsAre(value));
  }
}

TEST_P(QuenbyOutput, TellsAWriteThatFailsAndSpringsBackInASession) {
  StartSession();
  Click(Name());
  Type("dlgSetNewValue.txtValRam", "1234");
  module.Always(ModuleFault::Exception(3));
  Click("dlgSetNewValue.OK");
  EXPECT_THAT(module.TakeLog(), Contains(Writing(Register(), 1234) + ": exception 3"));
  EXPECT_EQ(Panel1(), UnableToWrite());
  EXPECT_TRUE(NothingInFront());
  module.Always(ModuleFault::None());
  Run(std::chrono::seconds(1));
  EXPECT_EQ(Text(Name()), "0");
  ExpectSessionGoesOn();
}

TEST_P(QuenbyOutput, TellsAWriteThatFailsWithoutASession) {
  module.Next(ModuleFault::Exception(3));
  Enter("1234");
  EXPECT_EQ(Panel1(), UnableToWrite());
  EXPECT_EQ(Text(Name()), "1234");
  EXPECT_THAT(module.TakeLog(), ElementsAre(Writing(Register(), 1234) + ": exception 3"));
  ExpectOffline();
}

TEST_P(QuenbyOutput, TellsASilentModuleWithoutASession) {
  module.Always(ModuleFault::Unheard());
  Enter("1234");
  EXPECT_EQ(Panel1(), UnableToWrite());
  EXPECT_TRUE(NothingInFront());
  module.Always(ModuleFault::None());
  ExpectOffline();
}

TEST_P(QuenbyOutput, SaysNothingOfAWriteThatSucceeds) {
  const std::string before = Panel1();
  Enter("1");
  StartSession();
  Enter("2");
  EXPECT_EQ(Panel1(), before);
}

/// The default of one of the three outputs.
class QuenbyDefault : public QuenbyFixture, public testing::WithParamInterface<int> {
 protected:
  std::string Name() const { return Default(GetParam()); }
};

INSTANTIATE_TEST_SUITE_P(Outputs, QuenbyDefault, testing::Values(0, 1, 2),
                         [](const auto& given) { return "Output" + std::to_string(given.param + 1); });

TEST_P(QuenbyDefault, KeepsANumberWithinItsBoundsAsTyped) {
  for (const char* text : {"0", "1", "5000", "10000", "12.4", "12,6"}) {
    SCOPED_TRACE(text);
    Type(Name(), text);
    PressKey(Name(), view::Key::kEnter);
    EXPECT_EQ(Text(Name()), text);
    Leave(Name());
    EXPECT_EQ(Text(Name()), text);
    EXPECT_TRUE(NothingInFront());
  }
  EXPECT_EQ(Beeps(), 0);
}

TEST_P(QuenbyDefault, IsHeldToItsBoundsWithABeepByEnterAndByLeaving) {
  const std::pair<const char*, const char*> rows[] = {
      {"-1", "0"}, {"10001", "10000"}, {"-0.5", "0"}, {"65536", "10000"}, {"10000.5", "10000"}};
  for (const auto& [typed, kept] : rows) {
    SCOPED_TRACE(typed);
    const int before = Beeps();
    Type(Name(), typed);
    PressKey(Name(), view::Key::kEnter);
    EXPECT_EQ(Text(Name()), kept);
    EXPECT_EQ(Beeps(), before + 1);
    Type(Name(), typed);
    Leave(Name());
    EXPECT_EQ(Text(Name()), kept);
    EXPECT_EQ(Beeps(), before + 2);
    EXPECT_TRUE(NothingInFront());
  }
}

TEST_P(QuenbyDefault, TellsATextThatIsNoNumberAndTakesZero) {
  for (const char* text : {"abc", "", "1.2.3", "0x10", "-"}) {
    for (const bool enter : {true, false}) {
      SCOPED_TRACE(text);
      Type(Name(), text);
      if (enter) {
        PressKey(Name(), view::Key::kEnter);
      } else {
        Leave(Name());
      }
      EXPECT_THAT(BoxInFront(), IsBox(kNotNumeric, view::Icon::kExclamation));
      AnswerOk();
      EXPECT_TRUE(NothingInFront());
      EXPECT_EQ(Text(Name()), "0");
    }
  }
  EXPECT_EQ(Beeps(), 0);
}

TEST_P(QuenbyDefault, IsNotTestedByAnotherKey) {
  Type(Name(), "20000");
  PressKey(Name(), view::Key::kEscape);
  EXPECT_EQ(Text(Name()), "20000");
  EXPECT_EQ(Beeps(), 0);
  EXPECT_EQ(State().EscPressed, 1);
}

TEST_P(QuenbyDefault, StaysOnThePageWithoutASession) {
  EnterDefault(GetParam(), "1234");
  Leave(Name());
  Run(std::chrono::seconds(1));
  EXPECT_EQ(ports.Attempts(), 0);
}

TEST_P(QuenbyDefault, StaysOnThePageInASession) {
  SetOutputs(1, 20, 300);
  StartSession();
  EnterDefault(GetParam(), "1234");
  Leave(Name());
  Run(std::chrono::seconds(1));
  EXPECT_EQ(Text(Name()), "1234");
  EXPECT_THAT(OutputTexts(), ElementsAre("1", "20", "300"));
  EXPECT_THAT(Exchanges(), IsEmpty());
}

TEST_P(QuenbyDefault, IsNotOverwrittenWhileItIsTyped) {
  StartSession();
  Type(Name(), "12");
  Run(std::chrono::seconds(1));
  EXPECT_EQ(Text(Name()), "12");
}

}  // namespace
}  // namespace tarvo::test
