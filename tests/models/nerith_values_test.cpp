// What the page of Nerith and Pellor makes of a poll.

#include "support/nerith_fixture.h"

namespace tarvo::test {
namespace {

using testing::ElementsAre;

class NerithValues : public NerithFixture {
 protected:
  /// A session with a module that tells so many digits.
  void StartWithDigits(int digits) {
    Set(kSystem, kCelsius | digits << 3);
    StartAnew();
  }
  void ShowStatus(int word) {
    Set(kStatus, word);
    RunThroughADecode();
  }
};

struct ValueRow {
  int word;
  const char* shown;
};

TEST_F(NerithValues, StandAsIntegersWithoutDigits) {
  StartWithDigits(0);
  for (const ValueRow& row :
       {ValueRow{1234, "1234"}, ValueRow{7, "7"}, ValueRow{32767, "32767"}, ValueRow{0xFFFF, "-1"},
        ValueRow{0x8000, "-32768"}, ValueRow{0xFB2E, "-1234"}, ValueRow{0, "0"}}) {
    Set(kValue1, row.word);
    RunThroughADecode();
    EXPECT_EQ(Text(Value(0)), row.shown);
  }
}

TEST_F(NerithValues, StandAsTenthsWithOneDigit) {
  StartWithDigits(1);
  for (const ValueRow& row :
       {ValueRow{1234, "123.4"}, ValueRow{7, "0.7"}, ValueRow{10, "1.0"}, ValueRow{32767, "3276.7"},
        ValueRow{0xFFFF, "-0.1"}, ValueRow{0x8000, "-3276.8"}, ValueRow{0xFB2E, "-123.4"}, ValueRow{0, "0.0"}}) {
    Set(kValue1, row.word);
    RunThroughADecode();
    EXPECT_EQ(Text(Value(0)), row.shown);
  }
}

TEST_F(NerithValues, StandAsHundredthsWithTwoDigits) {
  StartWithDigits(2);
  for (const ValueRow& row :
       {ValueRow{1234, "12.34"}, ValueRow{7, "0.07"}, ValueRow{10, "0.10"}, ValueRow{100, "1.00"},
        ValueRow{32767, "327.67"}, ValueRow{0xFFFF, "-0.01"}, ValueRow{0x8000, "-327.68"}, ValueRow{0, "0.00"}}) {
    Set(kValue1, row.word);
    RunThroughADecode();
    EXPECT_EQ(Text(Value(0)), row.shown);
  }
}

TEST_F(NerithValues, StandAsIntegersForANumberOfDigitsThatThereIsNot) {
  StartWithDigits(3);
  Set(kValue1, 1234);
  RunThroughADecode();
  EXPECT_EQ(Text(Value(0)), "1234");
}

TEST_F(NerithValues, ComeFromTheRegisterOfTheirChannel) {
  StartWithDigits(1);
  for (int i = 0; i < kMostChannels; ++i) Set(kValue1 + i, 101 * (i + 1));
  RunThroughADecode();
  EXPECT_THAT(Values(), ElementsAre("10.1", "20.2", "30.3", "40.4"));
}

TEST_F(NerithValues, KeepTheirDigitsWhenAnotherNumberIsOnlyChosen) {
  StartWithDigits(1);
  Set(kValue1, 1234);
  Choose("cbDecimalNumbers", 2);
  RunThroughADecode();
  EXPECT_EQ(Text(Value(0)), "123.4");
}

TEST_F(NerithValues, NeverShowAFourthChannelOfAThreeChannelModule) {
  SetKind(kPellor, kNew);
  StartWithDigits(1);
  for (int i = 0; i < kMostChannels; ++i) Set(kValue1 + i, 101 * (i + 1));
  ShowStatus(0x88);
  EXPECT_THAT(Values(), ElementsAre("10.1", "20.2", "30.3", "0"));
  EXPECT_FALSE(Visible(Failed(3)));
  EXPECT_FALSE(Visible(Broken(3)));
}

TEST_F(NerithValues, ShowEachFailedChannelByItsBit) {
  StartSession();
  for (int bit = 0; bit < 16; ++bit) {
    SCOPED_TRACE(bit);
    ShowStatus(1 << bit);
    for (int i = 0; i < kMostChannels; ++i) {
      EXPECT_EQ(Visible(Failed(i)), bit == i) << i;
      EXPECT_EQ(Visible(Broken(i)), bit == 4 + i) << i;
    }
    if (bit < 4) {
      EXPECT_EQ(Text(Failed(bit)), "");
    } else if (bit < 8) {
      EXPECT_EQ(Text(Broken(bit - 4)), kBrokenSensor);
    }
  }
}

TEST_F(NerithValues, ShowAllFailuresAndTakeThemBack) {
  StartSession();
  ShowStatus(0x00FF);
  for (int i = 0; i < kMostChannels; ++i) {
    EXPECT_TRUE(Visible(Failed(i))) << i;
    EXPECT_TRUE(Visible(Broken(i))) << i;
  }
  ShowStatus(0xFF00);
  for (int i = 0; i < kMostChannels; ++i) {
    EXPECT_FALSE(Visible(Failed(i))) << i;
    EXPECT_FALSE(Visible(Broken(i))) << i;
  }
}

TEST_F(NerithValues, StayWhileThePollFails) {
  StartWithDigits(1);
  Set(kValue1, 1234);
  ShowStatus(0x21);
  module.Always(ModuleFault::Exception(4));
  Set(kValue1, 5);
  ShowStatus(0);
  EXPECT_EQ(Message(), kPollFailed);
  EXPECT_EQ(Text(Value(0)), "123.4");
  EXPECT_TRUE(Visible(Failed(0)));
  EXPECT_TRUE(Visible(Broken(1)));
  EXPECT_TRUE(NothingInFront());
  EXPECT_TRUE(InSession());
  module.Always(ModuleFault::None());
  RunThroughADecode();
  EXPECT_EQ(Message(), "OK");
  EXPECT_EQ(Text(Value(0)), "0.5");
  EXPECT_FALSE(Visible(Failed(0)));
}

TEST_F(NerithValues, AreDecodedFiveTimesASecond) {
  StartWithDigits(0);
  module.Always(ModuleFault::Exception(4));
  State().PollBuffer.at(1) = state::Word(55);
  Run(core::milliseconds(201));
  EXPECT_EQ(Text(Value(0)), "55");
}

}  // namespace
}  // namespace tarvo::test
