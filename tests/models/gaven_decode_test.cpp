#include <map>

#include "support/gaven_fixture.h"

namespace tarvo::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class GavenDecode : public GavenFixture {
 protected:
  /// Start anew, with this in the module; its blocks are looked at before the first tick of a timer.
  void ShowAtStart(int number, int value) {
    if (InSession()) Click("StopGaven");
    Set(number, value);
    StartSession();
  }
  /// In a session, through the repeating paint.
  void ShowRepeating(int number, int value) {
    if (!InSession()) StartSession();
    Set(number, value);
    RunThroughADecode();
  }
};

// The first block, at Start.

class GavenFirstBlock : public GavenDecode {};

TEST_F(GavenFirstBlock, SelectsEachFilterByItsRegister) {
  for (int input = 0; input < kInputs; ++input) {
    for (int level = 6; level >= 0; --level) {
      SCOPED_TRACE(level);
      ShowAtStart(kFilter1 + input, level);
      for (int i = 0; i < kInputs; ++i) {
        EXPECT_EQ(ListIndex(Member("FilterGaven", i)), i == input ? level : 0) << i;
        EXPECT_EQ(Text(Member("FilterGaven", i)), std::to_string(i == input ? level : 0)) << i;
      }
    }
  }
}

TEST_F(GavenFirstBlock, BearsAFilterThatNoListHas) {
  Set(kFilter1 + 3, 5);
  for (const int level : {7, 255, 0x8000, 0xFFFF}) {
    ShowAtStart(kFilter1, level);
    EXPECT_TRUE(InSession());
    EXPECT_TRUE(NothingInFront());
    EXPECT_EQ(Text("FilterGaven(0)"), "");
    EXPECT_EQ(ListIndex("FilterGaven(3)"), 5);
  }
}

TEST_F(GavenFirstBlock, ShowsEachScaleInItsOwnLabel) {
  for (int input = 0; input < kInputs; ++input) {
    SCOPED_TRACE(input);
    const Row& row = kRows[static_cast<std::size_t>(input)];
    ShowAtStart(kFullScale1 + input, 1000 + input);
    ShowAtStart(kStartScale1 + input, -1000 - input);
    for (int i = 0; i < kValues; ++i) {
      const std::string shown = Text(Value(i));
      EXPECT_EQ(shown == std::to_string(1000 + input), i == row.full) << i << ' ' << shown;
      EXPECT_EQ(shown == std::to_string(-1000 - input), i == row.start) << i << ' ' << shown;
    }
  }
}

TEST_F(GavenFirstBlock, ShowsScalesWithTheirSign) {
  for (const int scale : {0, 1, 10000, 32767, -1, -10000, -32768}) {
    ShowAtStart(kFullScale1, scale);
    EXPECT_EQ(Text(Value(1)), std::to_string(scale));
    ShowAtStart(kStartScale1, scale);
    EXPECT_EQ(Text(Value(0)), std::to_string(scale));
    ShowAtStart(kStartScale1 + 1, scale);
    EXPECT_EQ(Text(Value(6)), std::to_string(scale));
  }
}

struct FlagBox {
  const char* box;
  int bit;
};
constexpr FlagBox kFlagBoxes[] = {{"CheckGaven(0)", 1}, {"CheckGaven(1)", 2}, {"CheckGaven(2)", 3}};

TEST_F(GavenFirstBlock, TicksEachBoxByItsOwnBit) {
  for (int bit = 0; bit < 16; ++bit) {
    SCOPED_TRACE(bit);
    ShowAtStart(kFlags, 1 << bit);
    for (const FlagBox& flag : kFlagBoxes) EXPECT_EQ(Checked(flag.box), flag.bit == bit) << flag.box;
    EXPECT_EQ(Checked("OptionGaven2"), bit == 4);
    EXPECT_EQ(Checked("OptionGaven1"), bit != 4);
    EXPECT_EQ(Enabled("OptionGaven1"), bit == 3);
    EXPECT_EQ(Enabled("OptionGaven2"), bit == 3);
  }
}

