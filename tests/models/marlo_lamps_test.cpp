// The three rows of lamps on the Marlo page that a click changes: diagnostics, default outputs, opened mask.

#include "support/marlo_fixture.h"

namespace tarvo::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr char kOnlyToZero[] = "Diagnostic Led can only be set to 0";

constexpr MarloRow kDamageRow = kMarloRows[0];
constexpr MarloRow kDefaultRow = kMarloRows[1];
constexpr MarloRow kMaskRow = kMarloRows[5];

std::string NameOf(const testing::TestParamInfo<MarloRow>& given) {
  return given.param.lamps;
}

class MarloLamps : public MarloFixture {
 protected:
  void SetAndShow(int number, int word) {
    Set(number, word);
    Reenter();
    module.ForgetLog();
    ports.ForgetAttempts();
    line.ForgetCounts();
  }
  static std::string Reads(int number) { return "reads " + std::to_string(number); }
};

/// What all three have in common.
class MarloLampRow : public MarloLamps, public testing::WithParamInterface<MarloRow> {
 protected:
  std::string Lamp(int i) const { return Member(GetParam().lamps, i); }
  int Source() const { return GetParam().source; }
};

INSTANTIATE_TEST_SUITE_P(Rows, MarloLampRow, testing::Values(kDamageRow, kDefaultRow, kMaskRow), NameOf);

TEST_P(MarloLampRow, ClearsEachBitThatIsSet) {
  SetAndShow(Source(), 0x03FF);
  int word = 0x03FF;
  for (int i = 0; i < kCount; ++i) {
    Click(Lamp(i));
    word &= ~(1 << i);
    EXPECT_THAT(module.TakeLog(), ElementsAre(Reads(Source()), Writing(Source(), word)));
    EXPECT_EQ(RedLamps(GetParam().lamps), word);
  }
}

TEST_P(MarloLampRow, OpensThePortForItselfAndClosesIt) {
  Click(Lamp(0));
  EXPECT_EQ(line.Opens(), 1);
  EXPECT_EQ(line.Closes(), 1);
  ExpectOffline();
}

TEST_P(MarloLampRow, TakesTheBitFromTheModuleAndNotFromTheLamp) {
  SetAndShow(Source(), 0);
  Set(Source(), 0x03FF);
  Click(Lamp(4));
  EXPECT_THAT(module.TakeLog(), ElementsAre(Reads(Source()), Writing(Source(), 0x03EF)));
  // The other lamps wait for the next reading.
  EXPECT_EQ(RedLamps(GetParam().lamps), 0);
}

TEST_P(MarloLampRow, UsesTheLinkParametersOfThisPage) {
  StartSession();
  Click("buttStopMarlo");
  std::pair<int, int> parameters;
  module.BeforeRead = [&](int /*first*/, int /*count*/) { parameters = {Modcom().LinkParamA, Modcom().LinkParamB}; };
  Click(Lamp(0));
  EXPECT_EQ(parameters, std::pair(6, 6));
}

TEST_P(MarloLampRow, GoesToThePcsLine) {
  MemoryLine otherLine(scheduler);
  MemoryModule other(scheduler, otherLine, 77);
  other.Line = {19200, bus::Parity::kEven};
  other[Source()] = 0x0007;
  ports.Connect(3, otherLine);
  State().PCPort = 3;
  State().PCSettings = "19200,e,8,1";
  State().ModuleAddress = 77;
  Click(Lamp(1));
  EXPECT_EQ(other[Source()], 0x0005);
  EXPECT_THAT(module.TakeLog(), IsEmpty());
}

TEST_P(MarloLampRow, WritesAWordBelowMinusOneAsItIs) {
  for (const int word : {0x8000, 0x83FF, 0xFFFE}) {
    SetAndShow(Source(), word);
    const int red = RedLamps(GetParam().lamps);
    Click(Lamp(1));
    EXPECT_THAT(module.TakeLog(), ElementsAre(Reads(Source()), Writing(Source(), word)));
    EXPECT_EQ(RedLamps(GetParam().lamps), red) << word;
    ExpectOffline();
  }
}

