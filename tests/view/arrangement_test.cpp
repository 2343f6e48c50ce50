#include "view/arrangement.h"

#include "view/view_bench.h"

namespace tarvo::view {
namespace {

class Arrangements : public ViewBench {};

Log NamesOf(const std::vector<Control*>& controls) {
  Log names;
  for (const Control* control : controls) names.push_back(control->Name());
  return names;
}

TEST_F(Arrangements, ReadFromTopToBottomAndLeftToRight) {
  const Node node = Column({
      Head("Belk", "Five inputs", {Show(page_.FilterBelk), Show(page_.StartBelk)}),
      Row({Frame("Flags", Column({Show(page_.CheckBelk1), Show(page_.Even)})), Space(), Show(page_.Odd)}),
      Table({"Input", ""}, {Row({Text("1"), Show(page_.StatoIN)}), Row({Text("2"), Show(page_.Overflow)})}),
      Scroller(Field("Baud", Show(page_.BaudBelk))),
      PageList({Show(page_.Raw)}),
      PagePlace(),
      Show(page_.Text1),
  });
  EXPECT_THAT(NamesOf(ReadingOrder(node)), ElementsAre("FilterBelk", "StartBelk", "CheckBelk1", "Even", "Odd",
                                                       "StatoIN", "Overflow", "BaudBelk", "Raw", "Text1"));
}

TEST_F(Arrangements, EachNodeKeepsWhatItWasMadeOf) {
  const Node head = Head("Belk", "Five inputs", {Show(page_.FilterBelk)});
  EXPECT_EQ(head.kind, Node::Kind::kHead);
  EXPECT_EQ(head.text, "Belk");
  EXPECT_EQ(head.note, "Five inputs");
  ASSERT_EQ(head.children.size(), 1U);
  EXPECT_EQ(head.children[0].kind, Node::Kind::kControl);
  EXPECT_EQ(head.children[0].control, &page_.FilterBelk);

  const Node table = Table({"Input", "Counter"}, {Row({})});
  EXPECT_EQ(table.kind, Node::Kind::kTable);
  EXPECT_THAT(table.headings, ElementsAre("Input", "Counter"));
  EXPECT_EQ(table.children[0].kind, Node::Kind::kRow);

  const Node frame = Frame("Flags", Text("text"));
  EXPECT_EQ(frame.kind, Node::Kind::kFrame);
  EXPECT_EQ(frame.text, "Flags");
  EXPECT_EQ(frame.children[0].kind, Node::Kind::kText);
  EXPECT_EQ(frame.children[0].text, "text");

  EXPECT_EQ(Field("Baud", Space()).text, "Baud");
  EXPECT_EQ(Field("Baud", Space()).kind, Node::Kind::kField);
  EXPECT_EQ(Column({}).kind, Node::Kind::kColumn);
  EXPECT_EQ(Scroller(Space()).kind, Node::Kind::kScroller);
  EXPECT_EQ(Space().kind, Node::Kind::kSpace);
  EXPECT_EQ(PageList({}).kind, Node::Kind::kPageList);
  EXPECT_EQ(PagePlace().kind, Node::Kind::kPagePlace);
}

TEST_F(Arrangements, OfNothingHaveNoControls) {
  EXPECT_THAT(ReadingOrder(Column({Space(), Text("text")})), IsEmpty());
}

}  // namespace
}  // namespace tarvo::view