TEST_F(GavenFirstBlock, ClearsEachBoxWhoseBitIsClear) {
  for (int bit = 0; bit < 16; ++bit) {
    SCOPED_TRACE(bit);
    ShowAtStart(kFlags, 0xFFFF & ~(1 << bit));
    for (const FlagBox& flag : kFlagBoxes) EXPECT_EQ(Checked(flag.box), flag.bit != bit) << flag.box;
    EXPECT_EQ(Checked("OptionGaven2"), bit != 4);
    EXPECT_EQ(Checked("OptionGaven1"), bit == 4);
    EXPECT_EQ(Enabled("OptionGaven1"), bit != 3);
    EXPECT_EQ(Enabled("OptionGaven2"), bit != 3);
  }
}

TEST_F(GavenFirstBlock, ShowsTheStoredAddressAndNotTheOneInForce) {
  Set(kCommunication, 0x0363);
  for (const int address : {1, 128, 247, 255}) {
    ShowAtStart(kStoredCommunication, 0x0100 | address);
    EXPECT_EQ(Text("AddressGaven"), std::to_string(address));
    EXPECT_EQ(Text("BaudGaven"), "9600");
  }
}

TEST_F(GavenFirstBlock, SelectsTheRateByTheThreeBitsOfTheStoredCode) {
  const std::pair<int, const char*> rates[] = {{6, "1200"},  {7, "2400"},  {0, "4800"}, {1, "9600"},
                                               {2, "19200"}, {3, "38400"}, {4, "57600"}};
  for (const auto& [code, rate] : rates) {
    for (const int others : {0x0001, 0xF8FF}) {
      ShowAtStart(kStoredCommunication, code << 8 | others);
      EXPECT_EQ(Text("BaudGaven"), rate) << others;
    }
  }
}

TEST_F(GavenFirstBlock, LeavesTheRateWhereTheCodeHasNoEntry) {
  ShowAtStart(kStoredCommunication, 0x0301);
  ASSERT_EQ(Text("BaudGaven"), "38400");
  ShowAtStart(kStoredCommunication, 0x0509);
  EXPECT_EQ(Text("BaudGaven"), "38400");
  EXPECT_EQ(Text("AddressGaven"), "9");
}

TEST_F(GavenFirstBlock, IsTheOnlyOneToShowSettings) {
  for (int i = 0; i < kInputs; ++i) {
    Set(kFilter1 + i, 1);
    Set(kFullScale1 + i, 100);
    Set(kStartScale1 + i, 10);
  }
  StartSession();
  for (int i = 0; i < kInputs; ++i) {
    Set(kFilter1 + i, 2);
    Set(kFullScale1 + i, 200);
    Set(kStartScale1 + i, 20);
  }
  Set(kFlags, 0x001E);
  Set(kStoredCommunication, 0x0309);
  Run(std::chrono::seconds(2));
  for (const Row& row : kRows) {
    EXPECT_EQ(Text(Value(row.full)), "100");
    EXPECT_EQ(Text(Value(row.start)), "10");
  }
  for (int i = 0; i < kInputs; ++i) EXPECT_EQ(ListIndex(Member("FilterGaven", i)), 1);
  for (const FlagBox& flag : kFlagBoxes) EXPECT_FALSE(Checked(flag.box)) << flag.box;
  EXPECT_EQ(Text("AddressGaven"), "1");
  EXPECT_EQ(Text("BaudGaven"), "9600");
}

// The values, in both roads.

enum class Road { kAtStart, kRepeating };

class GavenValues : public GavenDecode, public testing::WithParamInterface<Road> {
 protected:
  void Show(int number, int value) {
    if (GetParam() == Road::kAtStart) {
      ShowAtStart(number, value);
    } else {
      ShowRepeating(number, value);
    }
  }
};

INSTANTIATE_TEST_SUITE_P(Roads, GavenValues, testing::Values(Road::kAtStart, Road::kRepeating),
                         [](const auto& given) { return given.param == Road::kAtStart ? "AtStart" : "Repeating"; });

