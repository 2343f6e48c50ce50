// Write EEPROM of the Quenby page.

#include "support/quenby_fixture.h"

namespace tarvo::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::ElementsAreArray;

constexpr char kUpdated[] = "EEProm updated! Now you have to restart the module ";

class QuenbyCommit : public QuenbyFixture {
 protected:
  /// A different value in each setting of the page, by the user's hand and without a session.
  void EditAll() {
    Click("checkParity");
    Click("OptionOdd");
    Click("CheckDefaultOutputs");
    Choose("cbStartScale(1)", 1);
    Choose("cbFullScale(0)", 1);
    Edit("labAddress", "254");
    Choose("cbBaud", 5);
    Edit("labTimeout", "65535");
    EnterDefault(0, "1");
    EnterDefault(1, "5000");
    EnterDefault(2, "10000");
  }
  /// What a commit of those writes.
  static std::vector<std::string> EditedImages() {
    return {"writes 40068 = 0x0A98", "writes 40066 = 0x03FE", "writes 40067 = 0xFFFF",
            "writes 40069 = 0x0001", "writes 40070 = 0x1388", "writes 40071 = 0x2710"};
  }
  /// A commit up to its box, and the answer to it; gives what went over the line.
  std::vector<std::string> Commit() {
    Exchanges();
    Click("buttWriteEEPROM");
    EXPECT_THAT(BoxInFront(), IsBox(kUpdated, view::Icon::kExclamation));
    std::vector<std::string> exchanges = Exchanges();
    AnswerOk();
    return exchanges;
  }
};

TEST_F(QuenbyCommit, WritesAllImagesInTheirOrderOnceTheModelIsKnown) {
  EditAll();
  std::vector<std::string> expected = EditedImages();
  expected.insert(expected.begin(), "reads 40001");
  EXPECT_THAT(Commit(), ElementsAreArray(expected));
  ExpectOffline();
}

TEST_F(QuenbyCommit, WritesWhatTheModuleHasAndTheDefaultsOfThePageInASession) {
  Set(kFlags, 0x0A98);
  Set(kCommunication, 0x03FE);
  Set(kSafeTime, 65535);
  SetOutputs(7, 77, 777);
  StartSession();
  EnterDefault(0, "1");
  EnterDefault(1, "5000");
  EnterDefault(2, "10000");
  EXPECT_THAT(Commit(), ElementsAreArray(EditedImages()));
  ExpectSessionGoesOn();
}

TEST_F(QuenbyCommit, OfAnUntouchedPageWritesWhatWasReadAndDefaultsOfZero) {
  SetOutputs(7, 77, 777);
  VisitAnew();
  module.ForgetLog();
  EXPECT_THAT(Commit(),
              ElementsAre("reads 40001", "writes 40068 = 0x0000", "writes 40066 = 0x0101", "writes 40067 = 0x0032",
                          "writes 40069 = 0x0000", "writes 40070 = 0x0000", "writes 40071 = 0x0000"));
}

TEST_F(QuenbyCommit, LeavesTheWorkingRegistersAlone) {
  SetOutputs(7, 77, 777);
  StartSession();
  Edit("labTimeout", "9");
  EnterDefault(0, "1");
  Commit();
  EXPECT_EQ(module[kSafeTime], 50);
  EXPECT_EQ(module[kOutput1], 7);
  RunThroughADecode();
  EXPECT_THAT(OutputTexts(), ElementsAre("7", "77", "777"));
}

TEST_F(QuenbyCommit, BuildsTheFlagsFromTheControlsAlone) {
  Set(kFlags, 0xFFFF);
  StartSession();
  EXPECT_THAT(Commit(), Contains(Writing(kStoredFlags, kAllFlags)));
  EXPECT_EQ(module[kFlags], 0xFFFF);
}

TEST_F(QuenbyCommit, KeepsTheKindOfParityWhileParityIsOff) {
  Set(kFlags, 0x0010);
  StartSession();
  ASSERT_FALSE(Enabled("OptionOdd"));
  EXPECT_THAT(Commit(), Contains(Writing(kStoredFlags, 0x0010)));
}

TEST_F(QuenbyCommit, WritesTheCodeOfEachRate) {
  const int codes[] = {6, 7, 0, 1, 2, 3, 4};
  int position = 0;
  for (const int code : codes) {
    Choose("cbBaud", position++);
    EXPECT_THAT(Commit(), Contains(Writing(kStoredCommunication, code << 8 | 1)));
  }
}

TEST_F(QuenbyCommit, WritesBothBoundsOfAddressAndSafeTime) {
  const std::pair<const char*, int> rows[] = {{"1", 0x0101}, {"255", 0x01FF}};
  for (const auto& [address, word] : rows) {
    Edit("labAddress", address);
    EXPECT_THAT(Commit(), Contains(Writing(kStoredCommunication, word)));
  }
  for (const int time : {0, 32768, 65535}) {
    Edit("labTimeout", std::to_string(time));
    EXPECT_THAT(Commit(), Contains(Writing(kStoredSafeTime, time)));
  }
}

