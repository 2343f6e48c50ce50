// The settings of a page that a dialog edits and that reach the module only by Write EEprom.

#include <ostream>

#include "support/simple_page_fixture.h"

namespace tarvo::test {
namespace {

using testing::IsEmpty;

struct SettingCase {
  const SimplePage* page;
  const char* label;
  const char* minimum;  ///< and what the page begins with
  const char* maximum;
  const char* tooSmall;
  const char* tooLarge;

  friend void PrintTo(const SettingCase& row, std::ostream* out) { *out << row.label; }
};

class PageSetting : public SimplePageFixture, public testing::WithParamInterface<SettingCase> {
 protected:
  PageSetting() : SimplePageFixture(*GetParam().page) {}

  std::string Shown() const { return Text(GetParam().label); }
  void Edit(const char* text) {
    Click(GetParam().label);
    AnswerChangeValue(text);
  }
};

INSTANTIATE_TEST_SUITE_P(Labels, PageSetting,
                         testing::Values(SettingCase{&CobinPage(), "SafetimeCobin", "5", "250", "4", "251"},
                                         SettingCase{&CobinPage(), "AddressCobin", "1", "255", "0", "256"},
                                         SettingCase{&LumetPage(), "FilterLumet", "1", "254", "0", "255"},
                                         SettingCase{&LumetPage(), "AddressLumet", "1", "255", "0", "256"}),
                         [](const auto& given) { return given.param.label; });

TEST_P(PageSetting, HasItsBounds) {
  Click(GetParam().label);
  ASSERT_EQ(WindowInFront(), "ChangeValue");
  EXPECT_EQ(Text("MinValue"), std::string("Min Value :") + GetParam().minimum);
  EXPECT_EQ(Text("MaxValue"), std::string("Max Value :") + GetParam().maximum);
  AnswerChangeValue(GetParam().tooLarge);
  EXPECT_EQ(Text("Text1"), GetParam().maximum);
  AnswerChangeValue(GetParam().tooSmall);
  EXPECT_EQ(Text("Text1"), GetParam().minimum);
}

TEST_P(PageSetting, IsEditedWithoutASession) {
  Edit("99");
  EXPECT_EQ(Shown(), "99");
  ExpectOffTheLine();
}

TEST_P(PageSetting, IsEditedInASessionWithoutAWordOnTheLineAndStays) {
  StartSession();
  Edit("99");
  Run(std::chrono::seconds(2));
  EXPECT_EQ(Shown(), "99");
  EXPECT_THAT(Exchanges(), IsEmpty());
  EXPECT_TRUE(InSession());
  EXPECT_TRUE(TimersRun());
}

TEST_P(PageSetting, IsLeftAsItIsWhenTheDialogIsCancelled) {
  Click(GetParam().label);
  Type("ChangeValue.Text1", "99");
  Click("ChangeValue.Cancel");
  EXPECT_EQ(Shown(), GetParam().minimum);
}

}  // namespace
}  // namespace tarvo::test
