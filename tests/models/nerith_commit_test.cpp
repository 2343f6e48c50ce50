// Write EEprom of the page of Nerith and Pellor.

#include "support/nerith_fixture.h"

namespace tarvo::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::ElementsAreArray;

class NerithCommitting : public NerithModule {
 protected:
  /// Reads the module anew, as one of that kind and release.
  void Become(const NerithKind& kind, int firmware) {
    SetKind(kind, firmware);
    VisitAnew();
    module.ForgetLog();
  }
  /// A commit to its end; gives what went over the line.
  std::vector<std::string> Commit() {
    Exchanges();
    Click("WEEPGaven");
    EXPECT_TRUE(NothingInFront());
    return Exchanges();
  }
  /// What a commit brings over the line when only the first words of the channels and these differ from 0.
  std::vector<std::string> Writes(const std::vector<int>& firsts, int system = kCelsius, int serial = 0x0401) const {
    std::vector<std::string> expected = {"reads 40001", Writing(kSystem, system)};
    for (std::size_t i = 0; i < firsts.size(); ++i) {
      expected.push_back(Writing(First(static_cast<int>(i)), firsts[i]));
      expected.push_back(Writing(Second(static_cast<int>(i)), 0));
    }
    expected.push_back(Writing(kSerial, serial));
    return expected;
  }
};

class NerithCommit : public NerithCommitting {
 protected:
  static constexpr core::Duration kPause = core::milliseconds(200);

  NerithCommit() {
    OpenPage();
    module.ForgetLog();
  }

  /// A different value in each setting of the page, by the user's hand.
  void EditAll() {
    Choose("cbUnits", 2);
    Choose("cbDecimalNumbers", 2);
    Click("chkDINCoefficients");
    for (int i = 0; i < kMostChannels; ++i) {
      Choose(Sensor(i), i % 2);
      Choose(Dump(i), 7 - i);
      Choose(Range(i), i % 3);
      if (i >= 2) Click(Conv(i));
      if (i == 1 || i == 2) Click(Burned(i));
    }
    Click("checkParity");
    Click("OptionOdd");
    Choose("cbBaudRate", 5);
    EditAddress("254");
  }
  /// What a commit of those brings over the line.
  static std::vector<std::string> EditedWrites() {
    return {"reads 40001",           "writes 40040 = 0x0032", "writes 40062 = 0x0007", "writes 40063 = 0x0000",
            "writes 40078 = 0x0306", "writes 40079 = 0x5000", "writes 40094 = 0x0405", "writes 40095 = 0x6000",
            "writes 40110 = 0x0704", "writes 40111 = 0x0000", "writes 40035 = 0x0EFE"};
  }
};

// The registers in their order.

TEST_F(NerithCommit, WritesAllSettingsInTheirOrderOnceTheModelIsKnown) {
  EditAll();
  EXPECT_THAT(Commit(), ElementsAreArray(EditedWrites()));
  ExpectOffline();
}

TEST_F(NerithCommit, WritesTheSameInASession) {
  EditAll();
  Enter();
  StartSession();
  EXPECT_THAT(Commit(), ElementsAreArray(EditedWrites()));
  ExpectSessionGoesOn();
}

TEST_F(NerithCommit, OfAnUntouchedPageWritesWhatWasRead) {
  Set(kSerial, 0x1911);
  Set(kSystem, 0x2B);
  SetChannel(0, 0x0003, 0x1000);
  SetChannel(1, 0x0307, 0x6000);
  SetChannel(2, 0x0401, 0x4000);
  SetChannel(3, 0x0702, 0x2000);
  Become(kNerith, kNew);
  EXPECT_THAT(Commit(), ElementsAre("reads 40001", "writes 40040 = 0x002B", "writes 40062 = 0x0003",
                                    "writes 40063 = 0x1000", "writes 40078 = 0x0307", "writes 40079 = 0x6000",
                                    "writes 40094 = 0x0401", "writes 40095 = 0x4000", "writes 40110 = 0x0702",
                                    "writes 40111 = 0x2000", "writes 40035 = 0x1911"));
}

TEST_F(NerithCommit, WritesThreeChannelsOfAThreeChannelModule) {
  Become(kPellor, kNew);
  EXPECT_THAT(Commit(), ElementsAreArray(Writes({0, 0, 0})));
}

TEST_F(NerithCommit, DropsBitsThatNoControlHas) {
  Set(kSerial, 0xE401);
  Set(kSystem, 0xFFC1);
  for (int i = 0; i < kMostChannels; ++i) SetChannel(i, 0xF0F8, 0x8FFF);
  Become(kNerith, kNew);
  EXPECT_THAT(Commit(), ElementsAreArray(Writes({0, 0, 0, 0})));
}

// Each setting.

