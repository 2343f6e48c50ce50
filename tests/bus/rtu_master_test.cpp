#include "bus/modcom/rtu_master.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "master_bench.h"

namespace tarvo::bus {
namespace {

using core::microseconds;
using core::milliseconds;
using Kind = Outcome::Kind;
using testing::ElementsAre;
using testing::IsEmpty;

TEST(RtuMaster, SendsAReadAndGivesItsWords) {
  MasterBench bench;
  bench.Start(Read(2, 8));
  EXPECT_THAT(bench.Sent(), ElementsAre(WithCrc({1, 3, 0, 8, 0, 2})));
  bench.Line.Deliver(ReadReply({0x8081, 0x0102}), milliseconds(20));
  EXPECT_EQ(bench.FinishKind(), Kind::kGood);
  EXPECT_THAT(bench.Words(), ElementsAre(0x8081, 0x0102));
}

TEST(RtuMaster, SendsAWriteAndTakesItsEcho) {
  MasterBench bench;
  const Frame frame = WithCrc({1, 6, 0x01, 0x02, 0x80, 0x81});
  bench.Start(WriteOf(0x0102, 0x8081));
  EXPECT_THAT(bench.Sent(), ElementsAre(frame));
  bench.Line.Deliver(frame, milliseconds(20));
  EXPECT_EQ(bench.FinishKind(), Kind::kGood);
  EXPECT_THAT(bench.Words(), IsEmpty());
}

TEST(RtuMaster, ReachesEachAddress) {
  MasterBench bench;
  for (int slave = 1; slave <= 255; ++slave) {
    RtuRequest request = Read(1);
    request.slave = static_cast<std::uint8_t>(slave);
    bench.Start(request);
    bench.Line.Deliver(ReadReply({static_cast<std::uint16_t>(slave * 7)}, request.slave), milliseconds(20));
    ASSERT_EQ(bench.FinishKind(), Kind::kGood) << slave;
    EXPECT_THAT(bench.Words(), ElementsAre(slave * 7));
    bench.Scheduler.Run(milliseconds(50));
  }
}

TEST(RtuMaster, ReadsAsManyRegistersAsAFrameHolds) {
  MasterBench bench;
  const std::vector<std::uint16_t> words(125, 0x0103);
  bench.Start(Read(125));
  bench.Line.DeliverOneByOne(ReadReply(words), milliseconds(20), bench.Characters(1));
  EXPECT_EQ(bench.FinishKind(), Kind::kGood);
  EXPECT_EQ(bench.Words(), words);
}

TEST(RtuMaster, HasNoWordsAfterARequestThatFailed) {
  MasterBench bench;
  bench.Start(Read(1));
  bench.Line.Deliver(ReadReply({7}), milliseconds(20));
  ASSERT_EQ(bench.FinishKind(), Kind::kGood);
  bench.Start(Read(1));
  ASSERT_EQ(bench.FinishKind(), Kind::kSilence);
  EXPECT_THAT(bench.Words(), IsEmpty());
}

// What lies in the input when a request goes out.

TEST(RtuMaster, ThrowsAwayWhatArrivedBeforeTheRequest) {
  MasterBench bench;
  bench.Line.Deliver(ReadReply({666}), milliseconds(1));
  bench.Scheduler.Run(milliseconds(50));
  bench.Start(Read(1));
  bench.Line.Deliver(ReadReply({7}), milliseconds(30));
  EXPECT_EQ(bench.FinishKind(), Kind::kGood);
  EXPECT_THAT(bench.Words(), ElementsAre(7));
}

TEST(RtuMaster, ThrowsAwayWhatArrivesWhileItWaitsForSilence) {
  MasterBench bench;
  bench.Line.Deliver({0x55}, milliseconds(1));
  bench.Scheduler.Run(milliseconds(1));
  bench.Start(Read(1));
  ASSERT_THAT(bench.Sent(), IsEmpty());
  bench.Line.Deliver(ReadReply({666}), milliseconds(1));
  bench.Scheduler.Run(milliseconds(30));
  ASSERT_EQ(bench.Sent().size(), 1U);
  EXPECT_FALSE(bench.Ended);
}

TEST(RtuMaster, ThrowsAwayWhatLiesInTheInputUntold) {
  MasterBench bench;
  test::MemoryLine line(bench.Scheduler);
  const std::unique_ptr<BytePort> port = line.Open({});
  line.Deliver(ReadReply({666}));
  bench.Scheduler.RunReady();

  struct Listener final : RtuListener {
    void ExchangeEnded(Outcome outcome) override { ended = outcome; }
    std::optional<Outcome> ended;
  };
  Listener listener;
  RtuMaster master(bench.Scheduler, *port, {}, listener);
  master.Start(Read(1), 1, MasterBench::kTimeout);
  line.Deliver({0x55}, milliseconds(30));
  bench.Scheduler.Run(std::chrono::seconds(1));
  EXPECT_EQ(listener.ended, Outcome(Kind::kTorn));
}

// Silence between frames.

struct Gap {
  LineSettings line;
  core::Duration silence;
};

class RtuMasterGap : public testing::TestWithParam<Gap> {};

TEST_P(RtuMasterGap, KeepsSilenceAfterTheLastByteReceived) {
  MasterBench bench(GetParam().line);
  bench.Start(Read(1));
  bench.Line.Deliver(ReadReply({7}), milliseconds(400));
  ASSERT_EQ(bench.FinishKind(), Kind::kGood);
  bench.Start(Read(1));
  bench.Scheduler.Run(milliseconds(100));
  ASSERT_EQ(bench.Line.Writes().size(), 2U);
  EXPECT_EQ(bench.Line.Writes()[1].at - bench.EndedAt, GetParam().silence);
}

TEST_P(RtuMasterGap, KeepsSilenceAfterTheLastByteSent) {
  MasterBench bench(GetParam().line);
  bench.Start(Read(1));
  const core::TimePoint sent = bench.Scheduler.Now();
  bench.Master.Abandon();
  bench.Start(Read(1));
  bench.Scheduler.Run(milliseconds(200));
  ASSERT_EQ(bench.Line.Writes().size(), 2U);
  EXPECT_EQ(bench.Line.Writes()[1].at - sent, bench.Characters(8) + GetParam().silence);
}

INSTANTIATE_TEST_SUITE_P(EachSpeed, RtuMasterGap,
                         testing::Values(Gap{{1200, Parity::kNone}, core::Duration(29'166'666)},
                                         Gap{{1200, Parity::kEven}, core::Duration(32'083'333)},
                                         Gap{{9600, Parity::kNone}, core::Duration(3'645'833)},
                                         Gap{{9600, Parity::kOdd}, core::Duration(4'010'416)},
                                         Gap{{19200, Parity::kNone}, core::Duration(1'822'916)},
                                         Gap{{38400, Parity::kNone}, microseconds(1750)},
                                         Gap{{57600, Parity::kEven}, microseconds(1750)}));

TEST(RtuMaster, SendsAtOnceOnALineThatIsQuiet) {
  MasterBench bench;
  bench.Start(Read(1));
  EXPECT_EQ(bench.Sent().size(), 1U);
}

TEST(RtuMaster, CountsTheSilenceAnewFromEachByte) {
  MasterBench bench;
  bench.Line.DeliverOneByOne(Frame(10, 0x55), milliseconds(1), milliseconds(3));
  bench.Scheduler.Run(milliseconds(1));
  bench.Start(Read(1));
  const core::TimePoint firstNoise = bench.Scheduler.Now();
  bench.Scheduler.Run(milliseconds(100));
  ASSERT_EQ(bench.Line.Writes().size(), 1U);
  EXPECT_EQ(bench.Line.Writes()[0].at - firstNoise, milliseconds(27) + bench.Characters(3.5));
}

TEST(RtuMaster, EndsOnALineThatIsNeverQuiet) {
  MasterBench bench;
  bench.Line.DeliverOneByOne(Frame(20'000, 0x55), milliseconds(1), milliseconds(1));
  bench.Scheduler.Run(milliseconds(1));
  bench.Start(Read(1), 1, milliseconds(100));
  const core::TimePoint start = bench.Scheduler.Now();
  EXPECT_EQ(bench.FinishKind(), Kind::kWrongCrc);
  EXPECT_LE(bench.EndedAt - start, milliseconds(250));
}

// Time-outs.

struct TimeoutCase {
  LineSettings line;
  RtuRequest request;
  double characters;  ///< of request and reply
};

class RtuMasterTimeout : public testing::TestWithParam<TimeoutCase> {};

TEST_P(RtuMasterTimeout, IsTheReplyTimeoutAndTheLineTimeOfRequestAndReply) {
  const auto& [line, request, characters] = GetParam();
  MasterBench bench(line);
  bench.Start(request);
  const core::TimePoint start = bench.Scheduler.Now();
  ASSERT_EQ(bench.FinishKind(), Kind::kSilence);
  const core::Duration expected = MasterBench::kTimeout + line.TimeOf(characters);
  EXPECT_NEAR(static_cast<double>((bench.EndedAt - start).count()), static_cast<double>(expected.count()), 10);
}

TEST_P(RtuMasterTimeout, StillTakesAReplyThatBeginsAtTheLastMoment) {
  const auto& [line, request, characters] = GetParam();
  MasterBench bench(line);
  bench.Start(request);
  const Frame reply =
      request.function == kWriteSingleRegister ? bench.Sent()[0] : ReadReply(std::vector<std::uint16_t>(request.count));
  const core::Duration firstByte = line.TimeOf(8) + MasterBench::kTimeout + line.TimeOf(1) - microseconds(1);
  bench.Line.DeliverOneByOne(reply, firstByte, line.TimeOf(1));
  EXPECT_EQ(bench.FinishKind(), Kind::kGood);
}

INSTANTIATE_TEST_SUITE_P(Arithmetic, RtuMasterTimeout,
                         testing::Values(TimeoutCase{{1200, Parity::kNone}, Read(9), 8 + 23},
                                         TimeoutCase{{1200, Parity::kEven}, Read(1), 8 + 7},
                                         TimeoutCase{{1200, Parity::kNone}, WriteOf(8, 1), 8 + 8},
                                         TimeoutCase{{57600, Parity::kNone}, Read(9), 8 + 23},
                                         TimeoutCase{{57600, Parity::kOdd}, WriteOf(8, 1), 8 + 8}));

TEST(RtuMaster, TakesAReplyThatArrivesWithItsTimeoutRatherThanTheTimeout) {
  MasterBench bench;
  bench.Start(Read(1));
  const core::Duration timeout = bench.Characters(8) + MasterBench::kTimeout + bench.Characters(7);
  bench.Line.Deliver(ReadReply({7}), timeout);
  EXPECT_EQ(bench.FinishKind(), Kind::kGood);
}

TEST(RtuMaster, FollowsAChangeOfTheLine) {
  MasterBench bench;
  const LineSettings slow{1200, Parity::kEven};
  bench.Master.SetLine(slow);
  bench.Start(Read(1));
  const core::TimePoint start = bench.Scheduler.Now();
  ASSERT_EQ(bench.FinishKind(), Kind::kSilence);
  EXPECT_NEAR(static_cast<double>((bench.EndedAt - start - MasterBench::kTimeout).count()),
              static_cast<double>(slow.TimeOf(15).count()), 10);
}

// The port goes.

TEST(RtuMaster, EndsAtOnceWhenThePortIsLost) {
  MasterBench bench;
  bench.Start(Read(1), 3);
  bench.Line.Lose(milliseconds(10));
  bench.Scheduler.Run(milliseconds(10));
  ASSERT_TRUE(bench.Ended);
  EXPECT_EQ(bench.Ended->GetKind(), Kind::kPortGone);
  EXPECT_TRUE(bench.Master.Lost());
}

TEST(RtuMaster, EndsInTheNextTurnWhenTheWriteFails) {
  MasterBench bench;
  bench.Line.Lose();
  bench.Scheduler.RunReady();
  bench.Start(Read(1), 3);
  EXPECT_FALSE(bench.Ended) << "its issuer has not got to wait for it yet";
  bench.Scheduler.RunReady();
  ASSERT_TRUE(bench.Ended);
  EXPECT_EQ(bench.Ended->GetKind(), Kind::kPortGone);
  EXPECT_THAT(bench.Sent(), IsEmpty());
}

TEST(RtuMaster, EndsAtOnceWhenThePortIsLostBeforeTheLineIsQuiet) {
  MasterBench bench;
  bench.Line.Deliver({0x55}, milliseconds(1));
  bench.Scheduler.Run(milliseconds(1));
  bench.Start(Read(1));
  bench.Line.Lose(milliseconds(1));
  bench.Scheduler.Run(milliseconds(10));
  ASSERT_TRUE(bench.Ended);
  EXPECT_EQ(bench.Ended->GetKind(), Kind::kPortGone);
  EXPECT_THAT(bench.Sent(), IsEmpty());
}

// Tries.

TEST(RtuMaster, TriesAsOftenAsTold) {
  for (int tries = 1; tries <= 4; ++tries) {
    MasterBench bench;
    bench.Start(Read(9), tries);
    EXPECT_EQ(bench.FinishKind(), Kind::kSilence);
    EXPECT_EQ(bench.Sent().size(), static_cast<std::size_t>(tries));
    bench.Scheduler.Run(std::chrono::minutes(1));
    EXPECT_EQ(bench.Endings, 1);
  }
}

TEST(RtuMaster, DoesNotTryAgainAfterAnException) {
  for (const RtuRequest& request : {Read(9), WriteOf(8, 1)}) {
    MasterBench bench;
    bench.Start(request, 3);
    bench.Line.Deliver(WithCrc({1, static_cast<std::uint8_t>(request.function | 0x80), 4}), milliseconds(20));
    const auto ended = bench.Finish();
    ASSERT_TRUE(ended);
    EXPECT_EQ(*ended, Outcome(Kind::kException, 4));
    bench.Scheduler.Run(std::chrono::seconds(5));
    EXPECT_EQ(bench.Sent().size(), 1U);
  }
}

TEST(RtuMaster, TellsTheOutcomeOfTheLastTry) {
  MasterBench bench;
  bench.Start(Read(1), 2);
  Frame damaged = ReadReply({7});
  damaged.back() ^= 1;
  bench.Line.Deliver(damaged, milliseconds(20));
  EXPECT_EQ(bench.FinishKind(), Kind::kSilence);
}

TEST(RtuMaster, TellsNobodyOfAnExchangeThatWasAbandoned) {
  MasterBench bench;
  bench.Start(Read(1), 3);
  bench.Line.Deliver(ReadReply({7}), milliseconds(20));
  bench.Master.Abandon();
  EXPECT_FALSE(bench.Master.Running());
  bench.Scheduler.Run(std::chrono::seconds(5));
  EXPECT_EQ(bench.Endings, 0);
  EXPECT_EQ(bench.Sent().size(), 1U);
}

}  // namespace
}  // namespace tarvo::bus
