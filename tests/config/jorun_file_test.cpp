#include "config/page_file_fixture.h"

namespace tarvo {
namespace {

using test::Fields;
using test::FileOf;
using testing::ElementsAre;

class JorunFile : public test::PageFileFixture {
 protected:
  JorunFile() {
    module[40066] = 0x0101;
    OpenPage("Jorun");
  }
  /// A good file's fields with that first and second one.
  static Fields With(const std::string& communication, const std::string& flags) {
    Fields fields = test::FilePageOf("Jorun").fields;
    fields[0] = communication;
    fields[1] = flags;
    return fields;
  }
  std::vector<bool> Boxes() const {
    return {Checked("CheckJorun(0)"), Checked("CheckJorun(1)"), Checked("CheckJorun(2)"), Checked("OptionOdd")};
  }
};

TEST_F(JorunFile, HoldsTheFirstViewInQuotedLines) {
  EXPECT_EQ(Save(),
            "\"DATAFORMAT 1.0 Jorun\"\r\n\"257\"\r\n\"0\"\r\n\"0\"\r\n\"0\"\r\n\"0\"\r\n\"0\"\r\n\"0\"\r\n\"0\"\r\n"
            "\"0\"\r\n\"0\"\r\n");
}

TEST_F(JorunFile, HoldsWhatTheUserHasSet) {
  Edit("labAddressJorun", "128");
  Choose("cbBaudJorun", 0);
  for (int i = 0; i < 4; ++i) {
    Choose(Member("cbInputTypeJorun", i), 8 - i);
    Choose(Member("cbFilterJorun", i), 3 + i);
  }
  EXPECT_EQ(Save(), FileOf("Jorun", {"128", "0", "8", "7", "6", "5", "3", "4", "5", "6"}));
}

TEST_F(JorunFile, HoldsWhatASessionRead) {
  module[40002] = 0x0404;
  module[40003] = 0x000A;
  module[40066] = 0x0642;
  for (int i = 0; i < 4; ++i) {
    module[40004 + i] = static_cast<std::uint16_t>(i + 5);
    module[40008 + i] = static_cast<std::uint16_t>(6 - i);
  }
  RunSession("Jorun", 6);
  EXPECT_EQ(Save(), FileOf("Jorun", {"1602", "5", "5", "6", "7", "8", "6", "5", "4", "3"}));
}

TEST_F(JorunFile, CountsEachBoxAsOneAndTheSelectedOptionAsMinusOne) {
  Click("CheckJorun(0)");
  Save();
  EXPECT_EQ(FileField(2), "1");
  Click("CheckJorun(2)");
  Save();
  EXPECT_EQ(FileField(2), "5");
  Click("OptionOdd");
  Save();
  EXPECT_EQ(FileField(2), "-3");
  Click("CheckJorun(1)");
  Save();
  EXPECT_EQ(FileField(2), "-1");
  Click("OptionEven");
  Save();
  EXPECT_EQ(FileField(2), "7");
}

struct Read {
  std::string field;
  std::vector<bool> boxes;  ///< the three boxes, then `OptionOdd`
};

TEST_F(JorunFile, ReadsItsFlagsOneBitHigherThanItWritesThem) {
  const std::vector<Read> table = {
      {"0", {false, false, false, false}}, {"1", {false, false, false, false}}, {"2", {true, false, false, false}},
      {"4", {false, true, false, false}},  {"5", {false, true, false, false}},  {"8", {false, false, true, false}},
      {"16", {false, false, false, true}}, {"30", {true, true, true, true}},    {"-3", {false, true, true, true}},
      {"-8", {false, false, true, true}},  {"-1", {true, true, true, true}}};
  for (const Read& row : table) {
    LoadFields("Jorun", With("257", row.field));
    EXPECT_EQ(Boxes(), row.boxes) << row.field;
    EXPECT_NE(Checked("OptionEven"), Checked("OptionOdd"));
    EXPECT_EQ(Enabled("OptionEven"), row.boxes[2]) << row.field;
    EXPECT_EQ(Enabled("OptionOdd"), row.boxes[2]) << row.field;
  }
}

TEST_F(JorunFile, GainsAFlagAtEachSaveAndLoadWithOddParity) {
  Click("CheckJorun(0)");
  Click("CheckJorun(2)");
  Click("OptionOdd");
  for (const std::string flags : {"-3", "-2", "-1", "-1"}) {
    const std::string saved = Save();
    EXPECT_EQ(FileField(2), flags);
    Load(saved);
    AnswerOk();
  }
}

TEST_F(JorunFile, ShowsItsFields) {
  LoadFields("Jorun", {"1279", "0", "8", "0", "3", "1", "6", "0", "2", "1"});
  EXPECT_EQ(Text("labAddressJorun"), "255");
  EXPECT_EQ(Text("cbBaudJorun"), "57600");
  const std::vector<int> types = {8, 0, 3, 1};
  const std::vector<int> filters = {6, 0, 2, 1};
  for (int i = 0; i < 4; ++i) {
    EXPECT_EQ(ListIndex(Member("cbInputTypeJorun", i)), types.at(static_cast<std::size_t>(i)));
    EXPECT_EQ(ListIndex(Member("cbFilterJorun", i)), filters.at(static_cast<std::size_t>(i)));
  }
  EXPECT_THAT(State().FullScaleTC, ElementsAre(13000, 16000, 17500, 10000));
}

TEST_F(JorunFile, LooksAtTheWholeByteOfTheSpeed) {
  Choose("cbBaudJorun", 3);
  LoadFields("Jorun", With("2306", "0"));
  EXPECT_EQ(Text("labAddressJorun"), "2");
  EXPECT_EQ(ListIndex("cbBaudJorun"), 3);
}

TEST_F(JorunFile, FillsThePollBuffer) {
  for (unsigned i = 0; i < 20; ++i) SetBuffer(i, 1000 + i);
  LoadFields("Jorun", {"785", "-3", "8", "0", "3", "1", "6", "0", "2", "1"});
  const std::vector<int> expected = {785, 0xFFFD, 8, 0, 3, 1, 6, 0, 2, 1};
  for (std::size_t i = 0; i < expected.size(); ++i) EXPECT_EQ(Buffer(i), expected[i]) << i;
  for (std::size_t i = expected.size(); i < 20; ++i) EXPECT_EQ(Buffer(i), static_cast<int>(1000 + i));
}

TEST_F(JorunFile, LeavesTheLiveValuesAlone) {
  module[40012] = 0x1100;
  for (int i = 0; i < 4; ++i) module[40013 + i] = static_cast<std::uint16_t>(8000 + i);
  RunSession("Jorun", 6);
  LoadFields("Jorun", test::FilePageOf("Jorun").fields);
  for (int i = 0; i < 4; ++i) EXPECT_EQ(Text(Member("ValueJorun", i)), std::to_string(8000 + i));
  EXPECT_EQ(BackColor("OverflowJorun(0)"), 255);
  EXPECT_EQ(BackColor("OverflowJorun(4)"), 255);
  EXPECT_EQ(BackColor("OverflowJorun(1)"), 64);
  EXPECT_EQ(Percent("BargJorun(0)"), 50);
}

}  // namespace
}  // namespace tarvo
