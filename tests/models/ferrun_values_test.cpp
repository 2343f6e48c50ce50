// The fourteen values, the output, address, safe time and the input type of the Ferrun page.

#include "support/ferrun_fixture.h"

namespace tarvo::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct ValueCase {
  int index;
  int lower;
  int upper;
  int written;  ///< the register that a new value reaches at once in a session; 0 for none
};

void PrintTo(const ValueCase& value, std::ostream* out) {
  *out << value.index;
}

/// The bounds with a module that measures 50 to 10000 mV.
constexpr ValueCase kValueCases[] = {
    {0, 50, 10000, 0},     {1, -10000, 10000, 0}, {2, -32000, 32000, 0}, {3, -32000, 32000, 0}, {4, 9000, 11000, 0},
    {5, -1000, 1000, 0},   {6, 0, 10000, 40012},  {7, 0, 9999, 40013},   {8, 0, 6000, 40014},   {9, 0, 9999, 40015},
    {10, 0, 10000, 40017}, {11, 0, 10000, 40018}, {12, 0, 10000, 40016}, {13, 0, 10000, 0}};

class FerrunValue : public FerrunFixture, public testing::WithParamInterface<ValueCase> {
 protected:
  std::string Label() const { return Value(GetParam().index); }
  int Written() const { return GetParam().written; }
  std::vector<std::string> Written(int word) const {
    return Written() == 0 ? std::vector<std::string>() : std::vector{Writing(Written(), word)};
  }
};

INSTANTIATE_TEST_SUITE_P(All, FerrunValue, testing::ValuesIn(kValueCases),
                         [](const auto& given) { return std::to_string(given.param.index); });

TEST_P(FerrunValue, HasItsBounds) {
  StartSession();
  Click(Label());
  ASSERT_EQ(WindowInFront(), "ChangeValue");
  EXPECT_EQ(Text("MinValue"), "Min Value :" + std::to_string(GetParam().lower));
  EXPECT_EQ(Text("MaxValue"), "Max Value :" + std::to_string(GetParam().upper));
  AnswerChangeValue(std::to_string(GetParam().upper + 1));
  EXPECT_EQ(Text("Text1"), std::to_string(GetParam().upper));
  AnswerChangeValue(std::to_string(GetParam().lower - 1));
  EXPECT_EQ(Text("Text1"), std::to_string(GetParam().lower));
  EXPECT_THAT(Exchanges(), IsEmpty());
}

TEST_P(FerrunValue, ReachesTheModuleAtOnceInASessionWhereItIsToldTo) {
  StartSession();
  for (const int value : {GetParam().lower, GetParam().upper}) {
    Edit(Label(), std::to_string(value));
    EXPECT_EQ(Text(Label()), std::to_string(value));
    EXPECT_THAT(Exchanges(), testing::ElementsAreArray(Written(value)));
    EXPECT_TRUE(TimersRun());
  }
  Run(std::chrono::seconds(1));
  EXPECT_EQ(Text(Label()), std::to_string(GetParam().upper));
  EXPECT_THAT(Exchanges(), IsEmpty());
}

TEST_P(FerrunValue, IsOnlyTheViewWithoutASession) {
  const std::string middle = std::to_string((GetParam().lower + GetParam().upper) / 2 + 25);
  // Without a session the first input type is the selected one.
  Edit(Label(), middle);
  EXPECT_EQ(Text(Label()), middle);
  Run(std::chrono::seconds(1));
  EXPECT_EQ(ports.Attempts(), 0);
}

TEST_P(FerrunValue, IsLeftAsItIsWhenTheDialogIsCancelled) {
  StartSession();
  const std::string before = Text(Label());
  Click(Label());
  Type("ChangeValue.Text1", "9500");
  Click("ChangeValue.Cancel");
  EXPECT_EQ(Text(Label()), before);
  EXPECT_THAT(Exchanges(), IsEmpty());
}

TEST_P(FerrunValue, UpdatesItsElementOfThePollWithAGoodWrite) {
  StartSession();
  RunUntilTheBusIsFree();
  std::vector<int> before;
  for (std::size_t i = 0; i < 20; ++i) before.push_back(Polled(i));
  const int value = GetParam().upper - 7;
  Edit(Label(), std::to_string(value));
  for (std::size_t i = 0; i < 20; ++i) {
    const bool own = Written() != 0 && static_cast<int>(i) == Written() - kFlags;
    EXPECT_EQ(Polled(i), own ? value : before[i]) << i;
  }
}

class FerrunValues : public FerrunFixture {};

