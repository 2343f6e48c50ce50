#include "support/gaven_fixture.h"

namespace tarvo::test {
namespace {

using testing::IsEmpty;

class GavenScale : public GavenFixture {};

TEST_F(GavenScale, IsEditedInASessionWithoutAWordOnTheLineAndStays) {
  StartSession();
  for (const Row& row : kRows) {
    for (const std::string& scale : {Value(row.start), Value(row.full)}) {
      Click(scale);
      AnswerChangeValue("4321");
      Run(std::chrono::seconds(1));
      EXPECT_EQ(Text(scale), "4321");
      EXPECT_THAT(Exchanges(), IsEmpty());
    }
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
