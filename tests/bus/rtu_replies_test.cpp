#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <random>
#include <string>

#include "bus/modcom/rtu_master.h"
#include "master_bench.h"

namespace tarvo::bus {
namespace {

using core::milliseconds;
using Kind = Outcome::Kind;
using testing::ElementsAre;

Frame Damaged(Frame frame, std::size_t at) {
  frame.at(at) = static_cast<std::uint8_t>(frame.at(at) ^ 0x10);
  return frame;
}

Frame Cut(Frame frame, std::size_t length) {
  frame.resize(length);
  return frame;
}

/// One row: what arrives after a request went out, and how the exchange ends.
struct Reply {
  const char* name;
  RtuRequest request;
  Frame arrives;
  Kind kind;
  bool early = false;  ///< ends soon after the last byte, not at the time-out
};

std::ostream& operator<<(std::ostream& out, const Reply& reply) {
  return out << reply.name;
}

const Frame kOne = ReadReply({0x0103});
const Frame kNine = ReadReply({1, 2, 3, 4, 5, 6, 7, 8, 9});
const Frame kEcho = WithCrc({1, 6, 0, 8, 0, 0x81});
const Frame kRefused = WithCrc({1, 0x83, 2});
const Frame kWriteRefused = WithCrc({1, 0x86, 3});

const Reply kReplies[] = {
    {"Read", Read(1), kOne, Kind::kGood, true},
    {"BlockRead", Read(9), kNine, Kind::kGood, true},
    {"Write", WriteOf(8, 0x81), kEcho, Kind::kGood, true},
    {"ReadRefused", Read(1), kRefused, Kind::kException, true},
    {"WriteRefused", WriteOf(8, 0x81), kWriteRefused, Kind::kException, true},

    {"NoiseBefore", Read(1), Frame{0xAA, 0x55, 0xFF} + kOne, Kind::kGood, true},
    {"NoiseThatLooksLikeTheBeginning", Read(1), Frame{1, 3, 2, 1, 3, 2} + kOne, Kind::kGood, true},
    {"MuchNoiseBefore", Read(9), Frame(400, 0x01) + kNine, Kind::kGood, true},
    {"MoreNoiseThanAnyFrame", WriteOf(8, 0x81), Frame(3000, 0x01) + kEcho, Kind::kGood, true},
    {"NoiseBeforeAnException", Read(9), Frame{1, 3} + kRefused, Kind::kException, true},
    {"NoiseAfter", Read(1), kOne + Frame{0xAA, 0x55}, Kind::kGood, true},
    {"DamagedThenGood", Read(1), Damaged(kOne, 3) + kOne, Kind::kGood, true},
    {"OtherReplyThenGood", Read(1), kNine + kOne, Kind::kGood, true},
    {"OtherSlaveThenGood", Read(1), ReadReply({666}, 2) + kOne, Kind::kGood, true},

    {"DamagedData", Read(1), Damaged(kOne, 4), Kind::kWrongCrc, true},
    {"DamagedCrc", Read(1), Damaged(kOne, 6), Kind::kWrongCrc, true},
    {"DamagedFunction", Read(9), Damaged(kNine, 1), Kind::kWrongCrc, true},
    {"DamagedCount", Read(9), Damaged(kNine, 2), Kind::kWrongCrc, true},
    {"DamagedAddress", Read(9), Damaged(kNine, 0), Kind::kWrongCrc, true},
    {"DamagedEcho", WriteOf(8, 0x81), Damaged(kEcho, 5), Kind::kWrongCrc, true},
    {"DamagedException", Read(9), Damaged(kRefused, 4), Kind::kWrongCrc, true},
    {"Garbage", Read(1), Frame(40, 0x00), Kind::kWrongCrc, true},

    {"OneByte", Read(9), Cut(kNine, 1), Kind::kTorn},
    {"HeaderOnly", Read(9), Cut(kNine, 3), Kind::kTorn},
    {"AllButOneByte", Read(9), Cut(kNine, 22), Kind::kTorn},
    {"TornAfterNoise", Read(1), Frame(7, 0xAA) + Cut(kOne, 4), Kind::kTorn},
    {"TornEcho", WriteOf(8, 0x81), Cut(kEcho, 7), Kind::kTorn},
    {"TornException", Read(9), Cut(kRefused, 4), Kind::kTorn},

    {"OtherSlave", Read(1), ReadReply({666}, 2), Kind::kForeign},
    {"OtherSlavesException", Read(1), WithCrc({2, 0x83, 2}), Kind::kForeign},
    {"OtherFunction", Read(1), WithCrc({1, 4, 2, 1, 3}), Kind::kForeign},
    {"OtherFunctionsException", Read(1), kWriteRefused, Kind::kForeign},
    {"TooShort", Read(9), kOne, Kind::kForeign},
    {"TooLong", Read(1), kNine, Kind::kForeign},
    {"EchoToARead", Read(1), kEcho, Kind::kForeign},
    {"ReadToAWrite", WriteOf(8, 0x81), kNine, Kind::kForeign},
    {"EchoOfOtherRegister", WriteOf(9, 0x81), kEcho, Kind::kForeign},
    {"EchoOfOtherValue", WriteOf(8, 0x80), kEcho, Kind::kForeign},
    {"EchoOfOtherSlave", WriteOf(8, 0x81), WithCrc({2, 6, 0, 8, 0, 0x81}), Kind::kForeign},
    {"SeveralForeign", Read(1), ReadReply({666}, 2) + Frame{0x55} + kNine, Kind::kForeign},

    {"Nothing", Read(1), {}, Kind::kSilence},
};

class RtuReplies : public testing::TestWithParam<Reply> {
 protected:
  static constexpr core::Duration kFirstByte = milliseconds(30);