TEST_P(GavenValues, AreShownEachInItsOwnLabel) {
  for (int input = 0; input < kInputs; ++input) {
    SCOPED_TRACE(input);
    const Row& row = kRows[static_cast<std::size_t>(input)];
    Show(kScaled1 + input, 500 + input);
    Show(kRaw1 + input, -500 - input);
    for (int i = 0; i < kValues; ++i) {
      const std::string shown = Text(Value(i));
      EXPECT_EQ(shown == std::to_string(500 + input), i == row.scaled) << i << ' ' << shown;
      EXPECT_EQ(shown == std::to_string(-500 - input), i == row.raw) << i << ' ' << shown;
    }
  }
}

TEST_P(GavenValues, AreShownAsReceivedWithTheirSign) {
  for (const int value : {1, 10000, 10001, 32767, -1, -10000, -32768, 0}) {
    for (int input = 0; input < kInputs; ++input) {
      const Row& row = kRows[static_cast<std::size_t>(input)];
      Show(kScaled1 + input, value);
      EXPECT_EQ(Text(Value(row.scaled)), std::to_string(value));
      Show(kRaw1 + input, value);
      EXPECT_EQ(Text(Value(row.raw)), std::to_string(value));
    }
  }
}

// The lamps: which one a bit lights is not the same at Start and later.

struct LampRow {
  int bit;
  int atStart;
  int repeating;
};
constexpr LampRow kLampRows[] = {{8, 1, 1},  {9, 3, 0},  {10, 5, 3}, {11, 7, 2},
                                 {12, 0, 5}, {13, 2, 4}, {14, 4, 7}, {15, 6, 6}};

TEST_F(GavenDecode, LightsTheLampsAtStartInTheirOwnOrder) {
  for (const LampRow& row : kLampRows) {
    ShowAtStart(kStatus, 1 << row.bit);
    EXPECT_THAT(LitLamps(), ElementsAre(row.atStart)) << row.bit;
  }
}

TEST_F(GavenDecode, LightsTheLampsInTheRepeatingPaintByInput) {
  for (const LampRow& row : kLampRows) {
    ShowRepeating(kStatus, 1 << row.bit);
    EXPECT_THAT(LitLamps(), ElementsAre(row.repeating)) << row.bit;
  }
}

TEST_F(GavenDecode, DarkensTheLampWhoseBitIsClear) {
  for (const LampRow& row : kLampRows) {
    SCOPED_TRACE(row.bit);
    const int word = 0xFFFF & ~(1 << row.bit);
    ShowAtStart(kStatus, word);
    EXPECT_EQ(LitLamps().size(), 7U);
    EXPECT_EQ(BackColor(Lamp(row.atStart)), 64);
    RunThroughADecode();
    EXPECT_EQ(LitLamps().size(), 7U);
    EXPECT_EQ(BackColor(Lamp(row.repeating)), 64);
  }
}

TEST_F(GavenDecode, LightsNoLampByTheLowByte) {
  ShowAtStart(kStatus, 0x00FF);
  EXPECT_THAT(LitLamps(), IsEmpty());
  RunThroughADecode();
  EXPECT_THAT(LitLamps(), IsEmpty());
}

TEST_F(GavenDecode, MovesTheLampOfBit9WithTheFirstTick) {
  ShowAtStart(kStatus, 0x0200);
  EXPECT_THAT(LitLamps(), ElementsAre(3));
  Run(core::milliseconds(200));
  EXPECT_THAT(LitLamps(), ElementsAre(0));
}

// The bars: they follow the raw values.

class GavenBar : public GavenDecode, public testing::WithParamInterface<int> {
 protected:
  void Show(int raw) { ShowRepeating(kRaw1 + GetParam(), raw); }
  int Percent() const { return GavenDecode::Percent(Bar(GetParam())); }
  int FillColor() const { return GavenDecode::FillColor(GetParam()); }

  static constexpr int kBlue = 0xFF8080;
  static constexpr int kRed = 255;
};

