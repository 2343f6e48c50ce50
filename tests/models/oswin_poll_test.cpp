// What the Oswin page shows of its polls: measures, resistances, failures, and its message.

#include "support/oswin_fixture.h"

namespace tarvo::test {
namespace {

using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

constexpr int kDegrees = 0;
constexpr int kOhm = 1;

class OswinPoll : public OswinFixture {
 protected:
  void StartAndPoll() {
    StartSession();
    RunThroughAPoll();
  }
};

// Measures.

struct MeasureCase {
  int units;
  int sensor;
  int word;
  const char* text;
};

class OswinMeasure : public OswinPoll, public testing::WithParamInterface<MeasureCase> {};

INSTANTIATE_TEST_SUITE_P(
    Words, OswinMeasure,
    testing::Values(
        // Degrees, whatever the sensor: a tenth, with a sign.
        MeasureCase{kDegrees, 0, 0, "0.0"}, MeasureCase{kDegrees, 0, 5, "0.5"}, MeasureCase{kDegrees, 0, 215, "21.5"},
        MeasureCase{kDegrees, 1, 8500, "850.0"}, MeasureCase{kDegrees, 2, 32767, "3276.7"},
        MeasureCase{kDegrees, 3, 1800, "180.0"}, MeasureCase{kDegrees, 0, 0xFFFF, "-0.1"},
        MeasureCase{kDegrees, 0, -5, "-0.5"}, MeasureCase{kDegrees, 1, -2000, "-200.0"},
        MeasureCase{kDegrees, 2, 0x8000, "-3276.8"}, MeasureCase{kDegrees, 3, -601, "-60.1"},
        // Ohm of the small sensors: a hundredth; of the others: a tenth. A word with bit 15 loses one.
        MeasureCase{kOhm, 0, 0, "0.00"}, MeasureCase{kOhm, 0, 5, "0.05"}, MeasureCase{kOhm, 0, 10000, "100.00"},
        MeasureCase{kOhm, 0, 32767, "327.67"}, MeasureCase{kOhm, 0, 0x8000, "327.67"},
        MeasureCase{kOhm, 0, 0xFFFF, "655.34"}, MeasureCase{kOhm, 3, 12345, "123.45"},
        MeasureCase{kOhm, 3, 0xFF00, "652.79"}, MeasureCase{kOhm, 1, 0, "0.0"}, MeasureCase{kOhm, 1, 5, "0.5"},
        MeasureCase{kOhm, 1, 5000, "500.0"}, MeasureCase{kOhm, 1, 0x8000, "3276.7"},
        MeasureCase{kOhm, 1, 0xFFFF, "6553.4"}, MeasureCase{kOhm, 2, 12345, "1234.5"},
        MeasureCase{kOhm, 2, 39048, "3904.7"}));

TEST_P(OswinMeasure, IsShownInEachChannel) {
  const MeasureCase& given = GetParam();
  SetFour(kMeasure1, {given.word, given.word, given.word, given.word});
  for (int i = 0; i < kChannels; ++i) {
    Choose(Units(i), given.units);
    Choose(SensorType(i), given.sensor);
  }
  StartAndPoll();
  EXPECT_THAT(Four(&Measure), Each(std::string(given.text)));
}

TEST_F(OswinPoll, ShowsEachMeasureInItsOwnChannel) {
  SetFour(kMeasure1, {10, 20, 30, -40});
  StartAndPoll();
  EXPECT_THAT(Four(&Measure), ElementsAre("1.0", "2.0", "3.0", "-4.0"));
}

TEST_F(OswinPoll, ScalesEachMeasureByItsOwnControls) {
  SetFour(kMeasure1, {1234, 1234, 1234, 1234});
  Choose(Units(1), kOhm);
  Choose(Units(2), kOhm);
  Choose(SensorType(2), 1);
  Choose(SensorType(3), 2);
  StartAndPoll();
  EXPECT_THAT(Four(&Measure), ElementsAre("123.4", "12.34", "123.4", "123.4"));
}

TEST_F(OswinPoll, FollowsItsControlsAtOnceAndNotTheModule) {
  SetFour(kMeasure1, {-1, -1, -1, -1});
  StartAndPoll();
  Choose(Units(2), kOhm);
  RunThroughAPoll();
  EXPECT_THAT(Four(&Measure), ElementsAre("-0.1", "-0.1", "655.34", "-0.1"));
  Choose(SensorType(2), 1);
  RunThroughAPoll();
  EXPECT_EQ(Text(Measure(2)), "6553.4");
  Choose(Units(2), kDegrees);
  RunThroughAPoll();
  EXPECT_EQ(Text(Measure(2)), "-0.1");
  SetFour(kChannel1, {0x20, 0x20, 0x20, 0x20});
  RunThroughAPoll();
  EXPECT_THAT(Four(&Measure), Each(std::string("-0.1")));
  EXPECT_THAT(Exchanges(), IsEmpty());
}

TEST_F(OswinPoll, RescalesWithTheNextDecodeWithoutAnotherPoll) {
  SetFour(kMeasure1, {1234, 0, 0, 0});
  StartAndPoll();
  RunToAPollsEnd();
  Choose(Units(0), kOhm);
  Run(core::milliseconds(250));
  EXPECT_THAT(module.TakeLog(), IsEmpty());
  EXPECT_EQ(Text(Measure(0)), "12.34");
}

TEST_F(OswinPoll, ScalesByTheSettingsThatTheModuleHadWhenItWasRead) {
  SetFour(kChannel1, {0x20, 0x60, 0xA0, 0xE0});
  SetFour(kMeasure1, {10000, 10000, 10000, 10000});
  VisitAnew();
  StartAndPoll();
  EXPECT_THAT(Four(&Measure), ElementsAre("100.00", "1000.0", "1000.0", "100.00"));
}

TEST_F(OswinPoll, ShowsMeasuresAsTheyChange) {
  StartSession();
  for (int shift = 0; shift < 3; ++shift) {
    SetFour(kMeasure1, {200 + shift, 300 + shift, -shift, 8000 - shift});
    RunThroughAPoll();
    const std::string digit = std::to_string(shift);
    EXPECT_EQ(Text(Measure(0)), "20." + digit);
    EXPECT_EQ(Text(Measure(1)), "30." + digit);
  }
  EXPECT_EQ(Text(Measure(2)), "-0.2");
  EXPECT_EQ(Text(Measure(3)), "799.8");
}

// Resistances.

TEST_F(OswinPoll, ShowsEachResistanceAsItIs) {
  SetFour(kResistance1, {0, 350, 1500, 32767});
  StartAndPoll();
  EXPECT_THAT(Four(&Resistance), ElementsAre("0", "350", "1500", "32767"));
  SetFour(kResistance1, {4, 3, 2, 1});
  RunThroughAPoll();
  EXPECT_THAT(Four(&Resistance), ElementsAre("4", "3", "2", "1"));
}

TEST_F(OswinPoll, ShowsResistancesWithTheirSign) {
  SetFour(kResistance1, {0xFFFF, 0x8000, 0x8001, 0xFF9C});
  StartAndPoll();
  EXPECT_THAT(Four(&Resistance), ElementsAre("-1", "-32768", "-32767", "-100"));
}

TEST_F(OswinPoll, ShowsResistancesTheSameWhateverUnitsAndSensor) {
  SetFour(kResistance1, {350, 350, 350, 350});
  for (int i = 0; i < kChannels; ++i) {
    Choose(SensorType(i), i);
    Choose(Units(i), i % 2);
  }
  StartAndPoll();
  EXPECT_THAT(Four(&Resistance), Each(std::string("350")));
}

TEST_F(OswinPoll, KeepsWhatItReadsInNineElements) {
  Set(kStatus, 0x1234);
  SetFour(kMeasure1, {1, 2, 3, 4});
  SetFour(kResistance1, {55, 66, 77, 88});
  State().PollBuffer.at(9) = state::Word(99);
  StartAndPoll();
  const int expected[] = {0x1234, 1, 2, 3, 4, 55, 66, 77, 88, 99};
  for (std::size_t element = 0; element < std::size(expected); ++element) {
    EXPECT_EQ(Polled(element), expected[element]) << element;
  }
}

// Failures.

TEST_F(OswinPoll, TellsEachUnavailableChannel) {
  StartSession();
  for (int i = 0; i < kChannels; ++i) {
    Set(kStatus, 0x1000 << i);
    RunThroughAPoll();
    for (int other = 0; other < kChannels; ++other) {
      EXPECT_EQ(Visible(ChannelFail(other)), other == i) << i << other;
      EXPECT_FALSE(Visible(SensorFail(other))) << i << other;
    }
    EXPECT_EQ(Text(ChannelFail(i)), "Channel Unavailable");
  }
}

TEST_F(OswinPoll, TellsEachFailedSensor) {
  StartSession();
  for (int i = 0; i < kChannels; ++i) {
    Set(kStatus, 0x0100 << i);
    RunThroughAPoll();
    for (int other = 0; other < kChannels; ++other) {
      EXPECT_EQ(Visible(SensorFail(other)), other == i) << i << other;
      EXPECT_FALSE(Visible(ChannelFail(other))) << i << other;
    }
    EXPECT_EQ(Text(SensorFail(i)), "Sensor unconnected or damaged");
  }
}

TEST_F(OswinPoll, TellsNothingByTheLowByteOfTheStatus) {
  Set(kStatus, 0x00FF);
  StartAndPoll();
  EXPECT_THAT(FourVisible(&ChannelFail), Each(false));
  EXPECT_THAT(FourVisible(&SensorFail), Each(false));
}

TEST_F(OswinPoll, TellsAllFailuresAtOnceAndThenNone) {
  Set(kStatus, 0xFF00);
  StartAndPoll();
  EXPECT_THAT(FourVisible(&ChannelFail), Each(true));
  EXPECT_THAT(FourVisible(&SensorFail), Each(true));
  EXPECT_THAT(Four(&ChannelFail), Each(std::string("Channel Unavailable")));
  EXPECT_THAT(Four(&SensorFail), Each(std::string("Sensor unconnected or damaged")));
  Set(kStatus, 0);
  RunThroughAPoll();
  EXPECT_THAT(FourVisible(&ChannelFail), Each(false));
  EXPECT_THAT(FourVisible(&SensorFail), Each(false));
}

// The message, and reads that fail.

TEST_F(OswinPoll, TellsAFailedPollAndKeepsWhatItShowed) {
  Set(kStatus, 0x2100);
  SetFour(kMeasure1, {1, 2, 3, 4});
  SetFour(kResistance1, {5, 6, 7, 8});
  StartAndPoll();
  RunToAPollsEnd();
  module.Always(ModuleFault::Exception(4));
  Set(kStatus, 0);
  SetFour(kMeasure1, {0, 0, 0, 0});
  SetFour(kResistance1, {0, 0, 0, 0});
  RunThroughAPoll();
  EXPECT_EQ(Message(), kPollFailed);
  EXPECT_THAT(Four(&Measure), ElementsAre("0.1", "0.2", "0.3", "0.4"));
  EXPECT_THAT(Four(&Resistance), ElementsAre("5", "6", "7", "8"));
  EXPECT_TRUE(Visible(ChannelFail(1)));
  EXPECT_TRUE(Visible(SensorFail(0)));
  EXPECT_TRUE(NothingInFront());
  EXPECT_TRUE(InSession());
  module.Always(ModuleFault::None());
  RunToAPollsEnd();
  RunThroughAPoll();
  EXPECT_EQ(Message(), "OK");
  EXPECT_THAT(Four(&Measure), Each(std::string("0.0")));
  ExpectSessionGoesOn();
}

TEST_F(OswinPoll, ReadsTheResistancesThoughTheBlockFails) {
  SetFour(kMeasure1, {1, 2, 3, 4});
  StartAndPoll();
  RunToAPollsEnd();
  SetFour(kMeasure1, {0, 0, 0, 0});
  SetFour(kResistance1, {5, 6, 7, 8});
  const History message(At("labMessage"), "Caption");
  module.Next(ModuleFault::Exception(4));
  RunToAPollsEnd();
  Run(core::milliseconds(250));
  EXPECT_THAT(message.Values<std::string>(), ElementsAre(kPollFailed, "OK"));
  EXPECT_THAT(Four(&Measure), ElementsAre("0.1", "0.2", "0.3", "0.4"));
  EXPECT_THAT(Four(&Resistance), ElementsAre("5", "6", "7", "8"));
}

TEST_F(OswinPoll, TellsAFailedBlockUntilTheLastResistanceIsRead) {
  StartAndPoll();
  RunToAPollsEnd();
  module.Next(ModuleFault::Exception(4));
  ASSERT_TRUE(RunUntil([this] { return module.Log().size() == 5; }));
  EXPECT_EQ(Message(), kPollFailed);
  RunUntilTheBusIsFree();
  EXPECT_EQ(Message(), "OK");
}

TEST_F(OswinPoll, StaysFailedWhenTheLastResistanceFailsToo) {
  StartAndPoll();
  RunToAPollsEnd();
  const History message(At("labMessage"), "Caption");
  RefuseAfter(0);
  RefuseAfter(3);
  RunToAPollsEnd();
  EXPECT_THAT(message.Values<std::string>(), ElementsAre(kPollFailed));
  RunToAPollsEnd();
  EXPECT_EQ(Message(), "OK");
}

TEST_F(OswinPoll, SaysNothingOfAFailedResistanceAndKeepsIt) {
  for (int failing = 0; failing < kChannels; ++failing) {
    SCOPED_TRACE(failing);
    SetFour(kResistance1, {1, 1, 1, 1});
    if (!InSession()) StartSession();
    RunThroughAPoll();
    RunToAPollsEnd();
    SetFour(kResistance1, {2, 2, 2, 2});
    const History message(At("labMessage"), "Caption");
    RefuseAfter(1 + failing);
    RunToAPollsEnd();
    Run(core::milliseconds(250));
    for (int i = 0; i < kChannels; ++i) EXPECT_EQ(Text(Resistance(i)), i == failing ? "1" : "2") << i;
    EXPECT_EQ(Message(), "OK");
    EXPECT_THAT(message.Values<std::string>(), IsEmpty());
  }
}

TEST_F(OswinPoll, LeavesItsSettingsAlone) {
  StartSession();
  SetFour(kChannel1, {0xFB, 0xFB, 0xFB, 0xFB});
  Set(kAddress, 0x2202);
  Set(kBaud, 0x0400);
  Run(std::chrono::seconds(3));
  EXPECT_THAT(ChannelsShown(), Each(0));
  EXPECT_EQ(Text("labModuleAddress"), "1");
  EXPECT_EQ(Text("cbBaudRate"), "9600");
  EXPECT_FALSE(Checked("checkParity"));
}

TEST_F(OswinPoll, NeverFailsByItself) {
  StartSession();
  const History message(At("labMessage"), "Caption");
  Run(std::chrono::seconds(30));
  EXPECT_THAT(message.Values<std::string>(), Not(Contains(std::string(kPollFailed))));
  EXPECT_EQ(Message(), "OK");
}

}  // namespace
}  // namespace tarvo::test
