#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <random>

#include "bus/modcom/rtu_master.h"
#include "master_bench.h"
#include "support/memory_module.h"

namespace tarvo::bus {
namespace {

using core::milliseconds;
using test::ModuleFault;
using Kind = Outcome::Kind;
using testing::Each;
using testing::ElementsAre;

/// A master, and a module on its line.
class DoubtfulLine : public testing::Test {
 protected:
  DoubtfulLine() {
    for (int i = 0; i < 12; ++i) Module[40001 + i] = static_cast<std::uint16_t>(100 + i);
  }

  /// Makes the line suspect with a request that is never answered.
  void Fail(const RtuRequest& request) {
    Module.Next(ModuleFault::Unheard());
    Bench.Start(request);
    ASSERT_EQ(Bench.FinishKind(), Kind::kSilence);
    Module.ForgetLog();
  }

  MasterBench Bench;
  test::MemoryModule Module{Bench.Scheduler, Bench.Line};
};

TEST_F(DoubtfulLine, ProbesBeforeTheNextRequest) {
  Fail(Read(9));
  Bench.Start(Read(9));
  EXPECT_EQ(Bench.FinishKind(), Kind::kGood);
  EXPECT_THAT(Module.TakeLog(), ElementsAre("reads 40001 x2", "reads 40002 x9"));
  EXPECT_THAT(Bench.Words(), ElementsAre(101, 102, 103, 104, 105, 106, 107, 108, 109));
}

TEST_F(DoubtfulLine, ProbesBetweenTheTriesOfOneRequest) {
  Module.Next(ModuleFault::WrongCrc());
  Bench.Start(Read(1), 3);
  EXPECT_EQ(Bench.FinishKind(), Kind::kGood);
  EXPECT_THAT(Module.TakeLog(), ElementsAre("reads 40002: wrong CRC", "reads 40001 x2", "reads 40002"));
}

TEST_F(DoubtfulLine, EndsWithAProbeThatWasAnswered) {
  Fail(Read(9));
  for (int i = 0; i < 2; ++i) {
    Bench.Start(Read(1));
    EXPECT_EQ(Bench.FinishKind(), Kind::kGood);
  }
  EXPECT_THAT(Module.TakeLog(), ElementsAre("reads 40001 x2", "reads 40002", "reads 40002"));
}

TEST_F(DoubtfulLine, IsEndedByAnExceptionToo) {
  Fail(Read(9));
  Module.Next(ModuleFault::Exception(2));
  Bench.Start(Read(1));
  EXPECT_EQ(Bench.FinishKind(), Kind::kGood);
  EXPECT_THAT(Module.TakeLog(), ElementsAre("reads 40001 x2: exception 2", "reads 40002"));
}

TEST_F(DoubtfulLine, IsEndedByTwoExceptionsBeforeTheReadThatFailedIsReadAgain) {
  Fail(Read(9));
  Module.Next(ModuleFault::Exception(2));
  Module.Next(ModuleFault::Exception(2));
  Bench.Start(Read(9));
  EXPECT_EQ(Bench.FinishKind(), Kind::kGood);
  EXPECT_THAT(Module.TakeLog(),
              ElementsAre("reads 40001 x2: exception 2", "reads 40001 x3: exception 2", "reads 40002 x9"))
      << "the first may have been the late answer of the read that failed";
}

TEST_F(DoubtfulLine, EndsForGoodWithAReadThatWasAnswered) {
  Fail(Read(9));
  Module.Next(ModuleFault::Exception(2));
  Bench.Start(Read(1));
  ASSERT_EQ(Bench.FinishKind(), Kind::kGood);
  Module.ForgetLog();
  Bench.Start(Read(9));
  EXPECT_EQ(Bench.FinishKind(), Kind::kGood);
  EXPECT_THAT(Module.TakeLog(), ElementsAre("reads 40002 x9"));
}

TEST_F(DoubtfulLine, DoesNotComeWithAnException) {
  Module.Next(ModuleFault::Exception(2));
  Bench.Start(Read(1));
  EXPECT_EQ(Bench.FinishKind(), Kind::kException);
  Bench.Start(Read(1));
  EXPECT_EQ(Bench.FinishKind(), Kind::kGood);
  EXPECT_THAT(Module.TakeLog(), ElementsAre("reads 40002: exception 2", "reads 40002"));
}

TEST_F(DoubtfulLine, ComesWithAWriteThatFailed) {
  Fail(WriteOf(8, 1));
  Bench.Start(WriteOf(8, 1));
  EXPECT_EQ(Bench.FinishKind(), Kind::kGood);
  EXPECT_THAT(Module.TakeLog(), ElementsAre("reads 40001 x2", "writes 40009 = 0x0001"));
}

TEST_F(DoubtfulLine, ComesWithARequestThatWasAbandonedOnTheLine) {
  Bench.Start(Read(2));
  Bench.Master.Abandon();
  Module.ForgetLog();
  Bench.Start(Read(1));
  EXPECT_EQ(Bench.FinishKind(), Kind::kGood);
  EXPECT_THAT(Module.TakeLog(), ElementsAre("reads 40001 x3", "reads 40002"));
}

TEST_F(DoubtfulLine, DoesNotComeWithARequestThatWasAbandonedBeforeItWentOut) {
  Bench.Line.Deliver({0x55});
  Bench.Scheduler.RunReady();
  Bench.Start(Read(2));
  Bench.Master.Abandon();
  Bench.Start(Read(1));
  EXPECT_EQ(Bench.FinishKind(), Kind::kGood);
  EXPECT_THAT(Module.TakeLog(), ElementsAre("reads 40002"));
}

TEST_F(DoubtfulLine, TakesANewLengthForEachProbe) {
  Module.Always(ModuleFault::Unheard());
  Bench.Start(Read(9), 8);
  EXPECT_EQ(Bench.FinishKind(), Kind::kSilence);
  EXPECT_THAT(Module.TakeLog(),
              ElementsAre("reads 40002 x9: unheard", "reads 40001 x2: unheard", "reads 40001 x3: unheard",
                          "reads 40001 x4: unheard", "reads 40001 x5: unheard", "reads 40001 x6: unheard",
                          "reads 40001 x6: unheard", "reads 40001 x6: unheard"));
}

TEST_F(DoubtfulLine, NeverProbesWithTheLengthOfTheReadThatFailedNorOfTheNext) {
  for (std::uint16_t failed = 1; failed <= 7; ++failed) {
    for (std::uint16_t next = 1; next <= 7; ++next) {
      Fail(Read(failed));
      Module.Always(ModuleFault::Unheard());
      Bench.Start(Read(next), 6);
      ASSERT_EQ(Bench.FinishKind(), Kind::kSilence);
      for (const std::string& line : Module.TakeLog()) {
        ASSERT_EQ(line.substr(0, 13), "reads 40001 x") << line;
        const int probe = line[13] - '0';
        EXPECT_TRUE(probe >= 2 && probe <= 6) << line;
        EXPECT_NE(probe, failed) << line;
        EXPECT_NE(probe, next) << line;
      }
      Module.Always(ModuleFault::None());
      Bench.Start(Read(7));
      ASSERT_EQ(Bench.FinishKind(), Kind::kGood);
    }
  }
}

TEST_F(DoubtfulLine, LetsASilentProbeEndTheAttemptAtOnce) {
  Fail(Read(9));
  Module.Always(ModuleFault::Unheard());
  Bench.Start(Read(9));
  const core::TimePoint start = Bench.Scheduler.Now();
  EXPECT_EQ(Bench.FinishKind(), Kind::kSilence);
  EXPECT_THAT(Module.TakeLog(), ElementsAre("reads 40001 x2: unheard"));
  const core::Duration probeTime = MasterBench::kTimeout + Bench.Characters(8 + 9);
  EXPECT_LE(Bench.EndedAt - start, probeTime + milliseconds(1));
}

TEST_F(DoubtfulLine, SpendsOneTimeoutForEachTryOnADeadLine) {
  Module.Always(ModuleFault::Unheard());
  Bench.Start(Read(9), 3);
  const core::TimePoint start = Bench.Scheduler.Now();
  ASSERT_EQ(Bench.FinishKind(), Kind::kSilence);
  const core::Duration lineTime = Bench.Characters(8 + 23) + Bench.Characters(8 + 9) + Bench.Characters(8 + 11);
  EXPECT_LE(Bench.EndedAt - start, 3 * MasterBench::kTimeout + lineTime + milliseconds(1));
}

TEST_F(DoubtfulLine, KeepsTheOutcomesOfProbesApart) {
  struct Row {
    ModuleFault fault;
    Kind kind;
  };
  for (const Row& row : {Row{ModuleFault::WrongCrc(), Kind::kWrongCrc}, Row{ModuleFault::Torn(4), Kind::kTorn},
                         Row{ModuleFault::Foreign(9), Kind::kForeign}, Row{ModuleFault::Silent(), Kind::kSilence}}) {
    Fail(Read(9));
    Module.Next(row.fault);
    Bench.Start(Read(9));
    const auto ended = Bench.FinishKind();
    ASSERT_TRUE(ended);
    EXPECT_STREQ(NameOf(*ended), NameOf(row.kind));
    EXPECT_EQ(Module.TakeLog().size(), 1U) << "the request does not follow a probe that failed";
  }
}

TEST_F(DoubtfulLine, ALateReplyIsNotTheAnswerToTheSameReadTriedAgain) {
  Module.Next(ModuleFault::Late(milliseconds(520)));
  Bench.Start(Read(1), 2);
  Bench.Scheduler.Run(milliseconds(100));
  Module[40002] = 999;
  EXPECT_EQ(Bench.FinishKind(), Kind::kGood);
  EXPECT_THAT(Bench.Words(), ElementsAre(999));
  EXPECT_THAT(Module.TakeLog(), ElementsAre("reads 40002: late 520 ms", "reads 40001 x2", "reads 40002"));
}

TEST_F(DoubtfulLine, ALateReplyIsNotTheAnswerToAReadOfOtherRegisters) {
  Module.Next(ModuleFault::Late(milliseconds(520)));
  Bench.Start(Read(1, 1));
  ASSERT_EQ(Bench.FinishKind(), Kind::kSilence);
  Bench.Start(Read(1, 4));
  EXPECT_EQ(Bench.FinishKind(), Kind::kGood);
  EXPECT_THAT(Bench.Words(), ElementsAre(104));
}

TEST_F(DoubtfulLine, ALateEchoIsNotTheAnswerToTheNextWrite) {
  Module.Next(ModuleFault::Late(milliseconds(530)));
  Bench.Start(WriteOf(8, 5));
  ASSERT_EQ(Bench.FinishKind(), Kind::kSilence);
  Module.Next(ModuleFault::None());
  Module.Next(ModuleFault::Unheard());
  Bench.Start(WriteOf(8, 5));
  EXPECT_EQ(Bench.FinishKind(), Kind::kSilence);
}

TEST_F(DoubtfulLine, ALineThatIsOneReplyBehindCatchesUp) {
  Module.Next(ModuleFault::Late(milliseconds(530)));
  Bench.Start(Read(9), 3);
  EXPECT_EQ(Bench.FinishKind(), Kind::kGood);
  EXPECT_THAT(Module.TakeLog(), ElementsAre("reads 40002 x9: late 530 ms", "reads 40001 x2", "reads 40002 x9"));
}

TEST_F(DoubtfulLine, GoesOverToTheNextMasterOnTheLine) {
  Fail(Read(2));
  const Doubt doubt = Bench.Master.GetDoubt();
  EXPECT_TRUE(doubt.Suspect());
  Bench.Start(Read(1));
  ASSERT_EQ(Bench.FinishKind(), Kind::kGood);
  EXPECT_FALSE(Bench.Master.GetDoubt().Suspect());

  Module.ForgetLog();
  Bench.Master.SetDoubt(doubt);
  Bench.Start(Read(1));
  EXPECT_EQ(Bench.FinishKind(), Kind::kGood);
  EXPECT_THAT(Module.TakeLog(), ElementsAre("reads 40001 x3", "reads 40002"));
}

/// A module whose words tell which request they answer.
class Tagged : public DoubtfulLine {
 protected:
  Tagged() {
    Module.SetLogging(false);
    Module.BeforeRead = [this](int first, int count) {
      ++tag_;
      for (int i = 0; i < count; ++i) Module[first + i] = tag_;
    };
  }