INSTANTIATE_TEST_SUITE_P(Inputs, GavenBar, testing::Range(0, 4));

TEST_P(GavenBar, FollowsItsOwnRawValueAlone) {
  StartSession();
  RunThroughADecode();
  Show(4200);
  for (int i = 0; i < kInputs; ++i) EXPECT_EQ(GavenDecode::Percent(Bar(i)), i == GetParam() ? 42 : 0) << i;
  Set(kScaled1 + GetParam(), 9000);
  RunThroughADecode();
  EXPECT_EQ(Percent(), 42);
}

TEST_P(GavenBar, RoundsAHundredthToTheNearestPercentAndTiesToEven) {
  struct Share {
    int raw;
    int percent;
  };
  const Share rows[] = {{49, 0},     {50, 0},      {51, 1},      {149, 1},     {150, 2},     {250, 2},    {251, 3},
                        {4950, 50},  {5050, 50},   {5150, 52},   {9849, 98},   {9850, 98},   {9950, 100}, {9949, 99},
                        {9999, 100}, {10000, 100}, {10001, 100}, {12345, 100}, {32767, 100}, {0, 0}};
  for (const Share& row : rows) {
    SCOPED_TRACE(row.raw);
    Show(row.raw);
    EXPECT_EQ(Percent(), row.percent);
    Show(-row.raw);
    EXPECT_EQ(Percent(), row.percent);
  }
}

TEST_P(GavenBar, IsRedForNegativeValuesAndBlueForOthers) {
  for (const int raw : {1, 49, 5000, 10001, 32767}) {
    SCOPED_TRACE(raw);
    Show(0);
    Show(-1200);
    EXPECT_EQ(FillColor(), kRed);
    Show(raw);
    EXPECT_EQ(FillColor(), kBlue);
    Show(-raw - 1);
    EXPECT_EQ(FillColor(), kRed);
  }
}

TEST_P(GavenBar, IsFullAndRedAtTheNegativeEnd) {
  for (const int raw : {-10000, -10001, -32768}) {
    Show(5000);
    Show(raw);
    EXPECT_EQ(Percent(), 100);
    EXPECT_EQ(FillColor(), kRed);
  }
}

TEST_P(GavenBar, IsFullAndBlueAboveThePositiveEnd) {
  Show(-5000);
  Show(10001);
  EXPECT_EQ(Percent(), 100);
  EXPECT_EQ(FillColor(), kBlue);
}

TEST_P(GavenBar, KeepsItsColourWhereItsPercentIsRightAlready) {
  Show(-40);
  ASSERT_EQ(Percent(), 0);
  ASSERT_EQ(FillColor(), kRed);
  Show(0);
  EXPECT_EQ(FillColor(), kRed);
  Show(-5000);
  Show(5000);
  EXPECT_EQ(Percent(), 50);
  EXPECT_EQ(FillColor(), kRed);
  Show(10001);
  Show(-10000);
  EXPECT_EQ(Percent(), 100);
  EXPECT_EQ(FillColor(), kBlue);
}

TEST_P(GavenBar, ComparesBeforeItRounds) {
  Show(-5000);
  Show(5001);
  EXPECT_EQ(Percent(), 50);
  EXPECT_EQ(FillColor(), kBlue);
  Show(-10000);
  Show(10001);
  EXPECT_EQ(FillColor(), kBlue);
}

TEST_P(GavenBar, IsLeftToTheRepeatingPaint) {
  Set(kRaw1 + GetParam(), -7700);
  const int before = Percent();
  StartSession();
  EXPECT_EQ(Text(Value(kRows[static_cast<std::size_t>(GetParam())].raw)), "-7700");
  EXPECT_EQ(Percent(), before);
  RunThroughADecode();
  EXPECT_EQ(Percent(), 77);
}

// A block that did not come.