TEST_P(MarloLampRow, TellsOfAWriteThatFails) {
  SetAndShow(Source(), 0x03FF);
  module.Next(ModuleFault::None());
  module.Next(ModuleFault::Exception(4));
  Click(Lamp(0));
  const std::string unable = "unable to write " + std::to_string(Source());
  EXPECT_EQ(Panel1(), Source() == kDamage ? kOnlyToZero : unable);
  EXPECT_TRUE(NothingInFront());
  ExpectOffline();
}

TEST_P(MarloLampRow, OnlyBeepsInASession) {
  SetAndShow(Source(), 0x0155);
  StartSession();
  for (int i = 0; i < kCount; ++i) {
    const int before = Beeps();
    Click(Lamp(i));
    EXPECT_EQ(Beeps(), before + 1);
  }
  Run(std::chrono::seconds(1));
  EXPECT_THAT(Exchanges(), IsEmpty());
  EXPECT_EQ(RedLamps(GetParam().lamps), 0x0155);
  EXPECT_EQ(Panel1(), "");
  EXPECT_TRUE(TimersRun());
  EXPECT_TRUE(NothingInFront());
}

TEST_P(MarloLampRow, DoesNotBeepWithoutASession) {
  Click(Lamp(0));
  EXPECT_EQ(Beeps(), 0);
}

// Diagnostics: a click clears, and never sets.

TEST_F(MarloLamps, OfDiagnosticsWriteAClearBitBackAsItIs) {
  SetAndShow(kDamage, 0x0201);
  for (int i = 1; i < 9; ++i) {
    Click(Member("shDamage", i));
    EXPECT_THAT(module.TakeLog(), ElementsAre("reads 40004", "writes 40004 = 0x0201"));
    EXPECT_EQ(RedLamps("shDamage"), 0x0201);
  }
}

TEST_F(MarloLamps, OfDiagnosticsTellThatTheyAreOnlyCleared) {
  SetAndShow(kDamage, 0x0001);
  for (int click = 0; click < 2; ++click) {  // set, then clear
    Click("MDIForm1.LabHome");
    OpenPage();
    EXPECT_EQ(Panel1(), "");
    Click("shDamage(0)");
    EXPECT_EQ(Panel1(), kOnlyToZero);
    EXPECT_TRUE(NothingInFront());
  }
}

TEST_F(MarloLamps, OfDiagnosticsKeepTheHighBitsOfTheWord) {
  SetAndShow(kDamage, 0x7C03);
  Click("shDamage(1)");
  EXPECT_THAT(module.TakeLog(), ElementsAre("reads 40004", "writes 40004 = 0x7C01"));
}

TEST_F(MarloLamps, OfDiagnosticsTakeMinusOneAsAnyWord) {
  SetAndShow(kDamage, 0xFFFF);
  Click("shDamage(1)");
  EXPECT_THAT(module.TakeLog(), ElementsAre("reads 40004", "writes 40004 = 0xFFFD"));
  EXPECT_EQ(RedLamps("shDamage"), 0x03FD);
}

TEST_F(MarloLamps, OfDiagnosticsTakeAFailedReadForNoBit) {
  SetAndShow(kDamage, 0x0003);
  module.Next(ModuleFault::Exception(4));
  Click("shDamage(1)");
  EXPECT_THAT(module.TakeLog(), ElementsAre("reads 40004: exception 4", "writes 40004 = 0x0000"));
  EXPECT_EQ(RedLamps("shDamage"), 0x0003);
  EXPECT_EQ(Panel1(), kOnlyToZero);
}

TEST_F(MarloLamps, OfDiagnosticsEndWithoutABoxWhenThePortDoesNotOpen) {
  SetAndShow(kDamage, 0x0003);
  ports.SetFault(1, core::kPermissionDenied);
  Click("shDamage(1)");
  EXPECT_TRUE(NothingInFront());
  ExpectOffline();
}

// Default outputs and opened mask: a click toggles.

class MarloToggledRow : public MarloLampRow {};

INSTANTIATE_TEST_SUITE_P(Rows, MarloToggledRow, testing::Values(kDefaultRow, kMaskRow), NameOf);

