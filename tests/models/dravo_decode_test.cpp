// What the Dravo page makes of the registers that it reads.

#include "support/dravo_fixture.h"
#include "view/ar_metor.h"

namespace tarvo::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

/// The two roads by which the settings of a module come into the view.
enum class Road { kFirstBlock, kReadEEPromFlags };

class DravoSettings : public DravoFixture, public testing::WithParamInterface<Road> {
 protected:
  void Show() {
    if (GetParam() == Road::kReadEEPromFlags) {
      ReadEEPromFlags();
    } else {
      if (InSession()) Click("StopDravo");
      // The first block is looked at before the first tick of a timer.
      Click("StartDravo");
      ASSERT_TRUE(InSession());
    }
  }
  void Show(int number, int value) {
    Set(number, value);
    Show();
  }
};

INSTANTIATE_TEST_SUITE_P(Roads, DravoSettings, testing::Values(Road::kFirstBlock, Road::kReadEEPromFlags),
                         [](const auto& given) {
                           return given.param == Road::kFirstBlock ? "FirstBlock" : "ReadEEPromFlags";
                         });

TEST_P(DravoSettings, SelectTheInputTypeByThreeBitsOnly) {
  const std::pair<int, int> rows[] = {{1, 0},  {2, 1},  {3, 2},   {4, 3},    {5, 4},   {6, 5},
                                      {7, 6},  {0, -1}, {8, -1},  {9, 0},    {10, 1},  {11, 2},
                                      {12, 3}, {13, 4}, {16, -1}, {0x17, 6}, {0xFF, 6}};
  for (const auto& [stored, position] : rows) {
    SCOPED_TRACE(stored);
    Show(kInput, stored << 8 | 0x05);
    EXPECT_EQ(ListIndex("InputTypeDravo"), position);
    EXPECT_EQ(ListIndex("InputFilterDravo"), 5);
  }
}

TEST_P(DravoSettings, SelectTheFilterByItsLowThreeBits) {
  const std::pair<int, int> rows[] = {{0, 0}, {1, 1}, {2, 2},    {3, 3},    {4, 4},
                                      {5, 5}, {6, 6}, {0x0B, 3}, {0xF2, 2}, {0x10, 0}};
  for (const auto& [stored, position] : rows) {
    SCOPED_TRACE(stored);
    Show(kInput, 0x0300 | stored);
    EXPECT_EQ(ListIndex("InputFilterDravo"), position);
    EXPECT_EQ(ListIndex("InputTypeDravo"), 2);
  }
}

TEST_P(DravoSettings, SurviveAFilterThatTheListDoesNotHave) {
  SetValues({1, 2, 3, 4, 5, 6});
  Show(kInput, 0x0407);
  EXPECT_TRUE(NothingInFront());
  EXPECT_EQ(ListIndex("InputTypeDravo"), 3);
  EXPECT_THAT(ValueTexts(), ElementsAre("1", "2", "3", "4", "5", "6"));
}

TEST_P(DravoSettings, ShowEachValueOfItsOwnRegisterSigned) {
  SetValues({1, -2, 32000, -32000, 11000, -1000});
  Show();
  EXPECT_THAT(ValueTexts(), ElementsAre("1", "-2", "32000", "-32000", "11000", "-1000"));
}

TEST_P(DravoSettings, ShowTheValuesReadWhateverTheTypeRewrites) {
  SetValues({123, -45, 678, -90, 9999, 7});
  for (const int stored : {4, 2, 7, 1}) {
    SCOPED_TRACE(stored);
    Show(kInput, stored << 8);
    EXPECT_EQ(ListIndex("InputTypeDravo"), stored - 1);
    EXPECT_THAT(ValueTexts(), ElementsAre("123", "-45", "678", "-90", "9999", "7"));
  }
}

TEST_P(DravoSettings, TakeLimitsAndUnitOfTheTypeThatIsRead) {
  Show(kInput, 0x0400);
  EXPECT_EQ(Text("UnitaMisuraDravo1"), "°C");
  if (InSession()) Click("StopDravo");
  Click(Value(0));
  EXPECT_EQ(Text("MinValue"), "Min Value :-200");
  EXPECT_EQ(Text("MaxValue"), "Max Value :600");
}