TEST_F(NerithCommit, WritesSensorAndViewInTheNewLayout) {
  struct Row {
    int sensor;
    bool temperature;
    int word;
  };
  for (const Row& row : {Row{0, true, 0x0000}, Row{1, true, 0x0300}, Row{0, false, 0x0400}, Row{1, false, 0x0700}}) {
    for (int channel = 0; channel < kMostChannels; ++channel) {
      Choose(Sensor(channel), row.sensor);
      if (Checked(Conv(channel)) != row.temperature) Click(Conv(channel));
      EXPECT_THAT(Commit(), Contains(Writing(First(channel), row.word)));
    }
  }
}

class NerithOldCommit : public NerithCommitting {
 protected:
  NerithOldCommit() {
    SetKind(kNerith, kOld);
    OpenPage();
    module.ForgetLog();
  }
};

TEST_F(NerithOldCommit, WritesTheSensorsPlaceAndNoView) {
  for (int sensor = 3; sensor >= 0; --sensor) {
    for (int channel = 0; channel < kMostChannels; ++channel) Choose(Sensor(channel), sensor);
    const int word = sensor << 8;
    EXPECT_THAT(Commit(), ElementsAreArray(Writes({word, word, word, word})));
  }
}

TEST_F(NerithOldCommit, WritesPlatinumForACodeThatThereWasNot) {
  Set(First(1), 0x0603);
  Become(kNerith, kOld);
  EXPECT_THAT(Commit(), ElementsAreArray(Writes({0, 3, 0, 0})));
}

TEST_F(NerithCommit, WritesEachDumpFactor) {
  for (int factor = 7; factor >= 0; --factor) {
    Choose(Dump(1), factor);
    EXPECT_THAT(Commit(), ElementsAreArray(Writes({0, factor, 0, 0})));
  }
}

TEST_F(NerithCommit, WritesRangeAndBurnOut) {
  for (const bool burned : {false, true}) {
    if (burned) Click(Burned(2));
    for (int range = 0; range < 3; ++range) {
      Choose(Range(2), range);
      EXPECT_THAT(Commit(), Contains(Writing(Second(2), range << 12 | (burned ? kBurned : 0))));
    }
  }
}

TEST_F(NerithCommit, WritesUnitsDigitsAndCoefficients) {
  for (const bool din : {false, true}) {
    if (din) Click("chkDINCoefficients");
    for (int units = 0; units < 4; ++units) {
      Choose("cbUnits", units);
      for (int digits = 0; digits < 3; ++digits) {
        Choose("cbDecimalNumbers", digits);
        EXPECT_THAT(Commit(), Contains(Writing(kSystem, units | digits << 3 | (din ? 0x20 : 0))));
      }
    }
  }
}

TEST_F(NerithCommit, WritesTheCodeOfEachRate) {
  const int codes[] = {6, 7, 0, 1, 2, 3, 4};
  int position = 0;
  for (const int code : codes) {
    Choose("cbBaudRate", position++);
    EXPECT_THAT(Commit(), Contains(Writing(kSerial, code << 10 | 1)));
  }
}

TEST_F(NerithCommit, WritesTheParity) {
  Click("checkParity");
  Click("OptionEven");
  EXPECT_THAT(Commit(), Contains(Writing(kSerial, 0x0501)));
  Click("OptionOdd");
  EXPECT_THAT(Commit(), Contains(Writing(kSerial, 0x0601)));
  Click("checkParity");
  EXPECT_THAT(Commit(), Contains(Writing(kSerial, 0x0401)));
}

TEST_F(NerithCommit, WritesBothBoundsOfTheAddress) {
  for (const char* address : {"1", "255"}) {
    EditAddress(address);
    EXPECT_THAT(Commit(), Contains(Writing(kSerial, 0x0400 | std::stoi(address))));
  }
}

TEST_F(NerithCommit, ScalesTheValuesByTheNewDigitsFromThenOn) {
  StartSession();
  Set(kValue1, 1234);
  RunThroughADecode();
  ASSERT_EQ(Text(Value(0)), "1234");
  for (const auto& [digits, shown] : {std::pair(1, "123.4"), std::pair(2, "12.34"), std::pair(0, "1234")}) {
    Choose("cbDecimalNumbers", digits);
    Commit();
    RunThroughADecode();
    EXPECT_EQ(Text(Value(0)), shown);
  }
}

// Its course.

TEST_F(NerithCommit, PausesBeforeEachWrite) {
  line.ForgetWrites();
  const core::TimePoint before = scheduler.Now();
  Commit();
  const core::Duration taken = scheduler.Now() - before;
  ASSERT_EQ(line.Writes().size(), std::size_t{11});
  for (std::size_t i = 1; i < line.Writes().size(); ++i) {
    const core::Duration gap = line.Writes()[i].at - line.Writes()[i - 1].at;
    EXPECT_GE(gap, kPause) << i;
    EXPECT_LT(gap, kPause + core::milliseconds(60)) << i;
  }
  EXPECT_LT(taken, 10 * kPause + core::milliseconds(600)) << "nothing else takes its time";
}

