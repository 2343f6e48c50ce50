#include "console/json.h"

#include <gtest/gtest.h>

#include "console/text.h"

namespace tarvo::console {
namespace {

TEST(Json, EscapesWhatMustNotStandInAString) {
  EXPECT_EQ(JsonText(R"(a "quoted" \ path)"), R"("a \"quoted\" \\ path")");
  EXPECT_EQ(JsonText("two\nlines\r\tand a tab"), R"("two\nlines\r\tand a tab")");
  EXPECT_EQ(JsonText(std::string("\x00\x01\x1f", 3)), R"("\u0000\u0001\u001f")");
  EXPECT_EQ(JsonText("/ and \x7f"), "\"/ and \x7f\"");
}

TEST(Json, KeepsUtf8AndReplacesWhatIsNone) {
  EXPECT_EQ(JsonText("40 °C – ✓ 😀"), "\"40 °C – ✓ 😀\"");
  const std::string kBad = "\xEF\xBF\xBD";
  EXPECT_EQ(JsonText("a\xFF"
                     "b"),
            "\"a" + kBad + "b\"");
  EXPECT_EQ(JsonText("\xC2"), "\"" + kBad + "\"");
  EXPECT_EQ(JsonText("\xC0\xAF"), "\"" + kBad + kBad + "\"");
  EXPECT_EQ(JsonText("\xED\xA0\x80"), "\"" + kBad + kBad + kBad + "\"");
  EXPECT_EQ(JsonText("\xE2\x82 x"), "\"" + kBad + kBad + " x\"");
  EXPECT_EQ(JsonText("\xF4\x90\x80\x80"), "\"" + kBad + kBad + kBad + kBad + "\"");
}

TEST(Json, GivesEachValueItsType) {
  EXPECT_EQ(JsonValue(true), "true");
  EXPECT_EQ(JsonValue(std::int64_t{-17}), "-17");
  EXPECT_EQ(JsonValue(std::string("17")), R"("17")");
  EXPECT_EQ(JsonValue(std::vector<std::string>{"4800", "9600"}), R"(["4800","9600"])");
  EXPECT_EQ(JsonValue(std::vector<int>{6, 7}), "[6,7]");
  EXPECT_EQ(JsonValue(std::vector<int>{}), "[]");
}

TEST(Json, KeepsTheOrderOfMembers) {
  JsonObject object;
  object.Add("z", "1").Add("a\"", "null");
  EXPECT_EQ(object.Text(), R"({"z":1,"a\"":null})");
  EXPECT_EQ(JsonObject().Text(), "{}");
}

TEST(Text, ForATerminalHasNoControlCharacters) {
  EXPECT_EQ(Encode(Printable("a\x1b[2Jb\nc\x7f\xC2\x9B")), "a [2Jb c  ");
}

}  // namespace
}  // namespace tarvo::console
