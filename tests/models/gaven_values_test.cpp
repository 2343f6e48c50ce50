#include "support/gaven_fixture.h"

namespace tarvo::test {
namespace {

using testing::IsEmpty;

/// A start or full scale, by its element of `ValueGaven`.
class GavenScale : public GavenFixture, public testing::WithParamInterface<int> {
 protected:
  std::string Scale() const { return Value(GetParam()); }
};

INSTANTIATE_TEST_SUITE_P(Elements, GavenScale, testing::Values(0, 1, 6, 7, 10, 11, 14, 15));

TEST_P(GavenScale, HasItsBounds) {
  Click(Scale());
  ASSERT_EQ(WindowInFront(), "ChangeValue");
  EXPECT_EQ(Text("MinValue"), "Min Value :-10000");
  EXPECT_EQ(Text("MaxValue"), "Max Value :10000");
  AnswerChangeValue("10001");
  EXPECT_EQ(Text("Text1"), "10000");
  AnswerChangeValue("-10001");
  EXPECT_EQ(Text("Text1"), "-10000");
  Click("ChangeValue.OK");
  EXPECT_TRUE(NothingInFront());
  EXPECT_EQ(Text(Scale()), "-10000");
}

TEST_P(GavenScale, IsEditedWithoutASession) {
  Click(Scale());
  AnswerChangeValue("-123");
  for (int i = 0; i < kValues; ++i) EXPECT_EQ(Text(Value(i)), i == GetParam() ? "-123" : "0") << i;
  Run(std::chrono::seconds(1));
  EXPECT_EQ(ports.Attempts(), 0);
}

TEST_P(GavenScale, IsEditedInASessionWithoutAWordOnTheLineAndStays) {
  StartSession();
  Click(Scale());
  AnswerChangeValue("4321");
  Run(std::chrono::seconds(1));
  EXPECT_EQ(Text(Scale()), "4321");
  EXPECT_THAT(Exchanges(), IsEmpty());
}

TEST_P(GavenScale, IsLeftAsItIsWhenTheDialogIsCancelled) {
  Click(Scale());
  Type("ChangeValue.Text1", "99");
  Click("ChangeValue.Cancel");
  EXPECT_EQ(Text(Scale()), "0");
}

TEST_P(GavenScale, KeepsTheTextAsTyped) {
  Click(Scale());
  AnswerChangeValue("12.4");
  EXPECT_EQ(Text(Scale()), "12.4");
}

/// What is measured, by its element of `ValueGaven`.
class GavenMeasured : public GavenFixture, public testing::WithParamInterface<int> {};

INSTANTIATE_TEST_SUITE_P(Elements, GavenMeasured, testing::Values(2, 3, 4, 5, 8, 9, 12, 13));

TEST_P(GavenMeasured, IsNotEdited) {
  for (const bool session : {false, true}) {
    if (session) StartSession();
    program.GetScreen().Click(At(Value(GetParam())));
    Run(std::chrono::seconds(1));
    EXPECT_TRUE(NothingInFront());
    EXPECT_EQ(Text(Value(GetParam())), "0");
    EXPECT_THAT(Exchanges(), IsEmpty());
  }
}

class GavenSettings : public GavenFixture {};

TEST_F(GavenSettings, HaveAnAddressFrom1To255) {
  Click("AddressGaven");
  EXPECT_EQ(Text("MinValue"), "Min Value :1");
  EXPECT_EQ(Text("MaxValue"), "Max Value :255");
  AnswerChangeValue("256");
  EXPECT_EQ(Text("Text1"), "255");
  AnswerChangeValue("0");
  EXPECT_EQ(Text("Text1"), "1");
  AnswerChangeValue("200");
  EXPECT_EQ(Text("AddressGaven"), "200");
  Run(std::chrono::seconds(1));
  EXPECT_EQ(ports.Attempts(), 0);
}

TEST_F(GavenSettings, AreChosenInASessionWithoutAWordOnTheLine) {
  StartSession();
  Choose("BaudGaven", 0);
  for (int i = 0; i < kInputs; ++i) Choose(Member("FilterGaven", i), 6 - i);
  Click("AddressGaven");
  AnswerChangeValue("77");
  Run(std::chrono::seconds(1));
  EXPECT_EQ(Text("BaudGaven"), "1200");
  for (int i = 0; i < kInputs; ++i) EXPECT_EQ(ListIndex(Member("FilterGaven", i)), 6 - i);
  EXPECT_EQ(Text("AddressGaven"), "77");
  EXPECT_THAT(Exchanges(), IsEmpty());
  EXPECT_TRUE(TimersRun());
}

}  // namespace
}  // namespace tarvo::test
