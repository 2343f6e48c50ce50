#include "console/words.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tarvo::console {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using namespace std::chrono_literals;

Word Bare(std::string text) {
  return {std::move(text), false};
}
Word Quoted(std::string text) {
  return {std::move(text), true};
}

TEST(Words, AreSeparatedByBlanksAndTabs) {
  EXPECT_THAT(Split("  click \t TotIN(0)  ").words, ElementsAre(Bare("click"), Bare("TotIN(0)")));
  EXPECT_THAT(Split("").words, IsEmpty());
  EXPECT_THAT(Split(" \t ").words, IsEmpty());
}

TEST(Words, KeepBlanksInsideQuotes) {
  EXPECT_THAT(Split(R"(type Text1 "  1 2 ")").words, ElementsAre(Bare("type"), Bare("Text1"), Quoted("  1 2 ")));
}

TEST(Words, TakeAnEmptyTextInQuotes) {
  EXPECT_THAT(Split(R"(type Text1 "")").words, ElementsAre(Bare("type"), Bare("Text1"), Quoted("")));
}

TEST(Words, KnowTwoEscapesInsideQuotes) {
  EXPECT_THAT(Split(R"("say \"a\\b\"")").words, ElementsAre(Quoted(R"(say "a\b")")));
  EXPECT_THAT(Split(R"("C:\modules\new")").words, ElementsAre(Quoted(R"(C:\modules\new)")));
  EXPECT_THAT(Split(R"("ends in \\")").words, ElementsAre(Quoted(R"(ends in \)")));
}

TEST(Words, EndAtAComment) {
  EXPECT_THAT(Split("# click StartBelk").words, IsEmpty());
  EXPECT_THAT(Split("show # the page").words, ElementsAre(Bare("show")));
  EXPECT_THAT(Split("show#the page").words, ElementsAre(Bare("show")));
  EXPECT_THAT(Split(R"(answer "/tmp/a#b" # there)").words, ElementsAre(Bare("answer"), Quoted("/tmp/a#b")));
}

TEST(Words, TellWhatIsWrongWithQuotes) {
  struct Row {
    const char* line;
    const char* error;
  };
  const Row rows[] = {
      {R"(type Text1 "12)", "a quote is not closed"},
      {R"(type Text1 ")", "a quote is not closed"},
      {R"(type Text1 "12\")", "a quote is not closed"},
      {R"(type Text1 "12"3)", "a blank is missing after \"12\""},
      {R"(type Text1 "12""3")", "a blank is missing after \"12\""},
      {R"(type Te"xt1" 2)", "a quote stands inside Te"},
      {R"(type "12 # open)", "a quote is not closed"},
  };
  for (const Row& row : rows) EXPECT_EQ(Split(row.line).error, row.error) << row.line;
  EXPECT_EQ(Split(R"(type Text1 "12" # fine)").error, "");
}

TEST(Durations, HaveMillisecondsSecondsAndMinutes) {
  EXPECT_EQ(ParseDuration("300ms"), 300ms);
  EXPECT_EQ(ParseDuration("5s"), 5s);
  EXPECT_EQ(ParseDuration("1.5s"), 1500ms);
  EXPECT_EQ(ParseDuration("2m"), 2min);
  EXPECT_EQ(ParseDuration("0s"), 0s);
}

TEST(Durations, RefuseAnythingElse) {
  for (const char* text : {"", "5", "s", "-5s", "5 s", "5h", "1.2.3s", "1e3s", "5sec", "999999999m", ".s", "nans"}) {
    EXPECT_EQ(ParseDuration(text), std::nullopt) << text;
  }
}

TEST(Durations, AreTextsInTheUnitThatSuits) {
  EXPECT_EQ(TextOf(core::Duration(300ms)), "300ms");
  EXPECT_EQ(TextOf(core::Duration(5s)), "5s");
  EXPECT_EQ(TextOf(core::Duration(1500ms)), "1.5s");
  EXPECT_EQ(TextOf(core::Duration(2min)), "2m");
  EXPECT_EQ(TextOf(core::Duration(0s)), "0ms");
}

TEST(Relations, CompareNumbersAsNumbers) {
  const view::PropertyValue seventeen = std::string("17");
  EXPECT_TRUE(Holds(seventeen, Relation::kEqual, "17.0"));
  EXPECT_TRUE(Holds(seventeen, Relation::kEqual, " 017"));
  EXPECT_TRUE(Holds(seventeen, Relation::kGreater, "9"));
  EXPECT_FALSE(Holds(seventeen, Relation::kLess, "9"));
  EXPECT_TRUE(Holds(std::int64_t{-1}, Relation::kEqual, "-1"));
  EXPECT_TRUE(Holds(std::int64_t{-1}, Relation::kLess, "0"));
  EXPECT_TRUE(Holds(std::int64_t{4}, Relation::kUnequal, "5"));
}

TEST(Relations, CompareAnythingElseAsText) {
  const view::PropertyValue message = std::string("Communication Error");
  EXPECT_TRUE(Holds(message, Relation::kEqual, "Communication Error"));
  EXPECT_FALSE(Holds(message, Relation::kEqual, "communication error"));
  EXPECT_TRUE(Holds(message, Relation::kUnequal, "OK"));
  EXPECT_TRUE(Holds(message, Relation::kContains, "Err"));
  EXPECT_FALSE(Holds(message, Relation::kContains, "OK"));
  EXPECT_TRUE(Holds(message, Relation::kLess, "OK"));
  EXPECT_TRUE(Holds(true, Relation::kEqual, "true"));
  EXPECT_TRUE(Holds(std::string(), Relation::kEqual, ""));
  EXPECT_FALSE(Holds(std::string("inf"), Relation::kGreater, "zzz"));
}

TEST(Relations, LookIntoLists) {
  const view::PropertyValue list = std::vector<std::string>{"4800", "9600"};
  EXPECT_TRUE(Holds(list, Relation::kContains, "9600"));
  EXPECT_FALSE(Holds(list, Relation::kContains, "1200"));
  EXPECT_TRUE(Holds(std::vector<int>{0, 1}, Relation::kEqual, "0, 1"));
}

}  // namespace
}  // namespace tarvo::console