TEST_F(NerithCommit, HoldsButtonsAndUserWithoutASession) {
  const auto run = ClickAndGoOn("WEEPGaven");
  ASSERT_TRUE(RunUntil([this] { return !module.Log().empty() && module.Log().back().starts_with("writes 40062"); }));
  EXPECT_TRUE(Hourglass());
  EXPECT_FALSE(Enabled("WEEPGaven"));
  EXPECT_FALSE(Enabled("ResetGaven"));
  EXPECT_NE(RefusalOf("MDIForm1.LabHome"), "");
  ASSERT_TRUE(RunUntil([&] { return run->Done(); }));
  ExpectOffline();
}

TEST_F(NerithCommit, HoldsButtonsAndTimersInASession) {
  StartSession();
  const auto run = ClickAndGoOn("WEEPGaven");
  const auto lastIs = [this](const char* beginning) {
    return !module.Log().empty() && module.Log().back().starts_with(beginning);
  };
  ASSERT_TRUE(RunUntil([&] { return lastIs("writes 40040"); }));
  while (!lastIs("writes 40035")) {
    ASSERT_FALSE(run->Done());
    ASSERT_TRUE(TimersRest());
    ASSERT_TRUE(Hourglass());
    ASSERT_FALSE(Enabled("WEEPGaven"));
    ASSERT_FALSE(Enabled("ResetGaven"));
    Run(core::milliseconds(1));
  }
  ASSERT_TRUE(RunUntil([&] { return run->Done(); }));
  EXPECT_TRUE(Enabled("WEEPGaven"));
  EXPECT_TRUE(Enabled("ResetGaven"));
  EXPECT_FALSE(Enabled("StartNerith"));
  ExpectSessionGoesOn();
}

TEST_F(NerithCommit, EndsWithoutAMessage) {
  Click("WEEPGaven");
  EXPECT_TRUE(NothingInFront());
  ExpectOffline();
}

TEST_F(NerithCommit, GoesToTheAddressOnPcSetupWithoutASession) {
  Click("MDIForm1.LabPCSetup");
  Click("PCAddress");
  AnswerChangeValue("7");
  module.Address = 7;
  Enter();
  EXPECT_THAT(Commit(), Contains("reads 40001"));
  ExpectOffline();
}

TEST_F(NerithCommit, IsRefusedByAModuleOfAnotherModel) {
  for (const int identity : {0x0A12, 0x0712, 0x1612, 0x8812, 0x1208}) {
    SCOPED_TRACE(identity);
    Set(kIdentity, identity);
    module.ForgetLog();
    Click("WEEPGaven");
    EXPECT_THAT(BoxInFront(), IsBox(kNotANerith, view::Icon::kCritical));
    AnswerOk();
    EXPECT_THAT(module.TakeLog(), ElementsAre("reads 40001"));
    ExpectOffline();
  }
  SetKind(kNerith, kNew);
  EXPECT_THAT(Commit(), ElementsAreArray(Writes({0, 0, 0, 0})));
}

TEST_F(NerithCommit, IsRefusedByASilentModule) {
  module.Always(ModuleFault::Unheard());
  Click("WEEPGaven");
  EXPECT_THAT(BoxInFront(), IsBox(kNotANerith, view::Icon::kCritical));
  AnswerOk();
  module.Always(ModuleFault::None());
  ExpectOffline();
}

TEST_F(NerithCommit, IsRefusedInASessionTooAndLetsItGoOn) {
  StartSession();
  Set(kIdentity, 0x0712);
  Click("WEEPGaven");
  EXPECT_THAT(BoxInFront(), IsBox(kNotANerith, view::Icon::kCritical));
  AnswerOk();
  EXPECT_THAT(Exchanges(), ElementsAre("reads 40001"));
  EXPECT_TRUE(Enabled("WEEPGaven"));
  EXPECT_TRUE(Enabled("ResetGaven"));
  ExpectSessionGoesOn();
}

TEST_F(NerithCommit, WritesTheOthersWhenAWriteFails) {
  for (std::size_t failing = 1; failing <= 10; ++failing) {
    SCOPED_TRACE(failing);
    std::vector<std::string> expected = Writes({0, 0, 0, 0});
    expected.at(failing) += ": exception 4";
    for (std::size_t i = 0; i < failing; ++i) module.Next(ModuleFault::None());
    module.Next(ModuleFault::Exception(4));
    EXPECT_THAT(Commit(), ElementsAreArray(expected));
    ExpectOffline();
  }
}

}  // namespace
}  // namespace tarvo::test