TEST_F(QuenbyCommit, WritesTheNearestIntegerOfADefault) {
  const std::pair<const char*, int> rows[] = {{"12.4", 12}, {"12.6", 13}, {"12,5", 12}, {"13,5", 14}};
  for (const auto& [typed, sent] : rows) {
    EnterDefault(1, typed);
    EXPECT_THAT(Commit(), Contains(Writing(kDefault1 + 1, sent))) << typed;
  }
}

TEST_F(QuenbyCommit, HoldsTheTimersAndItsButtonInASession) {
  StartSession();
  RunIntoAPoll();
  const auto run = ClickAndGoOn("buttWriteEEPROM");
  while (NothingInFront()) {
    ASSERT_FALSE(run->Done());
    ASSERT_TRUE(TimersRest());
    ASSERT_FALSE(Enabled("buttWriteEEPROM"));
    Run(core::milliseconds(1));
  }
  EXPECT_FALSE(Enabled("buttWriteEEPROM"));
  EXPECT_TRUE(TimersRest());
  AnswerOk();
  EXPECT_TRUE(Enabled("buttWriteEEPROM"));
  EXPECT_TRUE(Enabled("buttReset"));
  EXPECT_FALSE(Enabled("buttStart"));
  ExpectSessionGoesOn();
}

TEST_F(QuenbyCommit, HoldsItsButtonWithoutASession) {
  Click("buttWriteEEPROM");
  ASSERT_NE(BoxInFront(), nullptr);
  EXPECT_FALSE(Enabled("buttWriteEEPROM"));
  AnswerOk();
  ExpectOffline();
}

TEST_F(QuenbyCommit, KeepsTheUserOnThePageWithoutASession) {
  ClickAndGoOn("buttWriteEEPROM");
  ASSERT_TRUE(RunUntil([this] { return Modcom().CommBusy(); }));
  EXPECT_TRUE(Hourglass());
  EXPECT_NE(RefusalOf("MDIForm1.LabHome"), "");
  ASSERT_TRUE(RunUntil([this] { return BoxInFront() != nullptr; }));
  AnswerOk();
  ExpectOffline();
}

TEST_F(QuenbyCommit, GoesToTheAddressOnPcSetupWithoutASession) {
  SetPcAddress("7");
  module.Address = 7;
  EXPECT_THAT(Commit(), Contains("reads 40001"));
  ExpectOffline();
}

TEST_F(QuenbyCommit, TellsTheWriteThatFailsAndWritesTheOthers) {
  for (const bool session : {false, true}) {
    for (std::size_t failing = 0; failing < 6; ++failing) {
      SCOPED_TRACE(failing);
      if (session && !InSession()) StartSession();
      RunUntilTheBusIsFree();
      std::vector<std::string> expected = {"writes 40068 = 0x0000", "writes 40066 = 0x0101", "writes 40067 = 0x0032",
                                           "writes 40069 = 0x0000", "writes 40070 = 0x0000", "writes 40071 = 0x0000"};
      const std::string number = expected.at(failing).substr(7, 5);
      expected.at(failing) += ": exception 4";
      if (!session) expected.insert(expected.begin(), "reads 40001");
      for (std::size_t i = 0; i < failing + (session ? 0 : 1); ++i) module.Next(ModuleFault::None());
      module.Next(ModuleFault::Exception(4));
      EXPECT_THAT(Commit(), ElementsAreArray(expected));
      EXPECT_EQ(Panel1(), "unable to write " + number);
      EXPECT_TRUE(NothingInFront());
    }
  }
  ExpectSessionGoesOn();
}

TEST_F(QuenbyCommit, ReadsNoIdentityInASession) {
  StartSession();
  Set(kIdentity, 0x0D00);
  EXPECT_THAT(Commit(), testing::SizeIs(6));
}

TEST_F(QuenbyCommit, IsRefusedByAModuleOfAnotherModel) {
  Set(kIdentity, 0x0D00);
  Click("buttWriteEEPROM");
  EXPECT_THAT(BoxInFront(), IsBox(kNotAQuenby, view::Icon::kCritical));
  AnswerOk();
  EXPECT_THAT(module.TakeLog(), ElementsAre("reads 40001"));
  ExpectOffline();
}

TEST_F(QuenbyCommit, IsRefusedByASilentModule) {
  module.Always(ModuleFault::Unheard());
  Click("buttWriteEEPROM");
  EXPECT_THAT(BoxInFront(), IsBox(kNotAQuenby, view::Icon::kCritical));
  AnswerOk();
  module.Always(ModuleFault::None());
  ExpectOffline();
}

TEST_F(QuenbyCommit, LeavesAStartToTheUser) {
  Commit();
  StartSession();
  EXPECT_EQ(Text("labFW"), "FW vers. : 3");
}

}  // namespace
}  // namespace tarvo::test
