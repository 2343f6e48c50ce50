// What the Ferrun page makes of each word that a poll brings.

#include "support/ferrun_fixture.h"

namespace tarvo::test {
namespace {

using testing::IsEmpty;

constexpr unsigned kButtonFace = 0x8000000F;
constexpr int kRed = 255;

// What the first block and the repeating decode show alike.

enum class Road { kFirstBlock, kRepeatingDecode };

class FerrunDecode : public FerrunFixture, public testing::WithParamInterface<Road> {
 protected:
  void ShowFlags(int word) {
    if (GetParam() == Road::kFirstBlock) {
      if (InSession()) Click("StopFerrun");
      Set(kFlags, word);
      // Start's own blocks are looked at before the first tick of a timer.
      Click("StartFerrun");
    } else {
      Set(kFlags, 0);
      if (!InSession()) Click("StartFerrun");
      Set(kFlags, word);
      RunThroughADecode();
    }
    ASSERT_TRUE(InSession());
  }
};

INSTANTIATE_TEST_SUITE_P(Roads, FerrunDecode, testing::Values(Road::kFirstBlock, Road::kRepeatingDecode),
                         [](const auto& given) {
                           return given.param == Road::kFirstBlock ? "FirstBlock" : "RepeatingDecode";
                         });

TEST_P(FerrunDecode, TicksEachBoxByItsOwnBit) {
  for (int bit = 0; bit < 16; ++bit) {
    SCOPED_TRACE(bit);
    ShowFlags(1 << bit);
    for (const FerrunFlag& flag : kFerrunFlags) EXPECT_EQ(Checked(flag.box), flag.mask == 1 << bit) << flag.box;
  }
}

TEST_P(FerrunDecode, ClearsEachBoxWhoseBitIsClear) {
  for (int bit = 0; bit < 16; ++bit) {
    SCOPED_TRACE(bit);
    ShowFlags(0xFFFF & ~(1 << bit));
    for (const FerrunFlag& flag : kFerrunFlags) EXPECT_EQ(Checked(flag.box), flag.mask != 1 << bit) << flag.box;
  }
}

TEST_P(FerrunDecode, SelectsTheParityByBit4) {
  ShowFlags(0x0018);
  EXPECT_TRUE(Checked("OptionOdd"));
  EXPECT_FALSE(Checked("OptionEven"));
  ShowFlags(0xFFEF);
  EXPECT_FALSE(Checked("OptionOdd"));
  EXPECT_TRUE(Checked("OptionEven"));
  ShowFlags(0x0010);
  EXPECT_TRUE(Checked("OptionOdd"));
}

TEST_P(FerrunDecode, EnablesTheParityOptionsByBit3) {
  ShowFlags(0x0008);
  EXPECT_TRUE(Enabled("OptionEven"));
  EXPECT_TRUE(Enabled("OptionOdd"));
  ShowFlags(0xFFF7);
  EXPECT_FALSE(Enabled("OptionEven"));
  EXPECT_FALSE(Enabled("OptionOdd"));
}

TEST_P(FerrunDecode, DisablesTheOutputWhileTheLoopHasIt) {
  ShowFlags(0x0400);
  EXPECT_FALSE(Enabled("OutputFerrun"));
  ShowFlags(0xFBFF);
  EXPECT_TRUE(Enabled("OutputFerrun"));
}

TEST_F(FerrunFixture, FirstBlockTakesTheFlagsOfItsLastRegister) {
  // The second block comes later and has the flags too, but does not show them at once.
  module.BeforeRead = [this](int first, int /*count*/) { Set(kFlags, first == kFlags ? 0 : 0x0200); };
  Click("StartFerrun");
  EXPECT_TRUE(Checked("CheckBurnOUt"));
  RunThroughADecode();
  EXPECT_FALSE(Checked("CheckBurnOUt"));
}

// What only the first block shows.

class FerrunFirstBlock : public FerrunFixture {
 protected:
  void ShowInSession() {
    if (InSession()) Click("StopFerrun");
    StartSession();
  }
};

TEST_F(FerrunFirstBlock, SelectsEachInputTypeByTheHighByteFrom1On) {
  for (int position = kFerrunInputCount - 1; position >= 0; --position) {
    SCOPED_TRACE(position);
    Set(kInput, (position + 1) << 8);
    ShowInSession();
    EXPECT_EQ(ListIndex("comboInputTypeFerrun"), position);
    EXPECT_EQ(Text("comboInputTypeFerrun"), kFerrunInputs[position].text);
  }
}

TEST_F(FerrunFirstBlock, SelectsNoInputTypeForAHighByteOf0) {
  Set(kInput, 0x0502);
  ShowInSession();
  Set(kInput, 0x0003);
  ShowInSession();
  EXPECT_EQ(ListIndex("comboInputTypeFerrun"), -1);
  EXPECT_EQ(ListIndex("comboInputFilterFerrun"), 3);
  RunThroughADecode();
  EXPECT_EQ(Text("MessageFerrun"), "OK");
}

TEST_F(FerrunFirstBlock, ShowsNoEntryForATypeBeyondTheList) {
  for (const int word : {0x0E00, 0x8100, 0xFF00}) {
    SCOPED_TRACE(word);
    Set(kInput, word);
    ShowInSession();
    EXPECT_EQ(Text("comboInputTypeFerrun"), "");
    EXPECT_EQ(Text(Value(0)), "10000");
    EXPECT_EQ(Text("MessageFerrun"), "OK");
  }
}

TEST_F(FerrunFirstBlock, SelectsEachFilterByTheWholeLowByte) {
  for (int position = 6; position >= 0; --position) {
    Set(kInput, 0x0100 | position);
    ShowInSession();
    EXPECT_EQ(ListIndex("comboInputFilterFerrun"), position);
  }
  for (const int beyond : {0x07, 0x0A, 0xFF}) {
    SCOPED_TRACE(beyond);
    Set(kInput, 0x0100 | beyond);
    ShowInSession();
    EXPECT_EQ(Text("comboInputFilterFerrun"), "");
  }
}

TEST_F(FerrunFirstBlock, ShowsScalesAndCalibrationWithTheirSign) {
  for (int i = 0; i < 6; ++i) Set(40003 + i, i % 2 == 0 ? 1000 + i : -1000 - i);
  ShowInSession();
  for (int i = 0; i < 6; ++i) EXPECT_EQ(Text(Value(i)), std::to_string(i % 2 == 0 ? 1000 + i : -1000 - i)) << i;
}

TEST_F(FerrunFirstBlock, ShowsWhatTheModuleHasOverWhatTheTypeRewrites) {
  for (int i = 0; i < 4; ++i) Set(40003 + i, 111 * (i + 1));
  for (int position = 1; position < kFerrunInputCount; ++position) {
    Set(kInput, (position + 1) << 8);
    ShowInSession();
    for (int i = 0; i < 4; ++i) EXPECT_EQ(Text(Value(i)), std::to_string(111 * (i + 1))) << position << ' ' << i;
  }
}

TEST_F(FerrunFirstBlock, RunsTheTypesOwnHandler) {
  for (int position = 1; position < kFerrunInputCount; ++position) {
    SCOPED_TRACE(position);
    Set(kInput, (position + 1) << 8);
    ShowInSession();
    EXPECT_EQ(Text("UnitaMisuraFerrun1"), kFerrunInputs[position].unit);
    EXPECT_EQ(Text("UnitaMisuraFerrun2"), kFerrunInputs[position].unit);
    for (int i = 0; i < 4; ++i) EXPECT_EQ(Enabled(Value(i)), kFerrunInputs[position].scaled) << i;
  }
}

TEST_F(FerrunFirstBlock, ShowsTheSafeTimeWithoutSign) {
  for (const int time : {5, 250, 0, 65535}) {
    Set(kSafeTime, time);
    ShowInSession();
    EXPECT_EQ(Text("labSafetimeFerrun"), std::to_string(time));
  }
}

TEST_F(FerrunFirstBlock, TakesAddressAndRateFromTheImage) {
  Set(40009, 0x0105);
  Set(kStoredCommunication, 0x0322);
  ShowInSession();
  EXPECT_EQ(Text("labAddressFerrun"), "34");
  EXPECT_EQ(Text("comboBaudFerrun"), "38400");
}

TEST_F(FerrunFirstBlock, SelectsTheRateByThreeBitsOfTheCode) {
  const std::pair<int, const char*> rates[] = {{6, "1200"},  {7, "2400"},  {0, "4800"}, {1, "9600"},
                                               {2, "19200"}, {3, "38400"}, {4, "57600"}};
  for (const int above : {0, 0xF800}) {
    for (const auto& [code, rate] : rates) {
      Set(kStoredCommunication, above | code << 8 | 0xFF);
      ShowInSession();
      EXPECT_EQ(Text("comboBaudFerrun"), rate) << above;
      EXPECT_EQ(Text("labAddressFerrun"), "255");
    }
  }
}

TEST_F(FerrunFirstBlock, LeavesTheRateWhereTheCodeHasNoEntry) {
  Set(kStoredCommunication, 0x0301);
  ShowInSession();
  Set(kStoredCommunication, 0x0502);
  ShowInSession();
  EXPECT_EQ(Text("comboBaudFerrun"), "38400");
  EXPECT_EQ(Text("labAddressFerrun"), "2");
}

// What only the second block shows.

TEST_F(FerrunFirstBlock, IsFollowedByThePidTermsInTheirFields) {
  // Fields 6 to 9 in the registers' order, then maximum and minimum, and the manual reset last.
  const std::pair<int, int> fields[] = {{40012, 6},  {40013, 7},  {40014, 8}, {40015, 9},
                                        {40016, 12}, {40017, 10}, {40018, 11}};
  for (const auto& [reg, field] : fields) Set(reg, reg - 40000);
  ShowInSession();
  for (const auto& [reg, field] : fields) EXPECT_EQ(Text(Value(field)), std::to_string(reg - 40000)) << reg;
}

TEST_F(FerrunFirstBlock, IsFollowedByOutputAndInputs) {
  Set(kOutput, 4444);
  Set(kUserValue, -555);
  Set(kMeasured, -6);
  Click("StartFerrun");
  EXPECT_EQ(Text("OutputFerrun"), "4444");
  EXPECT_EQ(Text("InputTechFerrun"), "-555");
  EXPECT_EQ(Text("InputScaledFerrun"), "-6");
}

TEST_F(FerrunFirstBlock, IsFollowedByTheStoredOutput) {
  Set(kStoredOutput, 4711);
  ShowInSession();
  EXPECT_EQ(Text(Value(13)), "4711");
}

TEST_F(FerrunFirstBlock, IsTheOnlyOneToShowTheSettings) {
  ShowInSession();
  const std::vector<std::string> names = [] {
    std::vector<std::string> all = {"labSafetimeFerrun", "labAddressFerrun", "comboBaudFerrun", "comboInputTypeFerrun",
                                    "comboInputFilterFerrun"};
    for (int i = 0; i < kValues; ++i) all.push_back(Value(i));
    return all;
  }();
  std::vector<std::string> before;
  for (const std::string& name : names) before.push_back(Text(name));
  for (int reg = 40002; reg <= 40018; ++reg) Set(reg, 0x0204);
  Set(kStoredCommunication, 0x0322);
  Set(kStoredOutput, 77);
  Run(std::chrono::seconds(2));
  for (std::size_t i = 0; i < names.size(); ++i) EXPECT_EQ(Text(names[i]), before[i]) << names[i];
}

// What each decode shows.

class FerrunRepeatingDecode : public FerrunFixture {
 protected:
  void Show(int reg, int word) {
    Set(reg, word);
    if (!InSession()) StartSession();
    RunThroughADecode();
  }
};

TEST_F(FerrunRepeatingDecode, ShowsTheInputsWithTheirSign) {
  for (const int value : {0, 1, -1, 12345, -32768, 32767}) {
    Show(kUserValue, value);
    EXPECT_EQ(Text("InputTechFerrun"), std::to_string(value));
    Show(kMeasured, value);
    EXPECT_EQ(Text("InputScaledFerrun"), std::to_string(value));
  }
}

TEST_F(FerrunRepeatingDecode, ShowsTheOutput) {
  for (const int value : {0, 1, 5000, 10000}) {
    Show(kOutput, value);
    EXPECT_EQ(Text("OutputFerrun"), std::to_string(value));
  }
}

struct Share {
  int value;
  int percent;
};

constexpr Share kShares[] = {{0, 0},      {49, 0},      {50, 0},      {51, 1},      {149, 1},    {150, 2},
                             {250, 2},    {251, 3},     {5000, 50},   {5050, 50},   {5051, 51},  {9949, 99},
                             {9950, 100}, {10000, 100}, {10001, 100}, {10500, 100}, {32767, 100}};

TEST_F(FerrunRepeatingDecode, ShowsTheMeasuredValueInTwoBars) {
  for (const Share& share : kShares) {
    SCOPED_TRACE(share.value);
    Show(kMeasured, share.value);
    EXPECT_EQ(Percent("BargFerrun1"), share.percent);
    EXPECT_EQ(Percent("BargFerrun2"), share.percent);
    EXPECT_EQ(Percent("BargFerrun3"), 0);
  }
}

TEST_F(FerrunRepeatingDecode, EmptiesTheBarsBelow0) {
  for (const int value : {-1, -500, -32768}) {
    Show(kMeasured, 5000);
    Show(kMeasured, value);
    EXPECT_EQ(Percent("BargFerrun1"), 0) << value;
    EXPECT_EQ(Percent("BargFerrun2"), 0) << value;
  }
}

TEST_F(FerrunRepeatingDecode, ShowsTheOutputInTheThirdBar) {
  for (const Share& share : kShares) {
    SCOPED_TRACE(share.value);
    Show(kOutput, share.value);
    EXPECT_EQ(Percent("BargFerrun3"), share.percent);
    EXPECT_EQ(Percent("BargFerrun1"), 0);
    EXPECT_EQ(Percent("BargFerrun2"), 0);
  }
}

TEST_F(FerrunRepeatingDecode, LeavesABarWhoseRoundedPercentIsTheSame) {
  Show(kMeasured, 5000);
  const History first(At("BargFerrun1"), "Percent");
  const History second(At("BargFerrun2"), "Percent");
  for (const int value : {4990, 5010, 5050, 4960}) Show(kMeasured, value);
  EXPECT_THAT(first.Entries(), IsEmpty());
  EXPECT_THAT(second.Entries(), IsEmpty());
  Show(kMeasured, 5100);
  EXPECT_EQ(first.Entries().size(), 1U);
}

TEST_F(FerrunRepeatingDecode, LightsEachStatusByItsOwnBit) {
  for (int bit = 0; bit < 16; ++bit) {
    SCOPED_TRACE(bit);
    Show(kStatus, 1 << bit);
    for (int i = 0; i < 8; ++i) {
      const auto colour = static_cast<unsigned>(BackColor(Member("StatusFerrun", i)));
      EXPECT_EQ(colour, bit == 8 + i ? kRed : kButtonFace) << i;
    }
  }
}

TEST_F(FerrunRepeatingDecode, DarkensEachStatusWhoseBitIsClear) {
  for (int bit = 8; bit < 16; ++bit) {
    SCOPED_TRACE(bit);
    Show(kStatus, 0xFFFF & ~(1 << bit));
    for (int i = 0; i < 8; ++i) EXPECT_EQ(BackColor(Member("StatusFerrun", i)) == kRed, bit != 8 + i) << i;
  }
}

TEST_F(FerrunRepeatingDecode, KeepsTheLastValuesWhileTheModuleIsSilent) {
  Show(kMeasured, 5000);
  module.Always(ModuleFault::Unheard());
  Run(std::chrono::seconds(10));
  EXPECT_EQ(Text("InputScaledFerrun"), "5000");
  EXPECT_EQ(Percent("BargFerrun1"), 50);
  EXPECT_TRUE(InSession());
}

TEST_F(FerrunRepeatingDecode, TellsFrontsNothingWhenNothingChanges) {
  struct CountingFront final : view::Watcher {
    void ControlsChanged(std::span<view::Control* const> changed) override { controls += changed.size(); }
    void StageChanged() override {}
    std::size_t controls = 0;
  };
  Set(kFlags, 0xFFFF);
  Set(kStatus, 0xFFFF);
  Show(kMeasured, 5012);
  CountingFront front;
  const view::Screen::Subscription subscription = program.GetScreen().Subscribe(front);
  Run(std::chrono::seconds(2));
  EXPECT_EQ(front.controls, 0U);
}

}  // namespace
}  // namespace tarvo::test
