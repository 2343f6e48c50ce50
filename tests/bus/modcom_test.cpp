#include "bus/modcom/modcom.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "modcom_bench.h"

namespace tarvo::bus {
namespace {

using core::milliseconds;
using state::Word;
using test::ModuleFault;
using testing::ElementsAre;
using testing::IsEmpty;
using Kind = Outcome::Kind;
using namespace state::literals;

/// Every test on an open port.
class OpenModCom : public testing::Test, protected ModComBench {
 protected:
  void SetUp() override { ASSERT_TRUE(Open()); }
};

TEST_F(OpenModCom, ReadsOneRegister) {
  Word data;
  EXPECT_EQ(ResultOf(ReadOne("40009"_reg, &data)).Result(), -1);
  EXPECT_EQ(data, Word(108));
  EXPECT_THAT(Module.TakeLog(), ElementsAre("reads 40009"));
}

TEST_F(OpenModCom, FillsTheBlockFromItsFirstElement) {
  Block.fill(Word(7));
  EXPECT_TRUE(ResultOf(ReadBlock(3)).Good());
  EXPECT_EQ(Block[0], Word(101));
  EXPECT_EQ(Block[2], Word(103));
  EXPECT_EQ(Block[3], Word(7));
  EXPECT_THAT(Module.TakeLog(), ElementsAre("reads 40002 x3"));
}

TEST_F(OpenModCom, WritesOneRegister) {
  EXPECT_EQ(ResultOf(WriteOne("40009"_reg, Word(0x8081))).Result(), -1);
  EXPECT_EQ(Module[40009], 0x8081);
  EXPECT_THAT(Module.TakeLog(), ElementsAre("writes 40009 = 0x8081"));
}

TEST_F(OpenModCom, ShowsOnlyTheRegisterAndTheValueOnTheLineWhateverTheOtherArguments) {
  const auto all = [](ModComBench& bench) -> core::Task<> {
    Word word;
    std::optional<Word> maybe;
    const std::span<Word> block(bench.Block);
    co_await bench.ModCom1.ReadPLC("40002"_reg, word, 1, 5);
    co_await bench.ModCom1.ReadPLC("40002"_reg, maybe);
    co_await bench.ModCom1.ReadPLC("40002"_reg, block, 1);
    co_await bench.ModCom1.ReadPLC("40002"_reg, block, 1, 5);
    co_await bench.ModCom1.WritePLC("40009"_reg, Word(1));
    co_await bench.ModCom1.WritePLC("40009"_reg, Word(1), 1);
    co_await bench.ModCom1.WritePLC("40009"_reg, Word(1), 1, 5);
  };
  test::RunTask(Scheduler, all(*this));
  EXPECT_THAT(Module.TakeLog(), ElementsAre("reads 40002", "reads 40002", "reads 40002", "reads 40002",
                                            "writes 40009 = 0x0001", "writes 40009 = 0x0001", "writes 40009 = 0x0001"));
}

TEST_F(OpenModCom, LeavesTheTargetOfAReadThatFailed) {
  Module.Always(ModuleFault::Unheard());
  Word data(7);
  EXPECT_EQ(ResultOf(ReadOne("40009"_reg, &data)).GetKind(), Kind::kSilence);
  EXPECT_EQ(data, Word(7));
  Block.fill(Word(8));
  EXPECT_EQ(ResultOf(ReadBlock(9)).GetKind(), Kind::kSilence);
  EXPECT_THAT(Block, testing::Each(Word(8)));
}

TEST_F(OpenModCom, LeavesAnOptionalTargetEmptyUntilTheFirstGoodRead) {
  std::optional<Word> data;
  const auto read = [](ModComBench& bench, std::optional<Word>* into) -> core::Task<Outcome> {
    co_return co_await bench.ModCom1.ReadPLC("40009"_reg, *into);
  };
  Module.Always(ModuleFault::Exception(2));
  EXPECT_FALSE(ResultOf(read(*this, &data)).Good());
  EXPECT_FALSE(data);
  Module.Always(ModuleFault::None());
  EXPECT_TRUE(ResultOf(read(*this, &data)).Good());
  EXPECT_EQ(data, Word(108));
}

TEST_F(OpenModCom, TellsTheOutcomesApart) {
  struct Row {
    ModuleFault fault;
    Kind kind;
  };
  ModCom1.LinkParamB = 1;
  for (const Row& row :
       {Row{ModuleFault::Unheard(), Kind::kSilence}, Row{ModuleFault::WrongCrc(), Kind::kWrongCrc},
        Row{ModuleFault::Torn(4), Kind::kTorn}, Row{ModuleFault::Foreign(2), Kind::kForeign},
        Row{ModuleFault::Exception(4), Kind::kException}, Row{ModuleFault::Noise({1, 3, 0xFF}), Kind::kGood},
        Row{ModuleFault::Late(milliseconds(400)), Kind::kGood},
        Row{ModuleFault::Late(milliseconds(600)), Kind::kSilence}}) {
    // Out of doubt first, so that the fault meets the read itself.
    Scheduler.Run(std::chrono::seconds(1));
    ASSERT_TRUE(ResultOf(WriteOne("40012"_reg, Word(1))).Good());
    Module.Next(row.fault);
    const Outcome outcome = ResultOf(ReadBlock(9));
    EXPECT_STREQ(NameOf(outcome.GetKind()), NameOf(row.kind)) << row.fault.Text();
    EXPECT_EQ(outcome.Result() == -1, row.kind == Kind::kGood);
    EXPECT_EQ(outcome.ExceptionCode(), row.kind == Kind::kException ? 4 : 0);
  }
}

TEST_F(OpenModCom, TriesAsOftenAsLinkParamBTells) {
  Module.Always(ModuleFault::Unheard());
  for (const int tries : {1, 2, 3}) {
    Module.ForgetLog();
    ModCom1.LinkParamB = tries;
    EXPECT_FALSE(ResultOf(ReadBlock(9)).Good());
    EXPECT_EQ(Module.Log().size(), static_cast<std::size_t>(tries));
  }
}

TEST_F(OpenModCom, TriesOnceWhenLinkParamBIsNoNumberOfTries) {
  Module.Always(ModuleFault::Unheard());
  for (const int tries : {0, -5}) {
    Module.ForgetLog();
    ModCom1.LinkParamB = tries;
    EXPECT_FALSE(ResultOf(ReadBlock(9)).Good());
    EXPECT_EQ(Module.Log().size(), 1U);
  }
}

TEST_F(OpenModCom, WaitsForTheReplyAsLongAsReplyTimeoutTells) {
  Module.Always(ModuleFault::Unheard());
  ModCom1.LinkParamB = 1;
  for (const int timeout : {500, 2000, 100}) {
    ModCom1.ReplyTimeout = timeout;
    const core::TimePoint start = Scheduler.Now();
    EXPECT_FALSE(ResultOf(WriteOne("40009"_reg, Word(1))).Good());
    EXPECT_GE(Scheduler.Now() - start, milliseconds(timeout));
    EXPECT_LE(Scheduler.Now() - start, milliseconds(timeout + 25));
  }
}

TEST_F(OpenModCom, ReachesEachModuleAddress) {
  for (int address = 1; address <= 255; ++address) {
    Module.Address = address;
    ModCom1.ModuleAddr = address;
    Word data;
    ASSERT_TRUE(ResultOf(ReadOne("40009"_reg, &data)).Good()) << address;
    ASSERT_EQ(data, Word(108));
  }
}

TEST_F(OpenModCom, MeetsSilenceAtWhatIsNoAddress) {
  for (const int address : {0, -1, 256, 257, 65537}) {
    ModCom1.ModuleAddr = address;
    Word data(7);
    EXPECT_EQ(ResultOf(ReadOne("40009"_reg, &data)).GetKind(), Kind::kSilence) << address;
    EXPECT_EQ(data, Word(7));
  }
  EXPECT_THAT(Module.Log(), IsEmpty());
}

TEST_F(OpenModCom, RefusesANumberOfRegistersThatNoReadCanHave) {
  for (const int count : {0, -1, 126, 32767}) {
    Word data(7);
    const auto read = [](ModComBench& bench, Word* into, std::int16_t asked) -> core::Task<Outcome> {
      co_return co_await bench.ModCom1.ReadPLC("40009"_reg, *into, asked);
    };
    EXPECT_EQ(ResultOf(read(*this, &data, static_cast<std::int16_t>(count))), Outcome(Kind::kException, 3)) << count;
    EXPECT_EQ(data, Word(7));
  }
  EXPECT_THAT(Module.Log(), IsEmpty());
}

TEST_F(OpenModCom, ThrowsAtABlockThatHasNoRoom) {
  EXPECT_THROW(ResultOf(ReadBlock(21)), core::Fault);
  EXPECT_TRUE(ResultOf(ReadBlock(20)).Good());
}

TEST_F(OpenModCom, ThrowsAtWhatIsNoHoldingRegister) {
  Word data;
  EXPECT_THROW(ResultOf(ReadOne(state::Register(40000), &data)), core::Fault);
  EXPECT_THROW(ResultOf(ReadOne(state::Register(50000), &data)), core::Fault);
  EXPECT_THROW(ResultOf(WriteOne(state::Register(30001), data)), core::Fault);
  EXPECT_FALSE(ModCom1.CommBusy());
}

TEST_F(OpenModCom, IsBusyFromIssueToOutcome) {
  EXPECT_FALSE(ModCom1.CommBusy());
  bool busyAfter = true;
  const auto read = [](ModComBench& bench, bool* after) -> core::Task<> {
    Word data;
    co_await bench.ModCom1.ReadPLC("40009"_reg, data);
    *after = bench.ModCom1.CommBusy();
  };
  Tasks.Start(read(*this, &busyAfter));
  EXPECT_TRUE(ModCom1.CommBusy());
  Scheduler.Run(milliseconds(5));
  EXPECT_TRUE(ModCom1.CommBusy());
  Scheduler.Run(milliseconds(50));
  EXPECT_FALSE(ModCom1.CommBusy());
  EXPECT_FALSE(busyAfter);
}

TEST_F(OpenModCom, DoesNotStartAReadThatIsNotAwaited) {
  Word data;
  {
    const ModCom::Request request = ModCom1.ReadPLC("40009"_reg, data);
  }
  EXPECT_FALSE(ModCom1.CommBusy());
  Scheduler.Run(milliseconds(50));
  EXPECT_THAT(Module.Log(), IsEmpty());
}

TEST_F(OpenModCom, ShowsItsPropertiesByName) {
  std::vector<std::string> names;
  for (const view::NamedValue& property : ModCom1.Properties()) names.emplace_back(property.name);
  EXPECT_THAT(names, ElementsAre("CommPort", "Settings", "ModuleAddr", "LinkParamA", "LinkParamB", "ReplyTimeout",
                                 "ReplyMode", "PortOpen", "CommBusy"));
  EXPECT_EQ(ModCom1.Properties()[1].value, view::PropertyValue(std::string("9600,n,8,1")));
  EXPECT_EQ(ModCom1.Properties()[4].value, view::PropertyValue(std::int64_t{3}));
  EXPECT_EQ(ModCom1.Properties()[7].value, view::PropertyValue(true));
  EXPECT_EQ(ModCom1.Properties()[8].value, view::PropertyValue(false));
}

}  // namespace
}  // namespace tarvo::bus
