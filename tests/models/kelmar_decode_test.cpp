// What the Kelmar page shows of its module's inputs and their settings, and what it keeps for the bars.

#include "support/kelmar_fixture.h"

namespace tarvo::test {
namespace {

using testing::Each;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

// The first block.

class KelmarFirstBlock : public KelmarFixture {};

TEST_F(KelmarFirstBlock, SelectsEachTypeByItsRow) {
  for (int type = 0; type < static_cast<int>(kTypes.size()); ++type) {
    SCOPED_TRACE(type);
    for (int input = 0; input < kInputs; ++input) Set(kType1 + input, (type + input) % 9);
    Begin();
    for (int input = 0; input < kInputs; ++input) {
      EXPECT_EQ(Text(TypeList(input)), kTypes.at(static_cast<std::size_t>(type + input) % 9).text) << input;
    }
  }
}

TEST_F(KelmarFirstBlock, SelectsEachFilterByItsRow) {
  for (int level = 0; level < 7; ++level) {
    for (int input = 0; input < kInputs; ++input) Set(kFilter1 + input, (level + input) % 7);
    Begin();
    for (int input = 0; input < kInputs; ++input) {
      EXPECT_EQ(Text(Filter(input)), std::to_string((level + input) % 7)) << input;
    }
  }
}

TEST_F(KelmarFirstBlock, BearsTypesAndFiltersThatNoListHas) {
  Set(kType1, 9);
  Set(kType1 + 1, 65535);
  Set(kFilter1, 7);
  Set(kFilter1 + 1, 32768);
  Set(kType1 + 2, 4);
  Begin();
  Run(std::chrono::seconds(1));
  EXPECT_TRUE(NothingInFront());
  EXPECT_EQ(Text("MessageKelmar"), "OK");
  EXPECT_EQ(ListIndex(TypeList(2)), 4);
}

TEST_F(KelmarFirstBlock, IsNotShownAgainByTheRepeatingDecode) {
  Set(kType1, 1);
  Begin();
  Set(kType1, 2);
  Set(kFilter1, 3);
  Run(std::chrono::seconds(2));
  EXPECT_EQ(ListIndex(TypeList(0)), 1);
  EXPECT_EQ(ListIndex(Filter(0)), 0);
}

// The repeating decode.

class KelmarDecode : public KelmarFixture {
 protected:
  /// A session with the same type on all inputs.
  void BeginWith(int type) {
    for (int input = 0; input < kInputs; ++input) Set(kType1 + input, type);
    Begin();
  }
  void Show(int input, int value) {
    Set(kValue1 + input, value);
    RunThroughADecode();
  }
};

TEST_F(KelmarDecode, ShowsEachValueInItsOwnRowWithItsSign) {
  BeginWith(0);
  for (int input = 0; input < kInputs; ++input) Set(kValue1 + input, -1111 * (input + 1));
  RunThroughADecode();
  for (int input = 0; input < kInputs; ++input) EXPECT_EQ(Text(Value(input)), std::to_string(-1111 * (input + 1)));
}

TEST_F(KelmarDecode, ShowsAllOf16BitsAsReceived) {
  BeginWith(1);
  for (const int value : {0, 1, -1, 2005, -2005, 32767, -32768}) {
    Show(2, value);
    EXPECT_EQ(Text(Value(2)), std::to_string(value));
  }
}

TEST_F(KelmarDecode, ShowsInputsThatAreNotSelectedToo) {
  Set(kFlags, 0x0100);
  BeginWith(0);
  Show(3, 4321);
  EXPECT_EQ(Text(Value(3)), "4321");
}

TEST_F(KelmarDecode, LightsEachLampByItsOwnBit) {
  BeginWith(0);
  for (int bit = 0; bit < 16; ++bit) {
    SCOPED_TRACE(bit);
    Set(kStatus, 1 << bit);
    RunThroughADecode();
    if (bit < 8) {
      EXPECT_THAT(LitLamps(), IsEmpty());
    } else {
      EXPECT_THAT(LitLamps(), ElementsAre(bit - 8));
    }
  }
}

TEST_F(KelmarDecode, DarkensEachLampWhoseBitIsClear) {
  BeginWith(0);
  for (int lamp = 0; lamp < kLamps; ++lamp) {
    Set(kStatus, 0xFFFF & ~(0x100 << lamp));
    RunThroughADecode();
    EXPECT_EQ(LitLamps().size(), 7U);
    EXPECT_EQ(BackColor(Lamp(lamp)), 64);
  }
}

struct BarCase {
  int type;
  int value;
  int percent;
};

TEST_F(KelmarDecode, ShowsTheShareOfTheFullScale) {
  const BarCase rows[] = {{1, -2005, 20},   {1, 2005, 20}, {1, 9949, 99},   {1, 9950, 100},   {2, 13000, 100},
                          {2, 12000, 100},  {2, 6000, 50}, {0, 16000, 100}, {0, -16001, 100}, {0, 32767, 100},
                          {0, -32768, 100}, {5, 1000, 25}, {6, 9000, 50},   {7, 800, 10},     {8, 1300, 10},
                          {3, 1750, 10},    {4, 3500, 20}};
  for (const BarCase& row : rows) {
    SCOPED_TRACE(testing::Message() << "type " << row.type << ", value " << row.value);
    BeginWith(row.type);
    Show(0, row.value);
    EXPECT_EQ(Percent(Bar(0)), row.percent);
    EXPECT_EQ(FillColor(0), row.value < 0 ? kNegativeColour : kPositiveColour);
  }
}

TEST_F(KelmarDecode, GivesEachInputTheFullScaleOfItsOwnType) {
  for (std::size_t type = 0; type < kTypes.size(); ++type) {
    SCOPED_TRACE(type);
    for (int input = 0; input < kInputs; ++input) {
      const std::size_t own = (type + static_cast<std::size_t>(input)) % kTypes.size();
      Set(kType1 + input, static_cast<int>(own));
      Set(kValue1 + input, kTypes.at(own).fullScale / 100 * (20 + 10 * input));
    }
    Begin();
    RunThroughADecode();
    for (int input = 0; input < kInputs; ++input) EXPECT_EQ(Percent(Bar(input)), 20 + 10 * input) << input;
  }
}

TEST_F(KelmarDecode, RoundsAHalfPercentToTheEvenOne) {
  BeginWith(1);
  const std::pair<int, int> rows[] = {{50, 0}, {51, 1}, {149, 1}, {150, 2}, {250, 2}, {251, 3}, {350, 4}, {9850, 98}};
  for (const auto& [value, percent] : rows) {
    for (const int sign : {1, -1}) {
      Show(1, sign * value);
      EXPECT_EQ(Percent(Bar(1)), percent) << sign * value;
    }
  }
}

TEST_F(KelmarDecode, LeavesTheColourWhenThePercentIsTheSameToTheLastDigit) {
  BeginWith(1);
  Show(0, 2000);
  ASSERT_EQ(FillColor(0), kPositiveColour);
  Show(0, -2000);
  EXPECT_EQ(Text(Value(0)), "-2000");
  EXPECT_EQ(FillColor(0), kPositiveColour);
  Show(0, -2001);
  EXPECT_EQ(Percent(Bar(0)), 20);
  EXPECT_EQ(FillColor(0), kNegativeColour);
}

TEST_F(KelmarDecode, KeepsWhatItShowsWhileThePollFails) {
  BeginWith(1);
  Set(kStatus, 0x1200);
  Show(3, 5000);
  module.Always(ModuleFault::Exception(4));
  Set(kStatus, 0);
  Show(3, 1);
  EXPECT_EQ(Text(Value(3)), "5000");
  EXPECT_EQ(Percent(Bar(3)), 50);
  EXPECT_THAT(LitLamps(), ElementsAre(1, 4));
}

// The counts that fill a bar.

class KelmarFullScale : public KelmarFixture {
 protected:
  static constexpr char kNotInitialised[] = "FullScaleTC non inizializzato";

