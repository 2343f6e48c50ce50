#include "support/belk_fixture.h"

namespace tarvo::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class BelkCounter : public BelkFixture, public testing::WithParamInterface<int> {
 protected:
  std::string Counter() const { return Member("TotIN", GetParam()); }
  int Register() const { return kCounter1 + GetParam(); }
};

INSTANTIATE_TEST_SUITE_P(Inputs, BelkCounter, testing::Range(0, 5));

TEST_P(BelkCounter, IsPresetInASessionWithoutAReadBefore) {
  StartSession();
  Click(Counter());
  ASSERT_EQ(WindowInFront(), "ChangeValue");
  EXPECT_EQ(Text("MinValue"), "Min Value :0");
  EXPECT_EQ(Text("MaxValue"), "Max Value :65535");
  AnswerChangeValue("1234");
  EXPECT_THAT(Exchanges(), ElementsAre(Writing(Register(), 1234)));
  EXPECT_EQ(Text(Counter()), "1234");
  EXPECT_EQ(Polled(kPolledCounter1 + static_cast<std::size_t>(GetParam())), 1234);
  EXPECT_TRUE(TimersRun());
}

TEST_P(BelkCounter, DoesNothingWithoutASession) {
  Click(Counter());
  EXPECT_TRUE(NothingInFront());
  Run(std::chrono::seconds(1));
  EXPECT_EQ(ports.Attempts(), 0);
  EXPECT_EQ(Text(Counter()), "0");
}

TEST_P(BelkCounter, IsLeftAsItIsWhenTheDialogIsCancelled) {
  module[Register()] = 5;
  StartSession();
  Click(Counter());
  Type("ChangeValue.Text1", "9");
  Click("ChangeValue.Cancel");
  EXPECT_THAT(Exchanges(), IsEmpty());
  EXPECT_EQ(Text(Counter()), "5");
}

class BelkCounters : public BelkFixture {};

TEST_F(BelkCounters, TakeAllOf16Bits) {
  StartSession();
  for (const int value : {0, 1, 32767, 32768, 40000, 65535}) {
    SCOPED_TRACE(value);
    Click("TotIN(0)");
    AnswerChangeValue(std::to_string(value));
    EXPECT_THAT(Exchanges(), ElementsAre(Writing(kCounter1, value)));
    RunThroughADecode();
    EXPECT_EQ(Text("TotIN(0)"), std::to_string(value));
  }
}

TEST_F(BelkCounters, KeepTheirDialogOpenBeyondTheirBounds) {
  StartSession();
  Click("TotIN(0)");
  AnswerChangeValue("65536");
  EXPECT_EQ(WindowInFront(), "ChangeValue");
  EXPECT_EQ(Text("Text1"), "65535");
  AnswerChangeValue("-1");
  EXPECT_EQ(Text("Text1"), "0");
  EXPECT_THAT(Exchanges(), IsEmpty());
  Click("ChangeValue.OK");
  EXPECT_THAT(Exchanges(), ElementsAre("writes 40003 = 0x0000"));
}

TEST_F(BelkCounters, SendADecimalTextRounded) {
  StartSession();
  const std::pair<const char*, int> rows[] = {{"12.4", 12}, {"12.5", 12}, {"13.5", 14},
                                              {"1,5", 2},   {"12.6", 13}, {" 8 ", 8}};
  for (const auto& [text, sent] : rows) {
    SCOPED_TRACE(text);
    Click("TotIN(1)");
    AnswerChangeValue(text);
    EXPECT_THAT(Exchanges(), ElementsAre(Writing(kCounter1 + 1, sent)));
  }
}

TEST_F(BelkCounters, ShowTheTextAsTypedUntilTheNextDecode) {
  StartSession();
  Click("TotIN(1)");
  AnswerChangeValue("12.4");
  EXPECT_EQ(Text("TotIN(1)"), "12.4");
  RunThroughADecode();
  EXPECT_EQ(Text("TotIN(1)"), "12");
}

