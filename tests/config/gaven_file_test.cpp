#include "config/page_file_fixture.h"

namespace tarvo {
namespace {

using test::Fields;
using test::FileOf;

class GavenFile : public test::PageFileFixture {
 protected:
  GavenFile() {
    module[40066] = 0x0101;
    OpenPage("Gaven");
  }
  /// A good file's fields with that first and second one.
  static Fields With(const std::string& communication, const std::string& flags) {
    Fields fields = test::FilePageOf("Gaven").fields;
    fields[0] = communication;
    fields[1] = flags;
    return fields;
  }
  std::vector<bool> Boxes() const {
    return {Checked("CheckGaven(0)"), Checked("CheckGaven(1)"), Checked("CheckGaven(2)"), Checked("OptionGaven2")};
  }
};

TEST_F(GavenFile, HoldsTheFirstViewInQuotedLines) {
  EXPECT_EQ(Save(),
            "\"DATAFORMAT 1.0 Gaven\"\r\n\"257\"\r\n\"0\"\r\n\"0\"\r\n\"0\"\r\n\"0\"\r\n\"0\"\r\n\"0\"\r\n\"0\"\r\n"
            "\"0\"\r\n\"0\"\r\n\"0\"\r\n\"0\"\r\n\"0\"\r\n\"0\"\r\n");
}

TEST_F(GavenFile, HoldsWhatTheUserHasSet) {
  Edit("AddressGaven", "200");
  Choose("BaudGaven", 3);
  for (int i = 0; i < 4; ++i) Choose(Member("FilterGaven", i), i + 2);
  const std::vector<int> edited = {1, 7, 11, 15, 0, 6, 10, 14};
  for (const int index : edited) Edit(Member("ValueGaven", index), std::to_string(-100 - index));
  EXPECT_EQ(Save(), FileOf("Gaven", {"968", "0", "2", "3", "4", "5", "-101", "-107", "-111", "-115", "-100", "-106",
                                     "-110", "-114"}));
}

TEST_F(GavenFile, HoldsWhatASessionRead) {
  module[40002] = 0x0404;
  module[40003] = 0x0006;
  module[40066] = 0x0342;
  for (int i = 0; i < 4; ++i) {
    module[40004 + i] = static_cast<std::uint16_t>(6 - i);
    module[40008 + i] = static_cast<std::uint16_t>(10000 - i);
    module[40012 + i] = static_cast<std::uint16_t>(0xFFFF - i);
  }
  RunSession("Gaven", 7);
  EXPECT_EQ(Save(),
            FileOf("Gaven", {"834", "3", "6", "5", "4", "3", "10000", "9999", "9998", "9997", "-1", "-2", "-3", "-4"}));
}

TEST_F(GavenFile, CountsEachBoxAsOneAndTheSelectedOptionAsMinusOne) {
  Click("CheckGaven(0)");
  Save();
  EXPECT_EQ(FileField(2), "1");
  Click("CheckGaven(1)");
  Save();
  EXPECT_EQ(FileField(2), "3");
  Click("CheckGaven(2)");
  Save();
  EXPECT_EQ(FileField(2), "7");
  Click("OptionGaven2");
  Save();
  EXPECT_EQ(FileField(2), "-1");
  Click("CheckGaven(1)");
  Save();
  EXPECT_EQ(FileField(2), "-3");
  Click("OptionGaven1");
  Save();
  EXPECT_EQ(FileField(2), "5");
}

struct Read {
  std::string field;
  std::vector<bool> boxes;  ///< the three boxes, then `OptionGaven2`
};

TEST_F(GavenFile, ReadsItsFlagsOneBitHigherThanItWritesThem) {
  const std::vector<Read> table = {
      {"0", {false, false, false, false}},  {"1", {false, false, false, false}}, {"2", {true, false, false, false}},
      {"4", {false, true, false, false}},   {"5", {false, true, false, false}},  {"8", {false, false, true, false}},
      {"16", {false, false, false, true}},  {"24", {false, false, true, true}},  {"30", {true, true, true, true}},
      {"-3", {false, true, true, true}},    {"-8", {false, false, true, true}},  {"-1", {true, true, true, true}},
      {"224", {false, false, false, false}}};
  for (const Read& row : table) {
    LoadFields("Gaven", With("257", row.field));
    EXPECT_EQ(Boxes(), row.boxes) << row.field;
    EXPECT_NE(Checked("OptionGaven1"), Checked("OptionGaven2"));
    EXPECT_EQ(Enabled("OptionGaven1"), row.boxes[2]) << row.field;
    EXPECT_EQ(Enabled("OptionGaven2"), row.boxes[2]) << row.field;
  }
}

TEST_F(GavenFile, LosesAFlagAtEachSaveAndLoad) {
  for (const std::string flags : {"5", "2", "1", "0", "0"}) {
    if (flags == "5") {
      Click("CheckGaven(0)");
      Click("CheckGaven(2)");
      Click("OptionGaven1");
    }
    const std::string saved = Save();
    EXPECT_EQ(FileField(2), flags);
    Load(saved);
    AnswerOk();
  }
}

TEST_F(GavenFile, GainsAFlagAtEachSaveAndLoadWithOddParity) {
  Click("CheckGaven(0)");
  Click("CheckGaven(2)");
  Click("OptionGaven2");
  for (const std::string flags : {"-3", "-2", "-1", "-1"}) {
    const std::string saved = Save();
    EXPECT_EQ(FileField(2), flags);
    Load(saved);
    AnswerOk();
  }
}

TEST_F(GavenFile, ShowsItsFields) {
  LoadFields("Gaven", {"1279", "0", "1", "2", "6", "0", "10000", "-10000", "500", "7", "-1", "0", "-9999", "1"});
  EXPECT_EQ(Text("AddressGaven"), "255");
  EXPECT_EQ(Text("BaudGaven"), "57600");
  const std::vector<int> filters = {1, 2, 6, 0};
  for (int i = 0; i < 4; ++i) EXPECT_EQ(ListIndex(Member("FilterGaven", i)), filters.at(static_cast<std::size_t>(i)));
  const std::vector<std::pair<int, std::string>> expected = {{1, "10000"}, {7, "-10000"}, {11, "500"},   {15, "7"},
                                                             {0, "-1"},    {6, "0"},      {10, "-9999"}, {14, "1"}};
  for (const auto& [index, text] : expected) EXPECT_EQ(Text(Member("ValueGaven", index)), text) << index;
}

TEST_F(GavenFile, LooksAtThreeBitsOfTheSpeed) {
  LoadFields("Gaven", With("2306", "0"));
  EXPECT_EQ(Text("AddressGaven"), "2");
  EXPECT_EQ(Text("BaudGaven"), "9600");
}

TEST_F(GavenFile, LeavesTheLiveValuesAlone) {
  module[40016] = 0x0100;
  for (int i = 0; i < 8; ++i) module[40017 + i] = static_cast<std::uint16_t>(1000 + i);
  RunSession("Gaven", 7);
  View before = ViewOf("Gaven");
  LoadFields("Gaven", test::FilePageOf("Gaven").fields);
  View after = ViewOf("Gaven");
  for (const int index : {2, 5, 9, 13, 3, 4, 8, 12}) {
    const std::string value = Member("ValueGaven", index) + ".Caption";
    EXPECT_EQ(after.at(value), before.at(value));
    EXPECT_NE(Text(Member("ValueGaven", index)), "0");
  }
  EXPECT_EQ(BackColor("OverflowGaven(1)"), 255);
  EXPECT_EQ(Percent("BargGaven(0)"), 10);
}

}  // namespace
}  // namespace tarvo