struct FlagBox {
  const char* box;
  int bit;
};

constexpr FlagBox kFlagBoxes[] = {{"CheckDravo4", 3}, {"CheckDravo1", 8}, {"CheckDravo2", 9}, {"CheckDravo3", 14}};

TEST_P(DravoSettings, TickEachBoxByItsOwnBit) {
  for (int bit = 0; bit < 16; ++bit) {
    SCOPED_TRACE(bit);
    Show(kFlags, 1 << bit);
    for (const FlagBox& flag : kFlagBoxes) EXPECT_EQ(Checked(flag.box), flag.bit == bit) << flag.box;
  }
}

TEST_P(DravoSettings, ClearEachBoxWhoseBitIsClear) {
  for (int bit = 0; bit < 16; ++bit) {
    SCOPED_TRACE(bit);
    Show(kFlags, 0xFFFF & ~(1 << bit));
    for (const FlagBox& flag : kFlagBoxes) EXPECT_EQ(Checked(flag.box), flag.bit != bit) << flag.box;
  }
}

TEST_P(DravoSettings, SelectTheParityByBit4) {
  Show(kFlags, 0x0010);
  EXPECT_TRUE(Checked("OptionDravo2"));
  EXPECT_FALSE(Checked("OptionDravo1"));
  Show(kFlags, 0xFFEF);
  EXPECT_TRUE(Checked("OptionDravo1"));
  EXPECT_FALSE(Checked("OptionDravo2"));
}

TEST_P(DravoSettings, EnableTheParityOptionsByBit3) {
  Show(kFlags, 0x0008);
  EXPECT_TRUE(Enabled("OptionDravo1"));
  EXPECT_TRUE(Enabled("OptionDravo2"));
  Show(kFlags, 0xFFF7);
  EXPECT_FALSE(Enabled("OptionDravo1"));
  EXPECT_FALSE(Enabled("OptionDravo2"));
}

TEST_P(DravoSettings, ShowBothInputValuesSigned) {
  for (const auto& [user, measured] :
       {std::pair(0, 0), std::pair(-1, 10000), std::pair(32767, -250), std::pair(-32768, 32767)}) {
    Set(kUserValue, user);
    Set(kMeasured, measured);
    Show();
    EXPECT_EQ(Text("InputTechDravo"), std::to_string(user));
    EXPECT_EQ(Text("InputScaledDravo"), std::to_string(measured));
  }
}

TEST_P(DravoSettings, LightEachLampByItsOwnBit) {
  for (int bit = 0; bit < 16; ++bit) {
    SCOPED_TRACE(bit);
    Show(kStatus, 1 << bit);
    if (bit >= 8 && bit <= 13) {
      EXPECT_THAT(LitLamps(), ElementsAre(bit - 8));
    } else {
      EXPECT_THAT(LitLamps(), IsEmpty());
    }
  }
}

TEST_P(DravoSettings, TakeAddressAndRateFromTheImage) {
  Set(kCommunication, 0x0205);
  Show(kStoredCommunication, 0x0377);
  EXPECT_EQ(Text("AddressDravo"), "119");
  EXPECT_EQ(Text("BaudDravo"), "38400");
}

TEST_P(DravoSettings, ShowAnyAddressOfTheLowByte) {
  for (const int address : {1, 128, 247, 255}) {
    Show(kStoredCommunication, 0x0100 | address);
    EXPECT_EQ(Text("AddressDravo"), std::to_string(address));
  }
}

TEST_P(DravoSettings, SelectTheRateByThreeBitsOfTheHighByte) {
  // The list of a page that has not seen its module has the five faster ones.
  Dravo().CheckFWVersion(3);
  const std::pair<int, const char*> rates[] = {{6, "1200"},  {7, "2400"},    {0, "4800"},    {1, "9600"},
                                               {2, "19200"}, {3, "38400"},   {4, "57600"},   {8, "4800"},
                                               {9, "9600"},  {0xFE, "1200"}, {0xF4, "57600"}};
  for (const auto& [code, rate] : rates) {
    SCOPED_TRACE(code);
    Show(kStoredCommunication, code << 8 | 1);
    EXPECT_EQ(Text("BaudDravo"), rate);
  }
}

