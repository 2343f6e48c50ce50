#include "support/belk_fixture.h"

namespace tarvo::test {
namespace {

/// How a block of registers comes into the view.
enum class Road { kFirstBlock, kRepeatingDecode };

/// What a poll makes of each bit and word, at Start and in the repeating decode alike.
class BelkDecode : public BelkFixture, public testing::WithParamInterface<Road> {
 protected:
  void Show(int number, int word) {
    module[number] = static_cast<std::uint16_t>(word);
    if (GetParam() == Road::kFirstBlock) {
      if (InSession()) Click("StopBelk");
      // Start's own block is looked at before the first tick of a timer.
      Click("StartBelk");
    } else {
      if (!InSession()) StartFromZero(number, word);
      RunThroughADecode();
    }
    ASSERT_TRUE(InSession());
  }

 private:
  void StartFromZero(int number, int word) {
    module[number] = 0;
    Click("StartBelk");
    module[number] = static_cast<std::uint16_t>(word);
  }
};

INSTANTIATE_TEST_SUITE_P(Roads, BelkDecode, testing::Values(Road::kFirstBlock, Road::kRepeatingDecode),
                         [](const auto& given) {
                           return given.param == Road::kFirstBlock ? "FirstBlock" : "RepeatingDecode";
                         });

TEST_P(BelkDecode, ShowsEachInputBitInItsOwnPicture) {
  for (int bit = 0; bit < 16; ++bit) {
    SCOPED_TRACE(bit);
    Show(kStatus, 1 << bit);
    for (int i = 0; i < kInputs; ++i) EXPECT_EQ(Picture(Member("StatoIN", i)), i == bit ? 2 : 1) << i;
  }
}

TEST_P(BelkDecode, DarkensEachInputWhoseBitIsClear) {
  for (int bit = 0; bit < kInputs; ++bit) {
    SCOPED_TRACE(bit);
    Show(kStatus, 0xFFFF & ~(1 << bit));
    for (int i = 0; i < kInputs; ++i) EXPECT_EQ(Picture(Member("StatoIN", i)), i == bit ? 1 : 2) << i;
  }
}

TEST_P(BelkDecode, LightsEachOverflowMarkByItsOwnBit) {
  for (int bit = 0; bit < 16; ++bit) {
    SCOPED_TRACE(bit);
    Show(kStatus, 1 << bit);
    for (int i = 0; i < kInputs; ++i) EXPECT_EQ(BackColor(Member("OverFlowIN", i)), bit == 8 + i ? 255 : 64) << i;
  }
}

TEST_P(BelkDecode, DarkensEachOverflowMarkWhoseBitIsClear) {
  for (int bit = 8; bit < 8 + kInputs; ++bit) {
    SCOPED_TRACE(bit);
    Show(kStatus, 0xFFFF & ~(1 << bit));
    for (int i = 0; i < kInputs; ++i) EXPECT_EQ(BackColor(Member("OverFlowIN", i)), bit == 8 + i ? 64 : 255) << i;
  }
}

TEST_P(BelkDecode, ShowsEachCounterInItsOwnRow) {
  for (int counter = 0; counter < kInputs; ++counter) {
    SCOPED_TRACE(counter);
    Show(kCounter1 + counter, 6554 * (counter + 1));
    for (int i = 0; i <= counter; ++i) {
      EXPECT_EQ(Text(Member("TotIN", i)), std::to_string(6554 * (i + 1)));
      EXPECT_EQ(Percent(Bar(i)), 10 * (i + 1));
    }
    for (int i = counter + 1; i < kInputs; ++i) {
      EXPECT_EQ(Text(Member("TotIN", i)), "0");
      EXPECT_EQ(Percent(Bar(i)), 0);
    }
  }
}

TEST_P(BelkDecode, RoundsTheShareOf65535ToTheNearestPercent) {
  struct Row {
    int counter;
    int percent;
  };
  const Row rows[] = {{0, 0},      {1, 0},      {327, 0},     {328, 1},     {655, 1},
                      {983, 1},    {984, 2},    {32767, 50},  {32768, 50},  {33095, 50},
                      {33096, 51}, {65207, 99}, {65208, 100}, {65534, 100}, {65535, 100}};
  for (const Row& row : rows) {
    SCOPED_TRACE(row.counter);
    Show(kCounter1, row.counter);
    EXPECT_EQ(Text("TotIN(0)"), std::to_string(row.counter));
    EXPECT_EQ(Percent("BargBelk1"), row.percent);
  }
}

TEST_P(BelkDecode, ShowsAFullAndAnEmptyBarInEachRow) {
  for (int i = 0; i < kInputs; ++i) {
    SCOPED_TRACE(i);
    Show(kCounter1 + i, 65535);
    EXPECT_EQ(Percent(Bar(i)), 100);
    EXPECT_EQ(Text(Member("TotIN", i)), "65535");
    Show(kCounter1 + i, 0);
    EXPECT_EQ(Percent(Bar(i)), 0);
    EXPECT_EQ(Text(Member("TotIN", i)), "0");
  }
}

struct FlagBox {
  const char* box;
  int bit;
};

constexpr FlagBox kFlagBoxes[] = {{"CheckBelk2", 0}, {"CheckBelk4", 1}, {"CheckBelk5", 2},
                                  {"CheckBelk6", 3}, {"CheckBelk3", 5}, {"CheckBelk1", 7}};

TEST_P(BelkDecode, TicksEachBoxByItsOwnBit) {
  for (int bit = 0; bit < 16; ++bit) {
    SCOPED_TRACE(bit);
    Show(kFlags, 1 << bit);
    for (const FlagBox& flag : kFlagBoxes) EXPECT_EQ(Checked(flag.box), flag.bit == bit) << flag.box;
  }
}

TEST_P(BelkDecode, ClearsEachBoxWhoseBitIsClear) {
  for (int bit = 0; bit < 8; ++bit) {
    SCOPED_TRACE(bit);
    Show(kFlags, 0xFFFF & ~(1 << bit));
    for (const FlagBox& flag : kFlagBoxes) EXPECT_EQ(Checked(flag.box), flag.bit != bit) << flag.box;
  }
}

TEST_P(BelkDecode, ShowsTheFastLabelByBit7) {
  Show(kFlags, 0x0080);
  EXPECT_TRUE(Visible("LabelFASTBelk"));
  Show(kFlags, 0xFF7F);
  EXPECT_FALSE(Visible("LabelFASTBelk"));
}

TEST_P(BelkDecode, SelectsTheParityByBit4) {
  Show(kFlags, 0x0018);
  EXPECT_FALSE(Checked("OptionBelk1"));
  EXPECT_TRUE(Checked("OptionBelk2"));
  Show(kFlags, 0xFFEF);
  EXPECT_TRUE(Checked("OptionBelk1"));
  EXPECT_FALSE(Checked("OptionBelk2"));
}

TEST_P(BelkDecode, EnablesTheParityOptionsByBit3) {
  Show(kFlags, 0x0008);
  EXPECT_TRUE(Enabled("OptionBelk1"));
  EXPECT_TRUE(Enabled("OptionBelk2"));
  Show(kFlags, 0xFFF7);
  EXPECT_FALSE(Enabled("OptionBelk1"));
  EXPECT_FALSE(Enabled("OptionBelk2"));
}

TEST_P(BelkDecode, KeepsTheKindOfParityWhileParityIsOff) {
  Show(kFlags, 0x0010);
  EXPECT_FALSE(Enabled("OptionBelk2"));
  EXPECT_TRUE(Checked("OptionBelk2"));
}

// What only the first block shows.

class BelkFirstBlock : public BelkFixture {};

TEST_F(BelkFirstBlock, ShowsTheFilter) {
  for (const int filter : {1, 200, 254}) {
    module[kFilter] = static_cast<std::uint16_t>(filter);
    StartSession();
    EXPECT_EQ(Text("FilterBelk"), std::to_string(filter));
    Click("StopBelk");
  }
}

TEST_F(BelkFirstBlock, ShowsTheAddressOfTheLowByte) {
  for (const int address : {1, 128, 247, 255}) {
    module[kCommunication] = static_cast<std::uint16_t>(0x0200 | address);
    StartSession();
    EXPECT_EQ(Text("AddressBelk"), std::to_string(address));
    Click("StopBelk");
  }
}

TEST_F(BelkFirstBlock, SelectsTheRateByTheCodeOfTheHighByte) {
  const std::pair<int, const char*> rates[] = {{6, "1200"},  {7, "2400"},  {0, "4800"}, {1, "9600"},
                                               {2, "19200"}, {3, "38400"}, {4, "57600"}};
  for (const auto& [code, rate] : rates) {
    module[kCommunication] = static_cast<std::uint16_t>(code << 8 | 0xFF);
    StartSession();
    EXPECT_EQ(Text("BaudBelk"), rate);
    Click("StopBelk");
  }
}

TEST_F(BelkFirstBlock, LeavesTheRateWhereTheCodeHasNoEntry) {
  for (const int code : {5, 8, 255}) {
    SCOPED_TRACE(code);
    module[kCommunication] = 0x0301;
    StartSession();
    ASSERT_EQ(Text("BaudBelk"), "38400");
    Click("StopBelk");
    module[kCommunication] = static_cast<std::uint16_t>(code << 8 | 1);
    StartSession();
    EXPECT_EQ(Text("BaudBelk"), "38400");
    Click("StopBelk");
  }
}

TEST_F(BelkFirstBlock, IsTheOnlyOneToShowFilterAddressAndRate) {
  module[kFilter] = 10;
  module[kCommunication] = 0x0105;
  StartSession();
  module[kFilter] = 99;
  module[kCommunication] = 0x0399;
  Run(std::chrono::seconds(2));
  EXPECT_EQ(Polled(6), 99);
  EXPECT_EQ(Polled(8), 0x0399);
  EXPECT_EQ(Text("FilterBelk"), "10");
  EXPECT_EQ(Text("AddressBelk"), "5");
  EXPECT_EQ(Text("BaudBelk"), "9600");
}

TEST_F(BelkFirstBlock, LeavesAnEditOfASettingToStay) {
  StartSession();
  Click("FilterBelk");
  AnswerChangeValue("77");
  Click("AddressBelk");
  AnswerChangeValue("33");
  Choose("BaudBelk", 6);
  Run(std::chrono::seconds(2));
  EXPECT_EQ(Text("FilterBelk"), "77");
  EXPECT_EQ(Text("AddressBelk"), "33");
  EXPECT_EQ(Text("BaudBelk"), "57600");
}

// The view before anything was read.

class BelkView : public BelkFixture {};

TEST_F(BelkView, BeginsWithTheLowestValues) {
  for (int i = 0; i < kInputs; ++i) {
    EXPECT_EQ(Text(Member("TotIN", i)), "0");
    EXPECT_EQ(Picture(Member("StatoIN", i)), 1);
    EXPECT_EQ(BackColor(Member("OverFlowIN", i)), 64);
  }
  EXPECT_EQ(Text("FilterBelk"), "1");
  EXPECT_EQ(Text("AddressBelk"), "1");
  EXPECT_FALSE(Enabled("OptionBelk1"));
  EXPECT_FALSE(Enabled("OptionBelk2"));
  EXPECT_FALSE(Visible("LabelFASTBelk"));
}

TEST_F(BelkView, HasItsCaptions) {
  const std::pair<const char*, const char*> captions[] = {
      {"CheckBelk1", "10KHz Counter"}, {"CheckBelk2", "Negate Inputs"}, {"CheckBelk3", "Autoreset Counters"},
      {"CheckBelk4", "Down Counters"}, {"CheckBelk5", "Delay 12ms "},   {"CheckBelk6", "Parity ON/OFF"},
      {"OptionBelk1", "Even"},         {"OptionBelk2", "Odd"}};
  for (const auto& [name, caption] : captions) EXPECT_EQ(Text(name), caption);
  for (int i = 0; i < kInputs; ++i) {
    EXPECT_EQ(Text(Member("LabelIN", i)), "Input " + std::to_string(i + 1));
    EXPECT_EQ(Text(Member("OverFlowIN", i)), "Overflow");
  }
}

TEST_F(BelkView, NamesRegisterAndBitInItsToolTips) {
  const std::pair<const char*, const char*> toolTips[] = {
      {"CheckBelk6", "40009.3 - Parity ON/OFF"},    {"BaudBelk", "40010(H) - Module Baud Rate"},
      {"AddressBelk", "40010(L) - Module Address"}, {"FilterBelk", "40008 - Input Filter"},
      {"TotIN(0)", "40003 - Counter Input 1"},      {"OverFlowIN(0)", "40002.8 - Overflow Input 1"},
      {"TotIN(4)", "40007 - Counter Input 5"},      {"OverFlowIN(4)", "40002.12 - Overflow Input 5"}};
  for (const auto& [name, toolTip] : toolTips) EXPECT_EQ(ToolTip(name), toolTip) << name;
  const std::pair<const char*, const char*> beginnings[] = {{"CheckBelk1", "40009.7 - "}, {"CheckBelk2", "40009.0 - "},
                                                            {"CheckBelk3", "40009.5 - "}, {"CheckBelk4", "40009.1 - "},
                                                            {"CheckBelk5", "40009.2 - "}, {"OptionBelk1", "40009.4 - "},
                                                            {"OptionBelk2", "40009.4 - "}};
  for (const auto& [name, beginning] : beginnings) EXPECT_THAT(ToolTip(name), testing::StartsWith(beginning)) << name;
}

}  // namespace
}  // namespace tarvo::test