TEST_P(MarloToggledRow, SetsEachBitThatIsClear) {
  SetAndShow(Source(), 0);
  int word = 0;
  for (int i = 0; i < kCount; ++i) {
    Click(Lamp(i));
    word |= 1 << i;
    EXPECT_THAT(module.TakeLog(), ElementsAre(Reads(Source()), Writing(Source(), word)));
    EXPECT_EQ(RedLamps(GetParam().lamps), word);
  }
}

TEST_P(MarloToggledRow, TakesAFailedReadForNoBit) {
  SetAndShow(Source(), 0);
  Set(Source(), 0x03FF);
  module.Next(ModuleFault::Exception(4));
  Click(Lamp(3));
  EXPECT_THAT(module.TakeLog(), ElementsAre(Reads(Source()) + ": exception 4", Writing(Source(), 0x0008)));
  EXPECT_EQ(RedLamps(GetParam().lamps), 0x0008);
}

TEST_P(MarloToggledRow, TellsNothingOfDiagnostics) {
  Click(Lamp(3));
  EXPECT_EQ(Panel1(), "");
}

TEST_P(MarloToggledRow, TellsTheFaultOfAPortThatDoesNotOpen) {
  SetAndShow(Source(), 0x0155);
  ports.SetFault(1, core::kPermissionDenied);
  Click(Lamp(0));
  ASSERT_NE(BoxInFront(), nullptr);
  EXPECT_EQ(BoxInFront()->text, "ERROR Permission denied");
  EXPECT_EQ(BoxInFront()->caption, "Tarvo");
  AnswerOk();
  EXPECT_EQ(RedLamps(GetParam().lamps), 0x0155);
  ExpectOffline();
}

TEST_F(MarloLamps, OfDefaultsKeepTheHighBitsOfTheWord) {
  SetAndShow(kDefaults, 0x7C01);
  Click("shDefault(0)");
  Click("shDefault(9)");
  EXPECT_THAT(module.TakeLog(),
              ElementsAre("reads 40005", "writes 40005 = 0x7C00", "reads 40005", "writes 40005 = 0x7E00"));
}

TEST_F(MarloLamps, OfDefaultsTakeMinusOneAsAnyWord) {
  SetAndShow(kDefaults, 0xFFFF);
  Click("shDefault(9)");
  EXPECT_THAT(module.TakeLog(), ElementsAre("reads 40005", "writes 40005 = 0xFDFF"));
}

TEST_F(MarloLamps, OfTheMaskCutTheWordToTenBits) {
  SetAndShow(kOpenedMask, 0x7C01);
  Click("shOpenedMask(9)");
  EXPECT_THAT(module.TakeLog(), ElementsAre("reads 40015", "writes 40015 = 0x0201"));
  Set(kOpenedMask, 0x7C01);
  Click("shOpenedMask(0)");
  EXPECT_THAT(module.TakeLog(), ElementsAre("reads 40015", "writes 40015 = 0x0000"));
}

TEST_F(MarloLamps, OfTheMaskTakeMinusOneAsAnyWord) {
  SetAndShow(kOpenedMask, 0xFFFF);
  Click("shOpenedMask(9)");
  EXPECT_THAT(module.TakeLog(), ElementsAre("reads 40015", "writes 40015 = 0x01FF"));
  EXPECT_EQ(RedLamps("shOpenedMask"), 0x01FF);
}

// The other rows only show.

TEST_F(MarloLamps, OfWhatTheModuleMeasuresTakeNoClick) {
  for (const char* lamps : {"shOpen", "shShorted", "shHot"}) {
    for (int i = 0; i < kCount; ++i) EXPECT_FALSE(At(Member(lamps, i)).TakesClick()) << lamps << i;
  }
  for (const char* lamps : {"shDamage", "shDefault", "shOpenedMask"}) {
    for (int i = 0; i < kCount; ++i) EXPECT_TRUE(At(Member(lamps, i)).TakesClick()) << lamps << i;
  }
}

}  // namespace
}  // namespace tarvo::test
