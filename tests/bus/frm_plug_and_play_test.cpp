#include "bus/rawlink/frm_plug_and_play.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "core/fault.h"
#include "raw_bench.h"
#include "support/memory_module.h"

namespace tarvo::bus {
namespace {

using core::milliseconds;
using std::chrono::seconds;
using test::ModuleFault;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;

constexpr int kParameters = 20;

/// The page with a module on COM1 whose registers 40001, 40002 ... hold 101, 102 ...
class FrmPlugAndPlayTest : public testing::Test, protected RawBench {
 protected:
  FrmPlugAndPlayTest() {
    for (int i = 0; i < 2 * kParameters; ++i) Module[40001 + i] = static_cast<std::uint16_t>(101 + i);
  }

  /// Lets `count` ticks happen, with what each of them does. The first is due a second after the page was opened.
  void Tick(int count = 1) { Scheduler.Run(count * seconds(1)); }
  /// What a whole walk without trouble shows.
  static std::vector<std::string> WholeWalk() {
    std::vector<std::string> texts;
    for (int i = 0; i < kParameters; ++i) texts.push_back(std::to_string(101 + i));
    return texts;
  }
  void OpenAndTick(int count) {
    Open();
    // In the middle between two ticks.
    Scheduler.Run(milliseconds(500));
    Tick(count);
  }
  std::string Parameter(int index) const { return Page.Parameter[index].Caption(); }

