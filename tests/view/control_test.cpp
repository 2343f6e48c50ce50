#include "view/control.h"

#include "view/ar_metor.h"
#include "view/view_bench.h"

namespace tarvo::view {
namespace {

class Controls : public ViewBench {};

TEST_F(Controls, AMemberOfAnArrayHasItsIndexInItsName) {
  TestWindow window(screen_, "Window", log_);
  ControlArray<Label, 5> totIn([&](int i) { return Label(window, "TotIN", "0", "40003 - Counter", i); });
  EXPECT_EQ(totIn.Size(), 5U);
  EXPECT_EQ(totIn[0].Name(), "TotIN(0)");
  EXPECT_EQ(totIn[4].Name(), "TotIN(4)");
  EXPECT_EQ(window.Find("TotIN(3)"), &totIn[3]);
  EXPECT_EQ(window.Find("TotIN"), nullptr);
  EXPECT_THROW(totIn[5], std::out_of_range);
}

TEST_F(Controls, AWindowKnowsItsControlsInTheirOrder) {
  TestWindow window(screen_, "Window", log_);
  const Button first(window, "First");
  const Label second(window, "Second");
  ASSERT_EQ(window.Controls().size(), 2U);
  EXPECT_EQ(window.Controls()[0], &first);
  EXPECT_EQ(window.Controls()[1], &second);
}

TEST(WithoutMnemonic, TakesTheMarkOutAndKeepsADoubledOne) {
  EXPECT_EQ(WithoutMnemonic("&Write EEprom"), "Write EEprom");
  EXPECT_EQ(WithoutMnemonic("S&top"), "Stop");
  EXPECT_EQ(WithoutMnemonic("Read && Write"), "Read & Write");
  EXPECT_EQ(WithoutMnemonic("&&&Stop"), "&Stop");
  EXPECT_EQ(WithoutMnemonic("End&"), "End");
  EXPECT_EQ(WithoutMnemonic("Plain"), "Plain");
  EXPECT_EQ(WithoutMnemonic(""), "");
}

/// The names of a control's properties, in their order.
Log PropertyNames(const Control& control) {
  Log names;
  for (const NamedValue& value : control.Properties()) names.emplace_back(value.name);
  return names;
}

TEST_F(Controls, EachKindTellsItsProperties) {
  const ARMetor meter(page_, "Meter");
  const Clip clip(page_, "MediaPlayer1");
  const Panel panel(page_, "StatusBar1", 1);
  EXPECT_THAT(PropertyNames(page_.FilterBelk),
              ElementsAre("Caption", "BackColor", "Enabled", "Visible", "ToolTipText"));
  EXPECT_THAT(PropertyNames(page_.StartBelk), ElementsAre("Caption", "Enabled", "Visible", "ToolTipText"));
  EXPECT_THAT(PropertyNames(page_.CheckBelk1),
              ElementsAre("Caption", "Value", "BackColor", "Enabled", "Visible", "ToolTipText"));
  EXPECT_THAT(PropertyNames(page_.Even), ElementsAre("Caption", "Value", "Enabled", "Visible", "ToolTipText"));
  EXPECT_THAT(PropertyNames(page_.BaudBelk),
              ElementsAre("Text", "ListIndex", "List", "ItemData", "Enabled", "Visible", "ToolTipText"));
  EXPECT_THAT(PropertyNames(page_.Text1), ElementsAre("Text", "Enabled", "Visible", "ToolTipText"));
  EXPECT_THAT(PropertyNames(page_.StatoIN), ElementsAre("Picture", "Enabled", "Visible", "ToolTipText"));
  EXPECT_THAT(PropertyNames(page_.Overflow), ElementsAre("Caption", "BackColor", "Enabled", "Visible", "ToolTipText"));
  EXPECT_THAT(PropertyNames(page_.Timer1), ElementsAre("Interval", "Enabled"));
  EXPECT_THAT(PropertyNames(page_.SaveMNU), ElementsAre("Caption", "Value", "Enabled", "Visible", "ToolTipText"));
  EXPECT_THAT(PropertyNames(meter),
              ElementsAre("Caption", "Percent", "FillColor", "BackColor", "Enabled", "Visible", "ToolTipText"));
  EXPECT_THAT(PropertyNames(clip), ElementsAre("FileName", "Loop", "Playing", "Enabled", "Visible", "ToolTipText"));
  EXPECT_THAT(PropertyNames(panel), ElementsAre("Text", "Enabled", "Visible", "ToolTipText"));
}

/// The present value of the property of that name.
PropertyValue ValueOf(const Control& control, std::string_view name) {
  for (const NamedValue& value : control.Properties()) {
    if (value.name == name) return value.value;
  }
  ADD_FAILURE() << control.Name() << " has no " << name;
  return {};
}

TEST_F(Controls, PropertiesTellPresentValuesInTheirType) {
  page_.CheckBelk1.Value = 1;
  page_.Even.Value = true;
  page_.BaudBelk.ListIndex = 4;
  page_.StatoIN.Picture = 2;
  page_.FilterBelk.Visible = false;
  EXPECT_EQ(ValueOf(page_.CheckBelk1, "Value"), PropertyValue(std::int64_t{1}));
  EXPECT_EQ(ValueOf(page_.Even, "Value"), PropertyValue(true));
  EXPECT_EQ(ValueOf(page_.BaudBelk, "Text"), PropertyValue(std::string("115200")));
  EXPECT_EQ(ValueOf(page_.BaudBelk, "ItemData"), PropertyValue(std::vector<int>{0, 1, 2, 3, 6}));
  EXPECT_EQ(ValueOf(page_.StatoIN, "Picture"), PropertyValue(std::int64_t{2}));
  EXPECT_EQ(ValueOf(page_.Overflow, "BackColor"), PropertyValue(std::int64_t{64}));
  EXPECT_EQ(ValueOf(page_.FilterBelk, "Visible"), PropertyValue(false));
  EXPECT_EQ(ValueOf(page_.FilterBelk, "Caption"), PropertyValue(std::string("20")));
}

TEST_F(Controls, AMenuItemKnowsWhatItHangsUnder) {
  EXPECT_EQ(page_.FileMNU.Menu(), nullptr);
  EXPECT_EQ(page_.SaveMNU.Menu(), &page_.FileMNU);
}

}  // namespace
}  // namespace tarvo::view