TEST_P(DravoSettings, LeaveTheRateWhereTheCodeHasNoEntry) {
  Show(kStoredCommunication, 0x0301);
  ASSERT_EQ(Text("BaudDravo"), "38400");
  Show(kStoredCommunication, 0x0507);
  EXPECT_EQ(Text("BaudDravo"), "38400");
  EXPECT_EQ(Text("AddressDravo"), "7");
}

// Only one of the two roads.

class DravoDecode : public DravoFixture {};

TEST_F(DravoDecode, LeavesTheDelayBoxAloneAtStart) {
  Set(kFlags, 0xFFFF);
  StartSession();
  EXPECT_FALSE(Checked("CheckDravo5"));
  Click("StopDravo");
  Click("CheckDravo5");
  ASSERT_TRUE(Checked("CheckDravo5"));
  Set(kFlags, 0);
  StartSession();
  RunThroughADecode();
  EXPECT_TRUE(Checked("CheckDravo5"));
}

TEST_F(DravoDecode, TicksTheDelayBoxWhenItReadsOutOfASession) {
  for (int bit = 0; bit < 16; ++bit) {
    SCOPED_TRACE(bit);
    Set(kFlags, 1 << bit);
    ReadEEPromFlags();
    EXPECT_EQ(Checked("CheckDravo5"), bit == 2);
    Set(kFlags, 0xFFFF & ~(1 << bit));
    ReadEEPromFlags();
    EXPECT_EQ(Checked("CheckDravo5"), bit != 2);
  }
}

TEST_F(DravoDecode, ShowsNoInputTypeForAModuleOnTcR) {
  Set(kInput, 0x0800);
  StartSession();
  EXPECT_EQ(ListIndex("InputTypeDravo"), -1);
  EXPECT_EQ(Text("InputTypeDravo"), "");
}

TEST_F(DravoDecode, LeavesTheBarsToTheRepeatingDecode) {
  Set(kMeasured, 5000);
  const int first = Percent("BargDravo1");
  const int second = Percent("BargDravo2");
  ASSERT_NE(first, 50);
  Click("StartDravo");
  ASSERT_TRUE(InSession());
  EXPECT_EQ(Percent("BargDravo1"), first);
  EXPECT_EQ(Percent("BargDravo2"), second);
}

// The repeating decode.

class DravoRepeatingDecode : public DravoFixture {
 protected:
  void Show(int number, int value) {
    if (!InSession()) StartSession();
    Set(number, value);
    RunThroughADecode();
  }
  void SetBar(const char* name, int percent) { dynamic_cast<view::ARMetor&>(At(name)).SetPercent(percent); }
};

TEST_F(DravoRepeatingDecode, ShowsBothInputValuesSigned) {
  for (const auto& [user, measured] : {std::pair(-1, 10000), std::pair(32767, -250), std::pair(-32768, 32767)}) {
    Set(kUserValue, user);
    Show(kMeasured, measured);
    EXPECT_EQ(Text("InputTechDravo"), std::to_string(user));
    EXPECT_EQ(Text("InputScaledDravo"), std::to_string(measured));
  }
}

TEST_F(DravoRepeatingDecode, LightsEachLampByItsOwnBit) {
  for (int bit = 0; bit < 16; ++bit) {
    SCOPED_TRACE(bit);
    Show(kStatus, 1 << bit);
    if (bit >= 8 && bit <= 13) {
      EXPECT_THAT(LitLamps(), ElementsAre(bit - 8));
    } else {
      EXPECT_THAT(LitLamps(), IsEmpty());
    }
  }
}

TEST_F(DravoRepeatingDecode, DarkensEachLampWhoseBitIsClear) {
  for (int bit = 8; bit <= 13; ++bit) {
    SCOPED_TRACE(bit);
    Show(kStatus, 0xFFFF & ~(1 << bit));
    for (int i = 0; i < kLamps; ++i) EXPECT_EQ(BackColor(Lamp(i)), bit == 8 + i ? kButtonFace : kLit) << i;
  }
}

