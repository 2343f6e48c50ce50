#include "core/fault.h"
#include "view/view_bench.h"

namespace tarvo::view {
namespace {

/// A list whose handler writes down what it finds selected.
class ComboBoxes : public ViewBench {
 protected:
  void SetUp() override {
    ViewBench::SetUp();
    box_.OnSelect = [this] { log_.push_back(std::to_string(box_.ListIndex()) + " " + box_.Text()); };
  }

  ComboBox& box_ = page_.BaudBelk;
};

TEST_F(ComboBoxes, BeginWithNothingSelected) {
  EXPECT_EQ(box_.ListIndex(), -1);
  EXPECT_EQ(box_.Text(), "");
  EXPECT_EQ(box_.SelectedCode(), 0);
}

TEST_F(ComboBoxes, AProgramChangeRunsTheHandlerBeforeTheNextStatement) {
  box_.ListIndex = 1;
  log_.emplace_back("next statement");
  EXPECT_THAT(log_, ElementsAre("1 9600", "next statement"));
}

TEST_F(ComboBoxes, AnEqualProgramChangeRunsNoHandler) {
  box_.ListIndex = 1;
  box_.ListIndex = 1;
  EXPECT_THAT(log_, ElementsAre("1 9600"));
}

TEST_F(ComboBoxes, AUsersChoiceRunsTheHandlerAlsoForTheSameEntry) {
  EXPECT_TRUE(screen_.Choose(box_, 3).taken);
  EXPECT_TRUE(screen_.Choose(box_, 3).taken);
  EXPECT_THAT(log_, ElementsAre("3 38400", "3 38400"));
}

TEST_F(ComboBoxes, AHandlerMaySelectAnotherEntry) {
  box_.OnSelect = [this] {
    log_.push_back(std::to_string(box_.ListIndex()));
    if (box_.ListIndex() == 4) box_.ListIndex = 0;
  };
  box_.ListIndex = 4;
  EXPECT_THAT(log_, ElementsAre("4", "0"));
  EXPECT_EQ(box_.ListIndex(), 0);
}

TEST_F(ComboBoxes, AFaultInTheHandlerOfAChoiceShowsABox) {
  box_.OnSelect = [] { throw core::Fault(core::kSubscriptOutOfRange); };
  EXPECT_TRUE(screen_.Choose(box_, 2).taken);
  EXPECT_EQ(FrontText(), "Subscript out of range");
  EXPECT_EQ(box_.ListIndex(), 2);
}

TEST_F(ComboBoxes, SelectCodeFindsTheEntryByItsCode) {
  EXPECT_TRUE(box_.SelectCode(6));
  EXPECT_EQ(box_.Text(), "115200");
  EXPECT_EQ(box_.SelectedCode(), 6);
  EXPECT_FALSE(box_.SelectCode(5));
  EXPECT_EQ(box_.ListIndex(), 4);
  EXPECT_THAT(log_, ElementsAre("4 115200"));
}

TEST_F(ComboBoxes, OtherRowsLeaveTheSelectedPosition) {
  box_.ListIndex = 1;
  log_.clear();
  constexpr std::array<ListRow, 2> kRows = {{{"NI100", 3}, {"PT100", 4}}};
  box_.SetRows(kRows);
  EXPECT_EQ(box_.ListIndex(), 1);
  EXPECT_EQ(box_.Text(), "PT100");
  EXPECT_EQ(box_.SelectedCode(), 4);
  EXPECT_THAT(log_, IsEmpty());
}

TEST_F(ComboBoxes, ASelectionBehindTheLastRowShowsNothing) {
  box_.ListIndex = 4;
  constexpr std::array<ListRow, 1> kRows = {{{"4800", 7}}};
  box_.SetRows(kRows);
  EXPECT_EQ(box_.Text(), "");
  EXPECT_EQ(box_.SelectedCode(), 0);
}

TEST_F(ComboBoxes, AddItemPutsAnEntryAtTheEnd) {
  box_.AddItem("57600", 5);
  EXPECT_EQ(box_.List().back(), "57600");
  EXPECT_TRUE(box_.SelectCode(5));
  EXPECT_EQ(box_.ListIndex(), 5);
}

TEST_F(ComboBoxes, ASelectionBehindARemovedEntryFollowsItsOwn) {
  box_.ListIndex = 3;
  box_.RemoveItem(1);
  EXPECT_EQ(box_.ListIndex(), 2);
  EXPECT_EQ(box_.Text(), "38400");
  EXPECT_EQ(box_.SelectedCode(), 3);
}

TEST_F(ComboBoxes, ASelectionBeforeARemovedEntryStays) {
  box_.ListIndex = 1;
  box_.RemoveItem(2);
  EXPECT_EQ(box_.ListIndex(), 1);
  EXPECT_EQ(box_.Text(), "9600");
}

TEST_F(ComboBoxes, TheSelectionOfARemovedEntryIsLost) {
  box_.ListIndex = 3;
  box_.RemoveItem(3);
  EXPECT_EQ(box_.ListIndex(), -1);
  EXPECT_EQ(box_.Text(), "");
}

TEST_F(ComboBoxes, RemovingAnEntryThatIsNotThereIsAFault) {
  EXPECT_THROW(box_.RemoveItem(5), core::Fault);
  EXPECT_THROW(box_.RemoveItem(-1), core::Fault);
  EXPECT_EQ(box_.List().size(), 5U);
}

}  // namespace
}  // namespace tarvo::view
