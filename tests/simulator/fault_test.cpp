// Faults to order, in virtual time.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "simulated_line.h"

namespace tarvo::simulator {
namespace {

using std::chrono::milliseconds;
using test::Bytes;
using test::ExceptionReply;
using test::ReadReply;
using test::ReadRequest;
using test::WriteRequest;

/// A line with one Belk, and requests and replies that the tests below share.
class FaultyLine : public SimulatedLine {
 protected:
  FaultyLine() {
    Put(StillWith({{40003, 0x1234}}));
    line = &Start();
  }

  void Fault(FaultKind kind, std::optional<int> replies = std::nullopt, core::Duration delay = {}) const {
    LineFault fault;
    fault.kind = kind;
    fault.replies = replies;
    fault.delay = delay;
    line->SetFault(fault);
  }

  const Bytes request = ReadRequest(1, 40003, 1);
  const Bytes reply = ReadReply(1, {0x1234});
  Line* line = nullptr;
};

TEST_F(FaultyLine, HitsAsManyRepliesAsOrdered) {
  Fault(FaultKind::kSilence, 3);
  for (int i = 0; i < 3; ++i) EXPECT_TRUE(Exchange(request).empty()) << i;
  EXPECT_EQ(line->GetFault(), std::nullopt);
  EXPECT_EQ(Exchange(request), reply);
}

TEST_F(FaultyLine, HitsAllRepliesUntilTold) {
  Fault(FaultKind::kSilence);
  for (int i = 0; i < 100; ++i) ASSERT_TRUE(Exchange(request).empty()) << i;
  line->SetFault(std::nullopt);
  EXPECT_EQ(Exchange(request), reply);
}

TEST_F(FaultyLine, CountsNoRequestThatMeetsSilenceAnyway) {
  Fault(FaultKind::kTruncated, 1);
  EXPECT_TRUE(Exchange(ReadRequest(2, 40003, 1)).empty());
  EXPECT_TRUE(Exchange(WriteRequest(0, 40004, 5)).empty());
  EXPECT_TRUE(Exchange(request, "19200,n,8,1").empty());
  EXPECT_NE(line->GetFault(), std::nullopt);
}

TEST_F(FaultyLine, LosesTheReplyButDoesWhatWasAsked) {
  Fault(FaultKind::kSilence, 1);
  EXPECT_TRUE(Exchange(WriteRequest(1, 40003, 7)).empty());
  EXPECT_EQ(Exchange(request), ReadReply(1, {7}));
}

TEST_F(FaultyLine, PutsNoiseBeforeTheReply) {
  Fault(FaultKind::kNoise);
  std::vector<Bytes> noises;
  for (int i = 0; i < 50; ++i) {
    Exchange(request);
    ASSERT_GT(got.size(), reply.size());
    ASSERT_LE(got.size(), reply.size() + 8);
    ASSERT_TRUE(std::equal(reply.rbegin(), reply.rend(), got.rbegin()));
    noises.emplace_back(got.begin(), got.end() - static_cast<std::ptrdiff_t>(reply.size()));
  }
  EXPECT_GT(std::count_if(noises.begin(), noises.end(), [&](const Bytes& noise) { return noise != noises[0]; }), 40);
}

TEST_F(FaultyLine, FlipsABitThatTheCrcNoLongerFits) {
  Fault(FaultKind::kWrongCrc);
  for (const Bytes& asked : {request, ReadRequest(1, 40002, 9), WriteRequest(1, 40003, 7), ReadRequest(1, 40099, 1)}) {
    Exchange(asked);
    ASSERT_GE(got.size(), 5U);
    EXPECT_FALSE(bus::CrcFits(got));
  }
  // A master that does not look at the CRC shows a wrong value.
  Exchange(WriteRequest(1, 40003, 0x1234));
  EXPECT_THAT(Exchange(request), ::testing::ElementsAre(1, 3, 2, 0x13, 0x34, reply[5], reply[6]));
}

TEST_F(FaultyLine, SendsTheFirstHalfOfATruncatedReply) {
  Fault(FaultKind::kTruncated, 1);
  EXPECT_EQ(Exchange(request), Bytes(reply.begin(), reply.begin() + 3));
  EXPECT_EQ(Exchange(request), reply);
}

TEST_F(FaultyLine, RepliesAsAnotherAddress) {
  Fault(FaultKind::kOtherAddress, 1);
  EXPECT_EQ(Exchange(request), ReadReply(2, {0x1234}));
  EXPECT_EQ(Exchange(request), reply);
}

TEST_F(FaultyLine, HasNoAddressBeyond255) {
  ModuleOptions last = StillWith({{40003, 0x1234}});
  last.setting.address = 255;
  Put(last);
  line = &Start();
  Fault(FaultKind::kOtherAddress);
  EXPECT_EQ(Exchange(ReadRequest(255, 40003, 1)), reply);
}

TEST_F(FaultyLine, RepliesLater) {
  EXPECT_EQ(Exchange(request), reply);
  const core::Duration usual = lastByte;
  Fault(FaultKind::kLate, 1, milliseconds(700));
  EXPECT_EQ(Exchange(request), reply);
  EXPECT_EQ(lastByte - usual, milliseconds(700));
  EXPECT_EQ(Exchange(request), reply);
  EXPECT_EQ(lastByte, usual);
}

TEST_F(FaultyLine, SendsALateReplyWithTheValuesOfItsTimeAndTheNextBehindIt) {
  Fault(FaultKind::kLate, 1, milliseconds(700));
  Arrive(request);
  time.Run(milliseconds(600));
  EXPECT_TRUE(got.empty());
  line->Modules()[0].Set(state::Register(40003), state::Word(7), time.Now());
  Arrive(request);
  time.Run(milliseconds(50));
  EXPECT_TRUE(got.empty());
  time.Run(milliseconds(100));
  Bytes both = reply;
  for (const std::uint8_t byte : ReadReply(1, {7})) both.push_back(byte);
  EXPECT_EQ(got, both);
}

TEST_F(FaultyLine, RefusesByAnExceptionAndDoesNothing) {
  Fault(FaultKind::kException, 3);
  EXPECT_EQ(Exchange(request), ExceptionReply(1, 3, 4));
  EXPECT_EQ(Exchange(WriteRequest(1, 40003, 7)), ExceptionReply(1, 6, 4));
  EXPECT_EQ(Exchange(WriteRequest(1, 40011, 1)), ExceptionReply(1, 6, 4)) << "no restart either";
  EXPECT_EQ(Exchange(request), reply);
}

TEST_F(FaultyLine, DoesABroadcastThoughItRefusesAllElse) {
  Fault(FaultKind::kException);
  EXPECT_TRUE(Exchange(WriteRequest(0, 40003, 7)).empty());
  line->SetFault(std::nullopt);
  EXPECT_EQ(Exchange(request), ReadReply(1, {7}));
}

TEST_F(FaultyLine, HitsTheModuleWithTheAddressAlone) {
  Put(1, "9600,n,8,1");
  Put(7, "9600,n,8,1");
  line = &Start();
  LineFault fault;
  fault.address = 7;
  fault.replies = 1;
  line->SetFault(fault);
  EXPECT_EQ(Exchange(ReadRequest(1, 40001, 1)), ReadReply(1, {0x0103}));
  EXPECT_TRUE(Exchange(ReadRequest(7, 40001, 1)).empty());
  EXPECT_EQ(Exchange(ReadRequest(7, 40001, 1)), ReadReply(7, {0x0103}));
}

TEST_F(FaultyLine, SendsALateReplyThoughItsMasterHasGone) {
  Fault(FaultKind::kLate, 1, milliseconds(700));
  Arrive(request);
  time.Run(milliseconds(100));
  line->Modules()[0].Set(state::Register(40003), state::Word(7), time.Now());
  Arrive(request);
  time.Run(milliseconds(100));
  line->Forget();
  time.Run(std::chrono::seconds(2));
  EXPECT_EQ(got, reply) << "the one behind it is not late by order";
  EXPECT_EQ(Exchange(request), ReadReply(1, {7}));
}

TEST_F(FaultyLine, SendsNoRestOfALateReplyWhenTheMasterGoes) {
  Fault(FaultKind::kLate, 1, milliseconds(700));
  Arrive(request);
  time.Run(milliseconds(715));
  const std::size_t before = got.size();
  ASSERT_GT(before, 0U);
  line->Forget();
  time.Run(std::chrono::seconds(2));
  EXPECT_EQ(got.size(), before);
  EXPECT_EQ(Exchange(request), reply);
}

}  // namespace
}  // namespace tarvo::simulator