TEST_F(FerrunValues, AreSentInTheMiddleOfAPoll) {
  StartSession();
  Click(Value(6));
  Type("ChangeValue.Text1", "7000");
  const History message(At("Ferrun.MessageFerrun"), "Caption");
  RunIntoAPoll();
  module.ForgetLog();
  Click("ChangeValue.OK");
  EXPECT_THAT(module.TakeLog(), ElementsAre("writes 40012 = 0x1B58"));
  Run(std::chrono::seconds(1));
  EXPECT_EQ(module[kSetpoint], 7000);
  EXPECT_THAT(message.Entries(), IsEmpty());
}

TEST_F(FerrunValues, AreSentRoundedAndShownAsTyped) {
  StartSession();
  const std::pair<const char*, int> rows[] = {{"12.4", 12}, {"12.5", 12}, {"13,5", 14}, {" 8 ", 8}};
  for (const auto& [text, sent] : rows) {
    Edit(Value(7), text);
    EXPECT_THAT(Exchanges(), ElementsAre(Writing(40013, sent)));
    EXPECT_EQ(Text(Value(7)), text);
  }
}

TEST_F(FerrunValues, WriteNothingForANumberTooLargeForItsType) {
  StartSession();
  Click(Value(6));
  AnswerChangeValue("4294967296");
  EXPECT_THAT(BoxInFront(), IsBox("Overflow", view::Icon::kExclamation));
  AnswerOk();
  EXPECT_EQ(WindowInFront(), "ChangeValue");
  Click("ChangeValue.Cancel");
  EXPECT_THAT(Exchanges(), IsEmpty());
}

// The output.

TEST_F(FerrunValues, OutputHasItsBoundsAndIsWrittenAtOnce) {
  StartSession();
  Click("OutputFerrun");
  EXPECT_EQ(Text("MinValue"), "Min Value :0");
  EXPECT_EQ(Text("MaxValue"), "Max Value :10000");
  AnswerChangeValue("7500");
  EXPECT_THAT(Exchanges(), ElementsAre("writes 40019 = 0x1D4C"));
  EXPECT_EQ(Text("OutputFerrun"), "7500");
  EXPECT_EQ(Polled(kPolledOutput), 7500);
  EXPECT_TRUE(TimersRun());
  RunThroughADecode();
  EXPECT_EQ(Text("OutputFerrun"), "7500");
  EXPECT_EQ(Percent("BargFerrun3"), 75);
}

TEST_F(FerrunValues, OutputIsOnlyTheViewWithoutASession) {
  Edit("OutputFerrun", "7500");
  EXPECT_EQ(Text("OutputFerrun"), "7500");
  Run(std::chrono::seconds(1));
  EXPECT_EQ(ports.Attempts(), 0);
}

TEST_F(FerrunValues, OutputIsLeftAsItIsWhenTheDialogIsCancelled) {
  StartSession();
  Click("OutputFerrun");
  Type("ChangeValue.Text1", "7500");
  Click("ChangeValue.Cancel");
  EXPECT_EQ(Text("OutputFerrun"), "0");
  EXPECT_THAT(Exchanges(), IsEmpty());
}

TEST_F(FerrunValues, OutputTakesNoClickWhileTheLoopHasIt) {
  Set(kFlags, 0x0400);
  StartSession();
  EXPECT_EQ(RefusalOf("OutputFerrun"), "OutputFerrun is disabled");
  EXPECT_TRUE(NothingInFront());
}

TEST_F(FerrunValues, OutputSpringsBackWhenTheWriteIsLost) {
  Set(kOutput, 100);
  StartSession();
  Click("OutputFerrun");
  Type("ChangeValue.Text1", "7500");
  RunUntilTheBusIsFree();
  module.Next(ModuleFault::Exception(4));
  Click("ChangeValue.OK");
  RunThroughADecode();
  EXPECT_EQ(Text("OutputFerrun"), "100");
  EXPECT_TRUE(NothingInFront());
}

// Address, safe time and the lists.

struct SettingCase {
  const char* label;
  const char* minimum;
  const char* maximum;
};

class FerrunSetting : public FerrunFixture, public testing::WithParamInterface<SettingCase> {};

INSTANTIATE_TEST_SUITE_P(Labels, FerrunSetting,
                         testing::Values(SettingCase{"labAddressFerrun", "1", "255"},
                                         SettingCase{"labSafetimeFerrun", "5", "250"}),
                         [](const auto& given) { return given.param.label; });

TEST_P(FerrunSetting, HasItsBounds) {
  Click(GetParam().label);
  EXPECT_EQ(Text("MinValue"), std::string("Min Value :") + GetParam().minimum);
  EXPECT_EQ(Text("MaxValue"), std::string("Max Value :") + GetParam().maximum);
  AnswerChangeValue("256");
  EXPECT_EQ(Text("Text1"), GetParam().maximum);
  AnswerChangeValue("0");
  EXPECT_EQ(Text("Text1"), GetParam().minimum);
}