  /// The page's texts before anything is read.
  const std::vector<std::string> AtFirst = Shown();
  test::MemoryModule Module{Scheduler, Line};
};

TEST_F(FrmPlugAndPlayTest, IsHidden) {
  EXPECT_TRUE(Page.Hidden());
  EXPECT_FALSE(Other.Hidden());
}

TEST_F(FrmPlugAndPlayTest, HasItsTwentyParametersAsItsFirstControls) {
  ASSERT_GE(Page.Controls().size(), static_cast<std::size_t>(kParameters));
  for (int i = 0; i < kParameters; ++i) {
    EXPECT_EQ(Page.Controls()[static_cast<std::size_t>(i)], &Page.Parameter[i]) << i;
    EXPECT_EQ(Page.Parameter[i].Name(), "Parameter(" + std::to_string(i) + ")");
  }
}

TEST_F(FrmPlugAndPlayTest, ShowsATextInTheControlOfThatNumber) {
  for (const int number : {0, 19}) {
    Page.ShowParameter(number, "text");
    EXPECT_EQ(Parameter(number), "text") << number;
  }
}

TEST_F(FrmPlugAndPlayTest, HasNoControlBeyondItsLast) {
  for (const int number : {-1, 1000}) {
    EXPECT_THROW(Page.ShowParameter(number, "text"), core::Fault) << number;
  }
  EXPECT_EQ(Shown(), AtFirst);
}

TEST_F(FrmPlugAndPlayTest, DoesNothingBeforeItIsOpened) {
  Tick(5);
  EXPECT_EQ(Line.Opens(), 0);
  EXPECT_THAT(Module.Log(), IsEmpty());
}

TEST_F(FrmPlugAndPlayTest, OpensThePortOfThePcSetupWithItsLine) {
  Ports.Disconnect(1);
  Ports.Connect(3, Line);
  State.PCPort = 3;
  State.PCSettings = "38400,e,8,1";
  Open();
  EXPECT_TRUE(Page.MSComm1.PortOpen());
  EXPECT_TRUE(Line.IsOpen());
  EXPECT_EQ(Line.Line().baud, 38400);
  EXPECT_EQ(Line.Line().parity, Parity::kEven);
}

TEST_F(FrmPlugAndPlayTest, AsksTheModuleOfThePcSetup) {
  State.ModuleAddress = 17;
  Module.Address = 17;
  OpenAndTick(1);
  EXPECT_THAT(Module.Log(), ElementsAre("reads 40001"));
  EXPECT_EQ(Page.Link.SlaveByte, 17);
}

TEST_F(FrmPlugAndPlayTest, TakesTheSetUpAnewEachTimeItIsOpened) {
  OpenAndTick(1);
  Show(&Other);
  State.ModuleAddress = 17;
  Module.Address = 17;
  Module.ForgetLog();
  OpenAndTick(1);
  EXPECT_THAT(Module.Log(), SizeIs(1));
}

TEST_F(FrmPlugAndPlayTest, IsOnNoRowOfThePageTable) {
  State.NrFinestra = 5;
  Open();
  EXPECT_EQ(State.NrFinestra, -1);
}

TEST_F(FrmPlugAndPlayTest, SetsTheExchangeUp) {
  Open();
  EXPECT_EQ(Page.Link.WordCount, 1);
  EXPECT_EQ(Page.Link.ParameterCount, 19);
  EXPECT_TRUE(Page.TimerRefresh.Enabled());
  EXPECT_EQ(Page.TimerRefresh.Interval(), 1000);
}

TEST_F(FrmPlugAndPlayTest, AsksNothingBeforeItsFirstTick) {
  Open();
  Scheduler.Run(milliseconds(999));
  EXPECT_THAT(Sent(), IsEmpty());
  Scheduler.Run(milliseconds(1));
  EXPECT_THAT(Sent(), ElementsAre(RawFrame{0x01, 0x03, 0x00, 0x00, 0x00, 0x01, 0x84, 0x0A}));
}

TEST_F(FrmPlugAndPlayTest, ReadsTheNextRegisterAtEachTick) {
  OpenAndTick(3);
  EXPECT_THAT(Module.Log(), ElementsAre("reads 40001", "reads 40002", "reads 40003"));
}

TEST_F(FrmPlugAndPlayTest, TicksOnceASecond) {
  Open();
  Tick(60);
  ASSERT_THAT(Line.Writes(), SizeIs(60));
  for (std::size_t i = 1; i < 60; ++i) {
    EXPECT_EQ(Line.Writes()[i].at - Line.Writes()[i - 1].at, seconds(1)) << i;
  }
}

TEST_F(FrmPlugAndPlayTest, WaitsHardFor200MillisecondsAtEachTick) {
  Open();
  const core::TimePoint start = Scheduler.Now();
  core::TimePoint ran{};
  core::Call call(Scheduler, [&] { ran = Scheduler.Now(); });
  call.After(milliseconds(1001));
  Tick(2);
  EXPECT_EQ(ran - start, milliseconds(1200));
}

TEST_F(FrmPlugAndPlayTest, ShowsEachValueInTheControlOfItsRegister) {
  OpenAndTick(2);
  std::vector<std::string> expected = AtFirst;
  expected[0] = "101";
  expected[1] = "102";
  EXPECT_EQ(Shown(), expected);
}

TEST_F(FrmPlugAndPlayTest, ShowsAllTwentyAfterAWholeWalk) {
  OpenAndTick(kParameters);
  EXPECT_EQ(Shown(), WholeWalk());
}

TEST_F(FrmPlugAndPlayTest, BeginsAgainAtTheEndOfItsWalk) {
  OpenAndTick(kParameters - 1);
  Module.ForgetLog();
  Module[40001] = 0xFFFF;
  Tick(3);
  EXPECT_THAT(Module.Log(), ElementsAre("reads 40020", "reads 40001", "reads 40002"));
  EXPECT_EQ(Parameter(0), "65535");
}

TEST_F(FrmPlugAndPlayTest, WalksUpToItsParameterCount) {
  Open();
  Page.Link.ParameterCount = 2;
  Tick(5);
  EXPECT_THAT(Module.Log(), ElementsAre("reads 40001", "reads 40002", "reads 40003", "reads 40001", "reads 40002"));
}

TEST_F(FrmPlugAndPlayTest, StaysAtTheFirstRegisterWithNothingToWalk) {
  Open();
  Page.Link.ParameterCount = 0;
  Tick(3);
  EXPECT_THAT(Module.Log(), ElementsAre("reads 40001", "reads 40001", "reads 40001"));
}

struct Trouble {
  const char* name;
  ModuleFault fault;
};

class Troubles : public FrmPlugAndPlayTest, public testing::WithParamInterface<Trouble> {};

TEST_P(Troubles, LeaveThePageAsItWasAndAreNotTold) {
  Module.Always(GetParam().fault);
  OpenAndTick(3);
  EXPECT_EQ(Module.Requests(), 3);
  EXPECT_EQ(Shown(), AtFirst);
  EXPECT_EQ(Screen.Front(), nullptr);
}

TEST_P(Troubles, LeaveAShownValueAsItWas) {
  OpenAndTick(kParameters);
  const std::vector<std::string> before = Shown();
  Module[40001] = 7777;
  Module.Always(GetParam().fault);
  Tick(2);
  EXPECT_EQ(Shown(), before);
}

TEST_P(Troubles, WithOneRegisterDoNotHoldUpTheWalk) {
  Module.Next(GetParam().fault);
  OpenAndTick(2);
  std::vector<std::string> expected = AtFirst;
  expected[1] = "102";
  EXPECT_EQ(Shown(), expected);
  EXPECT_THAT(Module.Log(), ElementsAre(StartsWith("reads 40001: "), "reads 40002"));
}

INSTANTIATE_TEST_SUITE_P(FrmPlugAndPlay, Troubles,
                         testing::Values(Trouble{"Silence", ModuleFault::Silent()},
                                         Trouble{"Deafness", ModuleFault::Unheard()},
                                         Trouble{"AWrongCrc", ModuleFault::WrongCrc()},
                                         Trouble{"AnException", ModuleFault::Exception(2)},
                                         Trouble{"OneByteOnly", ModuleFault::Torn(1)},
                                         Trouble{"AReplyWithoutItsLastByte", ModuleFault::Torn(6)},
                                         Trouble{"NoiseBeforeTheReply", ModuleFault::Noise({0x55})},
                                         Trouble{"AnswersAfterTheWait", ModuleFault::Late(milliseconds(300))}),
                         [](const testing::TestParamInfo<Trouble>& row) { return row.param.name; });

TEST_F(FrmPlugAndPlayTest, TakesNeitherAnswerWhenALateOneComesWithTheNext) {
  Module.Next(ModuleFault::Late(milliseconds(1000)));
  OpenAndTick(2);
  EXPECT_EQ(Shown(), AtFirst);
  Tick();
  EXPECT_EQ(Parameter(2), "103");
}

TEST_F(FrmPlugAndPlayTest, TellsAnAnswerOfMoreThan256BytesOnce) {
  Answer(RawFrame(257, 0x55));
  OpenAndTick(1);
  EXPECT_EQ(BoxText(), "Subscript out of range");
  EXPECT_EQ(Screen.ModalDepth(), 1U);
  EXPECT_EQ(Shown(), AtFirst);
}

TEST_F(FrmPlugAndPlayTest, SaysNothingOfAnAnswerOf256Bytes) {
  Answer(RawFrame(256, 0x55));
  OpenAndTick(1);
  EXPECT_EQ(Screen.Front(), nullptr);
  EXPECT_EQ(Shown(), AtFirst);
}

TEST_F(FrmPlugAndPlayTest, GoesOnAfterAnAnswerThatWasTooLong) {
  Open();
  const auto answerOfTheModule = Line.OnWrite;
  Answer(RawFrame(300, 0x55));
  Tick();
  Line.OnWrite = answerOfTheModule;
  ASSERT_TRUE(Screen.Answer("OK").taken);
  Tick(kParameters);
  EXPECT_EQ(Screen.Front(), nullptr);
  EXPECT_EQ(Shown(), WholeWalk());
}

TEST_F(FrmPlugAndPlayTest, SaysNothingWhenTheDeviceGoes) {
  OpenAndTick(2);
  const std::vector<std::string> before = Shown();
  Line.Lose();
  Line.ForgetWrites();
  Tick(3);
  EXPECT_EQ(Shown(), before);
  EXPECT_EQ(Screen.Front(), nullptr);
  EXPECT_THAT(Line.Writes(), IsEmpty());
}

TEST_F(FrmPlugAndPlayTest, SaysNothingWhenThePortIsClosed) {
  OpenAndTick(2);
  const std::vector<std::string> before = Shown();
  Line.ForgetWrites();
  ASSERT_TRUE(Page.MSComm1.SetPortOpen(false).Ok());
  Tick(3);
  EXPECT_EQ(Shown(), before);
  EXPECT_EQ(Screen.Front(), nullptr);
  EXPECT_THAT(Line.Writes(), IsEmpty());
}

TEST_F(FrmPlugAndPlayTest, TellsAPortThatDoesNotOpenAndDoesNotTick) {
  for (const char* description : {core::kDeviceNotFound, core::kPermissionDenied, core::kPortAlreadyOpen}) {
    Ports.SetFault(1, description);
    Open();
    EXPECT_THAT(BoxText(), HasSubstr(description));
    EXPECT_EQ(Screen.ModalDepth(), 1U);
    EXPECT_FALSE(Page.TimerRefresh.Enabled()) << description;
    EXPECT_FALSE(Page.MSComm1.PortOpen()) << description;
    EXPECT_TRUE(Screen.Answer("OK").taken) << description;
    Scheduler.RunReady();
    EXPECT_EQ(Screen.Page(), &Page);
    Tick(3);
    EXPECT_FALSE(Page.TimerRefresh.Enabled()) << description;
    EXPECT_EQ(Screen.Front(), nullptr) << description;
    Show(&Other);
  }
  EXPECT_THAT(Module.Log(), IsEmpty());
}

TEST_F(FrmPlugAndPlayTest, OpensAPortThatIsThereAgain) {
  Ports.SetFault(1, core::kDeviceNotFound);
  Open();
  ASSERT_TRUE(Screen.Answer("OK").taken);
  Scheduler.RunReady();
  Show(&Other);
  Ports.SetFault(1, std::string());
  OpenAndTick(1);
  EXPECT_EQ(Screen.Front(), nullptr);
  EXPECT_EQ(Parameter(0), "101");
}

TEST_F(FrmPlugAndPlayTest, ClosesItsPortAndStopsWhenItIsLeft) {
  OpenAndTick(2);
  Show(&Other);
  EXPECT_FALSE(Page.MSComm1.PortOpen());
  EXPECT_FALSE(Line.IsOpen());
  EXPECT_FALSE(Page.TimerRefresh.Enabled());
  Line.ForgetWrites();
  Tick(5);
  EXPECT_THAT(Line.Writes(), IsEmpty());
}

TEST_F(FrmPlugAndPlayTest, ClosesItsPortAndStopsWhenItIsClosed) {
  OpenAndTick(2);
  ASSERT_TRUE(Screen.ClosePage(Page).taken);
  Scheduler.RunReady();
  EXPECT_EQ(Screen.Page(), nullptr);
  EXPECT_FALSE(Line.IsOpen());
  EXPECT_FALSE(Page.TimerRefresh.Enabled());
}

TEST_F(FrmPlugAndPlayTest, IsLeftWhileABoxOfItsPortIsInFrontWithoutHoldingThePort) {
  Ports.SetFault(1, core::kDeviceNotFound);
  Open();
  Show(&Other);
  Ports.SetFault(1, std::string());
  ASSERT_TRUE(Screen.Answer("OK").taken);
  Tick(3);
  EXPECT_FALSE(Line.IsOpen());
  EXPECT_FALSE(Page.TimerRefresh.Enabled());
  EXPECT_THAT(Module.Log(), IsEmpty());
}

}  // namespace
}  // namespace tarvo::bus