TEST_F(GavenDecode, KeepsTheLastValuesWhenAPollFails) {
  Set(kRaw1, 4321);
  StartSession();
  RunThroughADecode();
  module.Always(ModuleFault::Exception(4));
  Set(kRaw1, 1);
  Run(std::chrono::seconds(1));
  EXPECT_EQ(Text("MessageGaven"), kPollFailed);
  EXPECT_EQ(Text(Value(3)), "4321");
  EXPECT_EQ(Percent(Bar(0)), 43);
  EXPECT_TRUE(InSession());
  EXPECT_TRUE(NothingInFront());
  module.Always(ModuleFault::None());
  RunThroughADecode();
  EXPECT_EQ(Text("MessageGaven"), "OK");
  EXPECT_EQ(Text(Value(3)), "1");
}

// The view before anything was read.

class GavenView : public GavenFixture {};

TEST_F(GavenView, BeginsWithTheLowestValues) {
  for (int i = 0; i < kValues; ++i) EXPECT_EQ(Text(Value(i)), "0") << i;
  for (int i = 0; i < kInputs; ++i) EXPECT_EQ(ListIndex(Member("FilterGaven", i)), 0);
  EXPECT_THAT(LitLamps(), IsEmpty());
  EXPECT_EQ(Text("AddressGaven"), "1");
  EXPECT_EQ(Text("BaudGaven"), "9600");
  EXPECT_FALSE(Enabled("OptionGaven1"));
  EXPECT_FALSE(Enabled("OptionGaven2"));
  for (const FlagBox& flag : kFlagBoxes) EXPECT_FALSE(Checked(flag.box)) << flag.box;
}

TEST_F(GavenView, ListsTheFiltersByTheirLevel) {
  for (int i = 0; i < kInputs; ++i) {
    EXPECT_THAT(List(Member("FilterGaven", i)), ElementsAre("0", "1", "2", "3", "4", "5", "6"));
  }
}

TEST_F(GavenView, HasItsCaptions) {
  const std::pair<const char*, const char*> captions[] = {{"StartGaven", "&Start"},
                                                          {"StopGaven", "S&top"},
                                                          {"ResetGaven", "Module &Reset"},
                                                          {"WEEPGaven", "&Write EEprom"},
                                                          {"CheckGaven(0)", "Speed Up Acquisition"},
                                                          {"CheckGaven(1)", "Delay 12ms"},
                                                          {"CheckGaven(2)", "Parity ON/OFF"},
                                                          {"OptionGaven1", "Even"},
                                                          {"OptionGaven2", "Odd"},
                                                          {"Label11", "Module Address"},
                                                          {"Label12", "Module Baud Rate"},
                                                          {"FirmwGaven", "Firmware rel:"}};
  for (const auto& [name, caption] : captions) EXPECT_EQ(Text(name), caption) << name;
}

TEST_F(GavenView, HeadsEachInputsColumns) {
  std::map<std::string, int> counted;
  for (int i = 0; i < 28; ++i) ++counted[Text(Member("labelGaven", i))];
  for (const char* heading : {"Start Scale", "Full Scale", "Filter", "Scaled Input (0..10000)", "Raw Input"}) {
    EXPECT_EQ(counted[heading], kInputs) << heading;
  }
}

TEST_F(GavenView, NamesRegisterAndBitInItsToolTips) {
  const std::pair<const char*, const char*> toolTips[] = {{"StartGaven", "Start Communication"},
                                                          {"StopGaven", "Stop Communication"},
                                                          {"AddressGaven", "40002(L) - Module Address"},
                                                          {"BaudGaven", "40002(H) - Module Baud Rate"},
                                                          {"CheckGaven(0)", "40003.1 - Speed Up Acquisition"},
                                                          {"CheckGaven(1)", "40003.2 - Latency Time"},
                                                          {"CheckGaven(2)", "40003.3 - Parity ON/OFF"},
                                                          {"OptionGaven1", "40003.4 - Parity Type"},
                                                          {"OptionGaven2", "40003.4 - Parity Type"}};
  for (const auto& [name, toolTip] : toolTips) EXPECT_EQ(ToolTip(name), toolTip) << name;
}

}  // namespace
}  // namespace tarvo::test