  static void Expect(MasterBench& bench, core::TimePoint lastByte) {
    const auto ended = bench.FinishKind();
    ASSERT_TRUE(ended);
    EXPECT_STREQ(NameOf(*ended), NameOf(GetParam().kind));
    if (GetParam().early) {
      const core::Duration silence = milliseconds(2);
      EXPECT_LE(bench.EndedAt - lastByte, std::max(bench.Characters(5), silence));
    } else {
      EXPECT_GE(bench.EndedAt - lastByte, milliseconds(300));
    }
    EXPECT_EQ(bench.Words().empty(),
              GetParam().kind != Kind::kGood || GetParam().request.function == kWriteSingleRegister);
  }
};

TEST_P(RtuReplies, InOnePiece) {
  MasterBench bench;
  bench.Start(GetParam().request);
  const core::TimePoint arrival = bench.Scheduler.Now() + kFirstByte;
  if (!GetParam().arrives.empty()) bench.Line.Deliver(GetParam().arrives, kFirstByte);
  Expect(bench, arrival);
}

TEST_P(RtuReplies, ByteByByte) {
  MasterBench bench({57600, Parity::kNone});
  bench.Start(GetParam().request, 1, std::chrono::seconds(2));
  const Frame& arrives = GetParam().arrives;
  if (!arrives.empty()) bench.Line.DeliverOneByOne(arrives, kFirstByte, bench.Characters(1));
  const auto gaps = static_cast<int>(std::max<std::size_t>(arrives.size(), 1) - 1);
  Expect(bench, bench.Scheduler.Now() + kFirstByte + gaps * bench.Characters(1));
}

TEST_P(RtuReplies, InTwoPiecesHowEverTheyAreCut) {
  for (std::size_t cut = 1; cut < std::min<std::size_t>(GetParam().arrives.size(), 60); ++cut) {
    MasterBench bench;
    bench.Start(GetParam().request);
    const Frame& arrives = GetParam().arrives;
    bench.Line.Deliver(std::span(arrives).first(cut), kFirstByte);
    bench.Line.Deliver(std::span(arrives).subspan(cut), kFirstByte + milliseconds(1));
    const auto ended = bench.FinishKind();
    ASSERT_TRUE(ended);
    EXPECT_STREQ(NameOf(*ended), NameOf(GetParam().kind)) << "cut at " << cut;
  }
}

INSTANTIATE_TEST_SUITE_P(Table, RtuReplies, testing::ValuesIn(kReplies),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(RtuReplies, AnyDamagedBitOfAReplyIsNoAnswer) {
  for (std::size_t bit = 0; bit < 8 * kOne.size(); ++bit) {
    MasterBench bench;
    bench.Start(Read(1));
    Frame damaged = kOne;
    damaged[bit / 8] = static_cast<std::uint8_t>(damaged[bit / 8] ^ (1U << bit % 8));
    bench.Line.Deliver(damaged, milliseconds(30));
    const auto ended = bench.Finish();
    ASSERT_TRUE(ended);
    EXPECT_FALSE(ended->Good()) << "bit " << bit;
  }
}

TEST(RtuReplies, AnyTornReplyIsNoAnswer) {
  for (std::size_t length = 1; length < kNine.size(); ++length) {
    MasterBench bench;
    bench.Start(Read(9));
    bench.Line.Deliver(Cut(kNine, length), milliseconds(30));
    EXPECT_EQ(bench.FinishKind(), Kind::kTorn) << length << " bytes";
  }
}

// USB adapters give what they have every 16 ms: a reply comes in two pieces with a pause between.
TEST(RtuReplies, APauseWithinAReplyDoesNotEndIt) {
  for (std::size_t cut = 3; cut < kNine.size(); ++cut) {
    MasterBench bench;
    bench.Start(Read(9));
    const Frame arrives = Frame(30, 0xAA) + kNine;
    bench.Line.Deliver(std::span(arrives).first(30 + cut), milliseconds(30));
    bench.Line.Deliver(std::span(arrives).subspan(30 + cut), milliseconds(46));
    EXPECT_EQ(bench.FinishKind(), Kind::kGood) << "cut at " << cut;
  }
}

TEST(RtuReplies, ADamagedReplyEndsTheExchangeAfterAFewCharactersOfSilence) {
  struct Row {
    LineSettings line;
    core::Duration silence;
  };
  // 2 ms at least: no adapter hands bytes over more finely than that.
  for (const Row& row :
       {Row{{1200, Parity::kNone}, core::Duration(41'666'666)}, Row{{9600, Parity::kEven}, core::Duration(5'729'166)},
        Row{{9600, Parity::kNone}, core::Duration(5'208'333)}, Row{{57600, Parity::kNone}, milliseconds(2)}}) {
    MasterBench bench(row.line);
    bench.Start(Read(1));
    const core::TimePoint arrival = bench.Scheduler.Now() + milliseconds(100);
    bench.Line.Deliver(Damaged(kOne, 4), milliseconds(100));
    ASSERT_EQ(bench.FinishKind(), Kind::kWrongCrc);
    EXPECT_EQ(bench.EndedAt - arrival, row.silence) << row.line.baud;
  }
}

TEST(RtuReplies, RandomBytesNeitherCrashNorHangTheMaster) {
  constexpr unsigned kSeed = 20'260'211;
  std::printf("seed %u\n", kSeed);
  std::mt19937 random(kSeed);
  MasterBench bench;
  int good = 0;
  for (int exchange = 0; exchange < 2000; ++exchange) {
    const bool write = random() % 4 == 0;
    bench.Start(write ? WriteOf(8, 1) : Read(static_cast<std::uint16_t>(1 + random() % 12)), 3, milliseconds(20));
    for (unsigned piece = random() % 4; piece > 0; --piece) {
      Frame bytes(random() % 300);
      for (std::uint8_t& byte : bytes) byte = static_cast<std::uint8_t>(random() % 3 == 0 ? random() % 8 : random());
      bench.Line.Deliver(bytes, milliseconds(random() % 40));
    }
    const auto ended = bench.Finish();
    ASSERT_TRUE(ended) << "exchange " << exchange;
    if (ended->Good()) ++good;
  }
  EXPECT_EQ(good, 0);
}

}  // namespace
}  // namespace tarvo::bus