  int FullScale(int input) const { return State().FullScaleTC.at(static_cast<std::size_t>(input)); }
};

TEST_F(KelmarFullScale, BeginsAt16000) {
  EXPECT_THAT(State().FullScaleTC, Each(16000));
}

TEST_F(KelmarFullScale, FollowsTheUsersChoiceOfAType) {
  for (int input = 0; input < kInputs; ++input) {
    for (std::size_t type = 0; type < kTypes.size(); ++type) {
      Choose(TypeList(input), static_cast<int>(type));
      EXPECT_EQ(FullScale(input), kTypes.at(type).fullScale) << type;
    }
    Choose(TypeList(input), 5);
    for (int other = 0; other < kInputs; ++other) EXPECT_EQ(FullScale(other), other <= input ? 4000 : 16000);
  }
}

TEST_F(KelmarFullScale, FollowsTheTypesOfTheModule) {
  for (int input = 0; input < kInputs; ++input) Set(kType1 + input, 1 + input);
  StartSession();
  EXPECT_THAT(State().FullScaleTC, ElementsAre(10000, 12000, 17500, 17500));
}

TEST_F(KelmarFullScale, IsTheModulesOwnAgainWhenAnotherPageHasChangedIt) {
  Set(kType1, 1);
  StartSession();
  Click("StopKelmar");
  State().FullScaleTC.fill(16000);
  Set(kValue1, 5000);
  StartSession();
  RunThroughADecode();
  EXPECT_EQ(FullScale(0), 10000);
  EXPECT_EQ(Percent("BargKelmar(0)"), 50);
}

TEST_F(KelmarFullScale, OfAnUnknownTypeStays) {
  Choose(TypeList(0), 5);
  Choose(TypeList(1), 6);
  Set(kType1, 9);
  Set(kType1 + 1, 65535);
  StartSession();
  EXPECT_EQ(FullScale(0), 4000);
  EXPECT_EQ(FullScale(1), 18000);
}

TEST_F(KelmarFullScale, BelowOneStopsAllBarsAndSaysSoAtEachTick) {
  for (const int missing : {0, -1}) {
    SCOPED_TRACE(missing);
    for (int input = 0; input < kInputs; ++input) Set(kValue1 + input, 0);
    StartSession();
    RunThroughADecode();
    ASSERT_EQ(Percent(Bar(0)), 0);
    State().FullScaleTC[3] = static_cast<std::int16_t>(missing);
    for (int input = 0; input < kInputs; ++input) Set(kValue1 + input, 8000 + input);
    Set(kStatus, 0x0100);
    for (int tick = 0; tick < 3; ++tick) {
      ASSERT_TRUE(RunUntil([this] { return BoxInFront() != nullptr; }, std::chrono::seconds(1)));
      EXPECT_THAT(BoxInFront(), IsBox(kNotInitialised, view::Icon::kCritical));
      AnswerOk();
    }
    EXPECT_EQ(Text(Value(0)), "8000");
    EXPECT_EQ(Text(Value(3)), "8003");
    EXPECT_EQ(BackColor(Lamp(0)), 255);
    EXPECT_EQ(Percent(Bar(0)), 0);
    // Mended, it is silent and the bars go on.
    State().FullScaleTC[3] = 16000;
    if (BoxInFront() != nullptr) AnswerOk();
    Run(std::chrono::seconds(1));
    EXPECT_TRUE(NothingInFront());
    EXPECT_EQ(Percent(Bar(0)), 50);
    Click("StopKelmar");
  }
}

TEST_F(KelmarFullScale, BelowOneShowsOneBoxAtATime) {
  StartSession();
  State().FullScaleTC[0] = 0;
  ASSERT_TRUE(RunUntil([this] { return BoxInFront() != nullptr; }));
  Run(std::chrono::seconds(2));
  EXPECT_EQ(program.GetScreen().ModalDepth(), 1U);
}

// The view before anything was read.

class KelmarView : public KelmarFixture {};

TEST_F(KelmarView, BeginsWithTheLowestValues) {
  for (int input = 0; input < kInputs; ++input) {
    EXPECT_EQ(Text(Value(input)), "0");
    EXPECT_EQ(ListIndex(TypeList(input)), 0);
    EXPECT_EQ(ListIndex(Filter(input)), 0);
  }
}

TEST_F(KelmarView, HasItsLists) {
  std::vector<std::string> types;
  for (const TypeRow& row : kTypes) types.emplace_back(row.text);
  for (int input = 0; input < kInputs; ++input) {
    EXPECT_THAT(List(TypeList(input)), ElementsAreArray(types));
    EXPECT_THAT(List(Filter(input)), ElementsAre("0", "1", "2", "3", "4", "5", "6"));
    EXPECT_EQ(Text(Cal(input)), "CAL");
  }
}

TEST_F(KelmarView, HasNoTimerWithoutATask) {
  EXPECT_EQ(FindControl("TimerControllo"), nullptr);
}

TEST_F(KelmarView, NamesRegisterAndBitInItsToolTips) {
  const std::pair<const char*, const char*> tips[] = {{"CheckKelmar(0)", "40003.2-Speed Up Acquisition"},
                                                      {"CheckKelmar(1)", "40003.8-Channel 1"},
                                                      {"CheckKelmar(2)", "40003.9-Channel #2"},
                                                      {"CheckKelmar(3)", "40003.10-Channel #3"},
                                                      {"CheckKelmar(4)", "40003.11- Channel #4"},
                                                      {"CheckKelmar(5)", "40003.12-Status"},
                                                      {"OptionKelmar2", "40003.13-Real Input"},
                                                      {"OptionKelmar1", "40003.13-Scaled Input"},
                                                      {"CheckKelmarBitOrder", "40003.14-Reversed Bit Order"}};
  for (const auto& [name, tip] : tips) EXPECT_EQ(ToolTip(name), tip) << name;
  for (int input = 0; input < kInputs; ++input) {
    const std::string number = std::to_string(input + 1);
    EXPECT_EQ(ToolTip(TypeList(input)), std::to_string(40004 + input) + " - Input Type " + number);
    EXPECT_EQ(ToolTip(Filter(input)), std::to_string(40008 + input) + " - Input Filter " + number);
    EXPECT_EQ(ToolTip(Value(input)), std::to_string(40013 + input) + " - Input Value " + number);
    EXPECT_EQ(ToolTip(Lamp(input)), "40012." + std::to_string(8 + input) + " - Overflow input " + number);
    EXPECT_EQ(ToolTip(Lamp(4 + input)), "40012." + std::to_string(12 + input) + " - Burn-out input " + number);
    EXPECT_EQ(ToolTip(Cal(input)), "Open Cal window");
  }
}

}  // namespace
}  // namespace tarvo::test