TEST_P(FerrunSetting, ChangesOnlyTheView) {
  for (const bool session : {false, true}) {
    if (session) StartSession();
    const int attempts = ports.Attempts();
    Edit(GetParam().label, "99");
    Run(std::chrono::seconds(1));
    EXPECT_EQ(Text(GetParam().label), "99");
    EXPECT_EQ(ports.Attempts(), attempts);
  }
  EXPECT_THAT(Exchanges(), IsEmpty());
  EXPECT_EQ(State().ModuleAddress, 1);
}

TEST_F(FerrunValues, ListsAreChosenWithoutAWordOnTheLine) {
  StartSession();
  Choose("comboBaudFerrun", 0);
  Choose("comboInputFilterFerrun", 4);
  Choose("comboInputTypeFerrun", 7);
  Run(std::chrono::seconds(1));
  EXPECT_EQ(Text("comboBaudFerrun"), "1200");
  EXPECT_EQ(Text("comboInputFilterFerrun"), "10 Sec");
  EXPECT_EQ(ListIndex("comboInputTypeFerrun"), 7);
  EXPECT_THAT(Exchanges(), IsEmpty());
}

// The input type.

class FerrunType : public FerrunFixture, public testing::WithParamInterface<int> {
 protected:
  const FerrunInput& Input() const { return kFerrunInputs[GetParam()]; }
  /// Another one comes first, so that the choice changes the list.
  void ChooseIt() {
    Choose("comboInputTypeFerrun", GetParam() == 5 ? 6 : 5);
    for (int i = 0; i < 4; ++i) dynamic_cast<view::Label&>(At(Value(i))).Caption = "7";
    Choose("comboInputTypeFerrun", GetParam());
  }
};

INSTANTIATE_TEST_SUITE_P(Positions, FerrunType, testing::Range(0, kFerrunInputCount));

TEST_P(FerrunType, RewritesTheScales) {
  ChooseIt();
  const std::string lower = std::to_string(Input().lower);
  const std::string upper = std::to_string(Input().upper);
  EXPECT_EQ(Text(Value(0)), upper);
  EXPECT_EQ(Text(Value(1)), Input().scaled ? "0" : lower);
  EXPECT_EQ(Text(Value(2)), Input().scaled ? "7" : upper);
  EXPECT_EQ(Text(Value(3)), Input().scaled ? "7" : lower);
}

TEST_P(FerrunType, SetsBothUnits) {
  ChooseIt();
  EXPECT_EQ(Text("UnitaMisuraFerrun1"), Input().unit);
  EXPECT_EQ(Text("UnitaMisuraFerrun2"), Input().unit);
}

TEST_P(FerrunType, EnablesTheScalesUnlessTheyAreFixed) {
  ChooseIt();
  for (int i = 0; i < 4; ++i) EXPECT_EQ(Enabled(Value(i)), Input().scaled) << i;
  for (int i = 4; i < kValues; ++i) EXPECT_TRUE(Enabled(Value(i))) << i;
}

TEST_P(FerrunType, SetsTheBoundsOfTheScales) {
  ChooseIt();
  if (!Input().scaled) {
    EXPECT_EQ(RefusalOf(Value(0)), Value(0) + " is disabled");
    EXPECT_EQ(RefusalOf(Value(1)), Value(1) + " is disabled");
    return;
  }
  const std::string upper = "Max Value :" + std::to_string(Input().upper);
  Click(Value(0));
  EXPECT_EQ(Text("MinValue"), "Min Value :" + std::to_string(Input().lower));
  EXPECT_EQ(Text("MaxValue"), upper);
  Click("ChangeValue.Cancel");
  Click(Value(1));
  EXPECT_EQ(Text("MinValue"), GetParam() == 0 ? "Min Value :-10000" : "Min Value :0");
  EXPECT_EQ(Text("MaxValue"), upper);
}

TEST_P(FerrunType, SetsTheBoundsOfTheScalesFromAModuleToo) {
  Set(kInput, (GetParam() + 1) << 8);
  StartSession();
  if (!Input().scaled) {
    EXPECT_EQ(RefusalOf(Value(0)), Value(0) + " is disabled");
    return;
  }
  Click(Value(0));
  EXPECT_EQ(Text("MinValue"), "Min Value :" + std::to_string(Input().lower));
  EXPECT_EQ(Text("MaxValue"), "Max Value :" + std::to_string(Input().upper));
}

TEST_P(FerrunType, IsNotWritten) {
  StartSession();
  ChooseIt();
  Run(std::chrono::seconds(1));
  EXPECT_THAT(Exchanges(), IsEmpty());
}

}  // namespace
}  // namespace tarvo::test