TEST_F(BelkCounters, WriteNothingForANumberTooLargeForItsType) {
  StartSession();
  Click("TotIN(0)");
  AnswerChangeValue("4294967296");
  EXPECT_THAT(BoxInFront(), IsBox("Overflow", view::Icon::kExclamation));
  AnswerOk();
  EXPECT_EQ(WindowInFront(), "ChangeValue");
  Click("ChangeValue.Cancel");
  EXPECT_THAT(Exchanges(), IsEmpty());
}

TEST_F(BelkCounters, SpringBackWhenTheWriteIsLost) {
  module[kCounter1] = 5;
  StartSession();
  Click("TotIN(0)");
  Type("ChangeValue.Text1", "9");
  ASSERT_TRUE(RunUntil([this] { return !Modcom().CommBusy(); }));
  module.Next(ModuleFault::Exception(4));
  Click("ChangeValue.OK");
  EXPECT_EQ(Polled(kPolledCounter1), 5);
  RunThroughADecode();
  EXPECT_EQ(Text("TotIN(0)"), "5");
  EXPECT_TRUE(NothingInFront());
}

TEST_F(BelkCounters, ArePresetInTheMiddleOfAPoll) {
  StartSession();
  Click("TotIN(0)");
  Type("ChangeValue.Text1", "9");
  const History message(At("Belk.MessageBelk"), "Caption");
  RunIntoAPoll();
  module.ForgetLog();
  Click("ChangeValue.OK");
  EXPECT_THAT(module.TakeLog(), ElementsAre("writes 40003 = 0x0009"));
  Run(std::chrono::seconds(1));
  EXPECT_EQ(Text("TotIN(0)"), "9");
  EXPECT_THAT(message.Entries(), IsEmpty());
}

struct SettingCase {
  const char* label;
  const char* minimum;
  const char* maximum;
  const char* tooLarge;
};

/// A value that reaches the module only by Write EEprom.
class BelkSetting : public BelkFixture, public testing::WithParamInterface<SettingCase> {};

INSTANTIATE_TEST_SUITE_P(Labels, BelkSetting,
                         testing::Values(SettingCase{"FilterBelk", "1", "254", "255"},
                                         SettingCase{"AddressBelk", "1", "255", "256"}),
                         [](const auto& given) { return given.param.label; });

TEST_P(BelkSetting, HasItsBounds) {
  Click(GetParam().label);
  EXPECT_EQ(Text("MinValue"), std::string("Min Value :") + GetParam().minimum);
  EXPECT_EQ(Text("MaxValue"), std::string("Max Value :") + GetParam().maximum);
  AnswerChangeValue(GetParam().tooLarge);
  EXPECT_EQ(Text("Text1"), GetParam().maximum);
  AnswerChangeValue("0");
  EXPECT_EQ(Text("Text1"), GetParam().minimum);
}

TEST_P(BelkSetting, IsEditedWithoutASession) {
  Click(GetParam().label);
  AnswerChangeValue("99");
  EXPECT_EQ(Text(GetParam().label), "99");
  Run(std::chrono::seconds(1));
  EXPECT_EQ(ports.Attempts(), 0);
}

TEST_P(BelkSetting, IsEditedInASessionWithoutAWordOnTheLine) {
  StartSession();
  Click(GetParam().label);
  AnswerChangeValue("99");
  Run(std::chrono::seconds(1));
  EXPECT_EQ(Text(GetParam().label), "99");
  EXPECT_THAT(Exchanges(), IsEmpty());
  EXPECT_EQ(module[kFilter], 10);
  EXPECT_EQ(module[kCommunication], 0x0101);
}

TEST_P(BelkSetting, IsLeftAsItIsWhenTheDialogIsCancelled) {
  Click(GetParam().label);
  Type("ChangeValue.Text1", "99");
  Click("ChangeValue.Cancel");
  EXPECT_EQ(Text(GetParam().label), "1");
}

class BelkBaud : public BelkFixture {};

TEST_F(BelkBaud, IsChosenWithoutAWordOnTheLine) {
  StartSession();
  Choose("BaudBelk", 0);
  Run(std::chrono::seconds(1));
  EXPECT_EQ(Text("BaudBelk"), "1200");
  EXPECT_THAT(Exchanges(), IsEmpty());
}

}  // namespace
}  // namespace tarvo::test