  static ModuleFault AnyFault(std::mt19937& random) {
    ModuleFault fault;
    switch (random() % 10) {
      case 0:
        return ModuleFault::Unheard();
      case 1:
        return ModuleFault::Silent();
      case 2:
        return ModuleFault::WrongCrc();
      case 3:
        return ModuleFault::Torn(static_cast<int>(1 + random() % 12));
      case 4:
        return ModuleFault::Foreign(static_cast<std::uint8_t>(2 + random() % 254));
      case 5:
        return ModuleFault::Noise({0xFF, 1, 3, static_cast<std::uint8_t>(random())});
      case 6:
        fault.exceptionCode = 2;
        [[fallthrough]];
      case 7:
        fault.wrongCrc = fault.exceptionCode == 0;
        [[fallthrough]];
      default:
        fault.late = milliseconds(random() % 400);
        return fault;
    }
  }

  std::uint16_t tag_ = 0;
};

TEST_F(Tagged, NoLateReplyEverBecomesTheAnswerToALaterRequest) {
  constexpr unsigned kSeed = 41'001;
  std::printf("seed %u\n", kSeed);
  std::mt19937 random(kSeed);
  constexpr core::Duration kTimeout = milliseconds(100);
  int good = 0;
  int failed = 0;
  for (int exchange = 0; exchange < 20'000; ++exchange) {
    Module.Always(random() % 5 == 0 ? AnyFault(random) : ModuleFault::None());
    const auto count = static_cast<std::uint16_t>(1 + random() % 9);
    Bench.Start(Read(count), static_cast<int>(1 + random() % 3), kTimeout);
    const auto ended = Bench.Finish();
    ASSERT_TRUE(ended) << "exchange " << exchange;
    if (ended->Good()) {
      ++good;
      ASSERT_EQ(Bench.Words().size(), count);
      ASSERT_THAT(Bench.Words(), Each(tag_)) << "exchange " << exchange;
    } else {
      ++failed;
    }
    if (random() % 3 == 0) Bench.Scheduler.Run(milliseconds(random() % 60));
  }
  EXPECT_GT(good, 10'000);
  EXPECT_GT(failed, 1000);
}

TEST_F(Tagged, AModuleThatIsWellAgainIsReadAgain) {
  constexpr unsigned kSeed = 41'002;
  std::printf("seed %u\n", kSeed);
  std::mt19937 random(kSeed);
  for (int spell = 0; spell < 500; ++spell) {
    for (int exchange = 0; exchange < 5; ++exchange) {
      Module.Always(AnyFault(random));
      Bench.Start(Read(9), 3, milliseconds(100));
      ASSERT_TRUE(Bench.Finish());
    }
    Module.Always(ModuleFault::None());
    // What the module still owes it answers first, one after the other.
    int exchanges = 0;
    do {
      Bench.Start(Read(9), 3, milliseconds(100));
      ASSERT_TRUE(Bench.Finish());
      ++exchanges;
    } while (!Bench.Ended->Good() && exchanges < 50);
    EXPECT_TRUE(Bench.Ended->Good()) << "spell " << spell;
    EXPECT_LE(exchanges, 10) << "spell " << spell;
  }
}

}  // namespace
}  // namespace tarvo::bus
