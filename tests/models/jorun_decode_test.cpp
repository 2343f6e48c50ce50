#include "support/jorun_fixture.h"

namespace tarvo::test {
namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;

// The first block.

class JorunFirstBlock : public JorunFixture {
 protected:
  /// A session that has just begun, after the one before it, if any.
  void Begin() {
    if (InSession()) Click("StopJorun");
    Click("StartJorun");
    ASSERT_TRUE(InSession());
  }
};

TEST_F(JorunFirstBlock, SelectsEachTypeByItsRow) {
  for (int type = 0; type < static_cast<int>(kTypes.size()); ++type) {
    SCOPED_TRACE(type);
    for (int input = 0; input < kInputs; ++input) Set(kType1 + input, (type + input) % 9);
    Begin();
    for (int input = 0; input < kInputs; ++input) {
      EXPECT_EQ(ListIndex(TypeList(input)), (type + input) % 9) << input;
      EXPECT_EQ(Text(TypeList(input)), kTypes.at(static_cast<std::size_t>(type + input) % 9).text) << input;
    }
  }
}

TEST_F(JorunFirstBlock, SelectsEachFilterByItsRow) {
  for (int level = 0; level < 7; ++level) {
    for (int input = 0; input < kInputs; ++input) Set(kFilter1 + input, (level + input) % 7);
    Begin();
    for (int input = 0; input < kInputs; ++input) {
      EXPECT_EQ(Text(Filter(input)), std::to_string((level + input) % 7)) << input;
    }
  }
}

TEST_F(JorunFirstBlock, TicksEachBoxByItsOwnBit) {
  for (int bit = 0; bit < 16; ++bit) {
    SCOPED_TRACE(bit);
    Set(kFlags, 1 << bit);
    Begin();
    EXPECT_EQ(Checked("CheckJorun(0)"), bit == 1);
    EXPECT_EQ(Checked("CheckJorun(1)"), bit == 2);
    EXPECT_EQ(Checked("CheckJorun(2)"), bit == 3);
    EXPECT_EQ(Checked("OptionOdd"), bit == 4);
    EXPECT_EQ(Checked("OptionEven"), bit != 4);
  }
}

TEST_F(JorunFirstBlock, ClearsEachBoxWhoseBitIsClear) {
  for (int bit = 0; bit < 16; ++bit) {
    SCOPED_TRACE(bit);
    Set(kFlags, 0xFFFF & ~(1 << bit));
    Begin();
    EXPECT_EQ(Checked("CheckJorun(0)"), bit != 1);
    EXPECT_EQ(Checked("CheckJorun(1)"), bit != 2);
    EXPECT_EQ(Checked("CheckJorun(2)"), bit != 3);
    EXPECT_EQ(Checked("OptionOdd"), bit != 4);
    EXPECT_EQ(Checked("OptionEven"), bit == 4);
  }
}

TEST_F(JorunFirstBlock, LeavesTheAddressInForceAloneForTheStoredOne) {
  Set(kCommunication, 0x0311);
  Set(kStoredCommunication, 0x0222);
  Begin();
  EXPECT_EQ(Text("labAddressJorun"), "34");
  EXPECT_EQ(Text("cbBaudJorun"), "19200");
}

TEST_F(JorunFirstBlock, SelectsTheRateByBits8To10OfTheStoredWord) {
  const std::pair<int, const char*> rows[] = {{6, "1200"},  {7, "2400"},  {0, "4800"}, {1, "9600"},
                                              {2, "19200"}, {3, "38400"}, {4, "57600"}};
  for (const auto& [code, rate] : rows) {
    for (const int above : {0x0000, 0xF800}) {
      Set(kStoredCommunication, above | code << 8 | 0xFF);
      Begin();
      EXPECT_EQ(Text("cbBaudJorun"), rate);
      EXPECT_EQ(Text("labAddressJorun"), "255");
    }
  }
}

TEST_F(JorunFirstBlock, LeavesTheRateWhereTheCodeHasNoRow) {
  Set(kStoredCommunication, 0x0301);
  Begin();
  Set(kStoredCommunication, 0x0509);
  Begin();
  EXPECT_EQ(Text("cbBaudJorun"), "38400");
  EXPECT_EQ(Text("labAddressJorun"), "9");
}

TEST_F(JorunFirstBlock, LeavesAddressAndRateWhenTheStoredWordIsRefused) {
  Set(kStoredCommunication, 0x0307);
  Begin();
  Click("StopJorun");
  Set(kStoredCommunication, 0x0208);
  // Identity and block; the version has been read before.
  module.Next(ModuleFault::None());
  module.Next(ModuleFault::None());
  module.Next(ModuleFault::Exception(2));
  module.ForgetLog();
  Begin();
  EXPECT_THAT(Exchanges(), ElementsAre("reads 40001", "reads 40002 x10", "reads 40066: exception 2"));
  EXPECT_EQ(Text("labAddressJorun"), "7");
  EXPECT_EQ(Text("cbBaudJorun"), "38400");
  EXPECT_TRUE(TimersRun());
}

TEST_F(JorunFirstBlock, IsNotShownAgainByTheRepeatingDecode) {
  Set(kType1, 1);
  Set(kFlags, 0x06);
  Begin();
  Set(kType1, 2);
  Set(kFilter1, 3);
  Set(kFlags, 0);
  Set(kStoredCommunication, 0x0499);
  Run(std::chrono::seconds(2));
  EXPECT_EQ(ListIndex(TypeList(0)), 1);
  EXPECT_EQ(ListIndex(Filter(0)), 0);
  EXPECT_TRUE(Checked("CheckJorun(0)"));
  EXPECT_EQ(Text("labAddressJorun"), "1");
}

TEST_F(JorunFirstBlock, TakesTypesAndFiltersThatNoListHas) {
  Set(kType1, 9);
  Set(kType1 + 1, 65535);
  Set(kFilter1, 7);
  Set(kFilter1 + 1, 32768);
  Begin();
  Run(std::chrono::seconds(1));
  EXPECT_TRUE(NothingInFront());
  EXPECT_EQ(Text("MessageJorun"), "OK");
  EXPECT_EQ(ListIndex(TypeList(2)), 0);
}

// The repeating decode.

class JorunDecode : public JorunFixture {
 protected:
  /// A session with the same type on all inputs.
  void BeginWith(int type) {
    for (int input = 0; input < kInputs; ++input) Set(kType1 + input, type);
    StartSession();
  }
  void Show(int input, int value) {
    Set(kValue1 + input, value);
    RunThroughADecode();
  }
};

TEST_F(JorunDecode, ShowsEachValueInItsOwnRowWithItsSign) {
  BeginWith(0);
  for (int input = 0; input < kInputs; ++input) Set(kValue1 + input, -1111 * (input + 1));
  RunThroughADecode();
  for (int input = 0; input < kInputs; ++input) EXPECT_EQ(Text(Value(input)), std::to_string(-1111 * (input + 1)));
}

TEST_F(JorunDecode, ShowsAllOf16BitsAsReceived) {
  BeginWith(1);
  for (const int value : {0, 1, -1, 7, 2005, -2005, 32767, -32768}) {
    Show(2, value);
    EXPECT_EQ(Text("ValueJorun(2)"), std::to_string(value));
  }
}

TEST_F(JorunDecode, LightsEachLampByItsOwnBit) {
  BeginWith(0);
  for (int bit = 0; bit < 16; ++bit) {
    SCOPED_TRACE(bit);
    Set(kStatus, 1 << bit);
    RunThroughADecode();
    for (int lamp = 0; lamp < kLamps; ++lamp) EXPECT_EQ(BackColor(Lamp(lamp)), bit == 8 + lamp ? 255 : 64) << lamp;
  }
}

TEST_F(JorunDecode, DarkensEachLampWhoseBitIsClear) {
  BeginWith(0);
  for (int bit = 0; bit < 16; ++bit) {
    SCOPED_TRACE(bit);
    Set(kStatus, 0xFFFF & ~(1 << bit));
    RunThroughADecode();
    for (int lamp = 0; lamp < kLamps; ++lamp) EXPECT_EQ(BackColor(Lamp(lamp)), bit == 8 + lamp ? 64 : 255) << lamp;
  }
}

TEST_F(JorunDecode, LeavesLampsToTheFirstTick) {
  Set(kStatus, 0xFF00);
  Set(kValue1, 77);
  StartSession();
  for (int lamp = 0; lamp < kLamps; ++lamp) EXPECT_EQ(BackColor(Lamp(lamp)), 64) << lamp;
  EXPECT_EQ(Text("ValueJorun(0)"), "00000");
  RunThroughADecode();
  EXPECT_EQ(BackColor(Lamp(7)), 255);
  EXPECT_EQ(Text("ValueJorun(0)"), "77");
}

struct BarCase {
  int type;
  int value;
  int percent;
};

TEST_F(JorunDecode, ShowsTheShareOfTheFullScale) {
  const BarCase rows[] = {{1, -2005, 20},   {1, 2005, 20},   {1, 9949, 99},    {1, 9950, 100}, {1, 10000, 100},
                          {2, 13000, 100},  {2, 12000, 100}, {2, 11999, 100},  {2, 6000, 50},  {0, 16000, 100},
                          {0, -16001, 100}, {0, 32767, 100}, {0, -32768, 100}, {5, 4000, 100}, {5, 1000, 25},
                          {6, 9000, 50},    {7, 800, 10},    {8, 1300, 10},    {3, 1750, 10},  {4, 3500, 20}};
  for (const BarCase& row : rows) {
    SCOPED_TRACE(testing::Message() << "type " << row.type << ", value " << row.value);
    BeginWith(row.type);
    Show(0, row.value == 0 ? 1 : 0);
    Show(0, row.value);
    EXPECT_EQ(Percent("BargJorun(0)"), row.percent);
    EXPECT_EQ(FillColor(0), row.value < 0 ? kNegativeColour : kPositiveColour);
    Click("StopJorun");
  }
}

TEST_F(JorunDecode, GivesEachInputTheFullScaleOfItsOwnType) {
  for (std::size_t type = 0; type < kTypes.size(); ++type) {
    SCOPED_TRACE(type);
    for (int input = 0; input < kInputs; ++input) {
      const std::size_t own = (type + static_cast<std::size_t>(input)) % kTypes.size();
      Set(kType1 + input, static_cast<int>(own));
      Set(kValue1 + input, kTypes.at(own).fullScale / 100 * (20 + 10 * input));
    }
    StartSession();
    RunThroughADecode();
    for (int input = 0; input < kInputs; ++input) EXPECT_EQ(Percent(Bar(input)), 20 + 10 * input) << input;
    Click("StopJorun");
  }
}

TEST_F(JorunDecode, RoundsAHalfPercentToTheEvenOne) {
  BeginWith(1);
  const std::pair<int, int> rows[] = {{50, 0}, {51, 1}, {149, 1}, {150, 2}, {250, 2}, {251, 3}, {350, 4}, {9850, 98}};
  for (const auto& [value, percent] : rows) {
    for (const int sign : {1, -1}) {
      Show(1, sign * value);
      EXPECT_EQ(Percent("BargJorun(1)"), percent) << sign * value;
    }
  }
}

TEST_F(JorunDecode, LeavesTheColourWhenThePercentIsTheSameToTheLastDigit) {
  BeginWith(1);
  Show(0, 2000);
  ASSERT_EQ(Percent("BargJorun(0)"), 20);
  ASSERT_EQ(FillColor(0), kPositiveColour);
  Show(0, -2000);
  EXPECT_EQ(Text("ValueJorun(0)"), "-2000");
  EXPECT_EQ(FillColor(0), kPositiveColour);
  Show(0, -2001);
  EXPECT_EQ(Percent("BargJorun(0)"), 20);
  EXPECT_EQ(FillColor(0), kNegativeColour);
  Show(0, 2000);
  EXPECT_EQ(FillColor(0), kNegativeColour);
}

TEST_F(JorunDecode, ColoursAnewAtTheFullScaleOnlyBeyondIt) {
  BeginWith(1);
  Show(0, 10000);
  ASSERT_EQ(Percent("BargJorun(0)"), 100);
  const int colour = FillColor(0);
  Show(0, -10000);
  EXPECT_EQ(FillColor(0), colour);
  Show(0, -10001);
  EXPECT_EQ(Percent("BargJorun(0)"), 100);
  EXPECT_EQ(FillColor(0), kNegativeColour);
}

TEST_F(JorunDecode, KeepsTheFullScaleOfTheLastTypeForOneThatThereIsNot) {
  BeginWith(5);
  Click("StopJorun");
  BeginWith(9);
  Show(0, 1000);
  EXPECT_EQ(Percent("BargJorun(0)"), 25);
  EXPECT_TRUE(NothingInFront());
}

TEST_F(JorunDecode, KeepsWhatItShowsWhileThePollFails) {
  BeginWith(1);
  Set(kStatus, 0x1200);
  Show(3, 5000);
  module.Always(ModuleFault::Exception(4));
  Set(kStatus, 0);
  Show(3, 1);
  EXPECT_EQ(Text("ValueJorun(3)"), "5000");
  EXPECT_EQ(Percent("BargJorun(3)"), 50);
  EXPECT_EQ(BackColor(Lamp(1)), 255);
  EXPECT_EQ(BackColor(Lamp(4)), 255);
}

// The view before anything was read.

class JorunView : public JorunFixture {};

TEST_F(JorunView, BeginsWithTheLowestValues) {
  for (int input = 0; input < kInputs; ++input) {
    EXPECT_EQ(Text(Value(input)), "00000");
    EXPECT_EQ(ListIndex(TypeList(input)), 0);
    EXPECT_EQ(ListIndex(Filter(input)), 0);
  }
  for (int lamp = 0; lamp < kLamps; ++lamp) EXPECT_EQ(BackColor(Lamp(lamp)), 64);
  EXPECT_EQ(Text("labAddressJorun"), "1");
  EXPECT_EQ(Text("cbBaudJorun"), "9600");
  EXPECT_FALSE(Enabled("OptionEven"));
  EXPECT_FALSE(Enabled("OptionOdd"));
}

TEST_F(JorunView, HasItsLists) {
  std::vector<std::string> types;
  for (const TypeRow& row : kTypes) types.emplace_back(row.text);
  for (int input = 0; input < kInputs; ++input) {
    EXPECT_THAT(List(TypeList(input)), ElementsAreArray(types));
    EXPECT_THAT(List(Filter(input)), ElementsAre("0", "1", "2", "3", "4", "5", "6"));
  }
}

TEST_F(JorunView, HasItsCaptions) {
  const std::pair<const char*, const char*> captions[] = {{"StartJorun", "&Start"},
                                                          {"StopJorun", "S&top"},
                                                          {"buttResetJorun", "Module &Reset"},
                                                          {"buttWEEPJorun", "&Write EEprom"},
                                                          {"CheckJorun(0)", "Speed Up Acquisition"},
                                                          {"CheckJorun(1)", "Delay 12ms"},
                                                          {"CheckJorun(2)", "Parity ON/OFF"},
                                                          {"OptionEven", "Even"},
                                                          {"OptionOdd", "Odd"}};
  for (const auto& [name, caption] : captions) EXPECT_EQ(Text(name), caption);
  for (int input = 0; input < kInputs; ++input) EXPECT_EQ(Text(Cal(input)), "CAL");
}

TEST_F(JorunView, NamesItsRegistersInTheToolTips) {
  const std::pair<const char*, const char*> tips[] = {{"CheckJorun(0)", "40003.1 - Speed Up Acquisition"},
                                                      {"CheckJorun(1)", "40003.2 - Latency Time"},
                                                      {"CheckJorun(2)", "40003.3 - Parity ON/OFF"},
                                                      {"OptionEven", "40003.4 - Parity Type"},
                                                      {"OptionOdd", "40003.4 - Parity Type"},
                                                      {"cbBaudJorun", "40002(H) - Module Baud Rate"},
                                                      {"labAddressJorun", "40002(L) - Module Address"},
                                                      {"StartJorun", "Start Communication"},
                                                      {"StopJorun", "Stop Communication"}};
  for (const auto& [name, tip] : tips) EXPECT_EQ(ToolTip(name), tip) << name;
  for (int input = 0; input < kInputs; ++input) {
    const std::string number = std::to_string(input + 1);
    EXPECT_EQ(ToolTip(TypeList(input)), "4000" + std::to_string(4 + input) + " - Input Type " + number);
    EXPECT_EQ(ToolTip(Filter(input)), std::to_string(40008 + input) + " - Input Filter " + number);
    EXPECT_EQ(ToolTip(Value(input)), std::to_string(40013 + input) + " - Input Value " + number);
    EXPECT_EQ(ToolTip(Lamp(input)), "40012." + std::to_string(8 + input) + " - Overflow input " + number);
    EXPECT_EQ(ToolTip(Lamp(4 + input)), "40012." + std::to_string(12 + input) + " - Burn-out input " + number);
    EXPECT_EQ(ToolTip(Cal(input)), "Open Calibration window");
  }
}

}  // namespace
}  // namespace tarvo::test