struct Bar {
  int measured;
  int percent;
};

TEST_F(DravoRepeatingDecode, SetsBothBarsToTheShareOf10000) {
  const Bar rows[] = {{0, 0},     {49, 0},    {50, 0},     {51, 1},     {150, 2},     {250, 2},     {251, 3},
                      {5000, 50}, {9949, 99}, {9950, 100}, {9999, 100}, {10000, 100}, {10001, 100}, {32767, 100},
                      {-1, 0},    {4200, 42}, {-60, 0},    {-10000, 0}, {7777, 78},   {-32768, 0}};
  for (const Bar& row : rows) {
    SCOPED_TRACE(row.measured);
    Show(kMeasured, row.measured);
    EXPECT_EQ(Percent("BargDravo1"), row.percent);
    EXPECT_EQ(Percent("BargDravo2"), row.percent);
  }
}

TEST_F(DravoRepeatingDecode, GoesByTheSecondBarAlone) {
  Show(kMeasured, 5000);
  SetBar("BargDravo1", 7);
  RunThroughADecode();
  EXPECT_EQ(Percent("BargDravo1"), 7);
  SetBar("BargDravo2", 7);
  RunThroughADecode();
  EXPECT_EQ(Percent("BargDravo1"), 50);
  EXPECT_EQ(Percent("BargDravo2"), 50);
}

TEST_F(DravoRepeatingDecode, ComparesTheRealPercentWithTheBar) {
  Show(kMeasured, 5001);
  SetBar("BargDravo1", 7);
  RunThroughADecode();
  EXPECT_EQ(Percent("BargDravo1"), 50);
}

TEST_F(DravoRepeatingDecode, LeavesAllSettingsAsTheFirstBlockShowedThem) {
  StartSession();
  Set(kInput, 0x0506);
  SetValues({11, 12, 13, 14, 15, 16});
  Set(kCommunication, 0x0322);
  Set(kStoredCommunication, 0x0233);
  Set(kFlags, 0xFFFF);
  Run(std::chrono::seconds(2));
  ASSERT_EQ(Polled(kPolledFlags), 0xFFFF);
  EXPECT_THAT(Exchanges(), IsEmpty());
  EXPECT_EQ(ListIndex("InputTypeDravo"), 0);
  EXPECT_EQ(ListIndex("InputFilterDravo"), 0);
  EXPECT_THAT(ValueTexts(), ElementsAre("10000", "0", "10000", "0", "10000", "0"));
  EXPECT_EQ(Text("AddressDravo"), "1");
  EXPECT_EQ(Text("BaudDravo"), "9600");
  for (const char* box : {"CheckDravo1", "CheckDravo2", "CheckDravo3", "CheckDravo4", "CheckDravo5"}) {
    EXPECT_FALSE(Checked(box)) << box;
  }
  EXPECT_TRUE(Checked("OptionDravo1"));
}

TEST_F(DravoRepeatingDecode, KeepsWhatItShowedWhenThePollFails) {
  Set(kUserValue, 77);
  Set(kStatus, 0x0200);
  Show(kMeasured, 5000);
  module.Always(ModuleFault::Exception(4));
  Set(kUserValue, 88);
  Set(kStatus, 0);
  Show(kMeasured, 1000);
  EXPECT_EQ(Text("MessageDravo"), kPollFailed);
  EXPECT_EQ(Text("InputTechDravo"), "77");
  EXPECT_EQ(Text("InputScaledDravo"), "5000");
  EXPECT_EQ(Percent("BargDravo1"), 50);
  EXPECT_THAT(LitLamps(), ElementsAre(1));
  module.Always(ModuleFault::None());
  RunThroughADecode();
  EXPECT_EQ(Text("MessageDravo"), "OK");
  EXPECT_EQ(Text("InputTechDravo"), "88");
}

}  // namespace
}  // namespace tarvo::test
