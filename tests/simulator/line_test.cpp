#include "simulator/line.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "simulated_line.h"

namespace tarvo::simulator {
namespace {

using std::chrono::microseconds;
using std::chrono::milliseconds;
using test::Bytes;
using test::ExceptionReply;
using test::ReadReply;
using test::ReadRequest;
using test::WithCrc;
using test::WriteRequest;

TEST_F(SimulatedLine, AnswersARequestThatArrivesAtOnce) {
  Put(1, "9600,n,8,1");
  Start();
  EXPECT_EQ(Exchange(ReadRequest(1, 40001, 1)), ReadReply(1, {0x0103}));
}

TEST_F(SimulatedLine, AnswersARequestThatArrivesByteByByte) {
  Put(1, "9600,n,8,1");
  Start();
  for (const std::uint8_t byte : ReadRequest(1, 40001, 1)) {
    Arrive({byte});
    time.Run(microseconds(1042));
  }
  time.Run(milliseconds(100));
  EXPECT_EQ(got, ReadReply(1, {0x0103}));
}

TEST_F(SimulatedLine, ForgetsAFrameThatIsBrokenByASilence) {
  Put(1, "9600,n,8,1");
  Start();
  const Bytes request = ReadRequest(1, 40001, 1);
  Arrive(Bytes(request.begin(), request.begin() + 4));
  time.Run(milliseconds(4));
  Arrive(Bytes(request.begin() + 4, request.end()));
  time.Run(milliseconds(100));
  EXPECT_TRUE(got.empty());
  EXPECT_EQ(Exchange(request), ReadReply(1, {0x0103}));
}

TEST_F(SimulatedLine, KeepsSilentToAWrongCrc) {
  Put(1, "9600,n,8,1");
  Start();
  const Bytes request = ReadRequest(1, 40001, 1);
  for (std::size_t byte = 0; byte < request.size(); ++byte) {
    Bytes damaged = request;
    damaged[byte] ^= 0x10;
    EXPECT_TRUE(Exchange(damaged).empty()) << byte;
  }
}

TEST_F(SimulatedLine, RefusesAnUnknownFunctionAfterASilence) {
  Put(1, "9600,n,8,1");
  Start();
  EXPECT_EQ(Exchange(WithCrc({1, 110, 5})), ExceptionReply(1, 110, 1));
}

TEST_F(SimulatedLine, OutlivesAFloodOfNoise) {
  Put(1, "9600,n,8,1");
  Start();
  for (int i = 0; i < 1000; ++i) {
    Arrive(Bytes(500, static_cast<std::uint8_t>(i)));
    time.Run(milliseconds(1));
  }
  time.Run(milliseconds(100));
  EXPECT_TRUE(got.empty());
  EXPECT_EQ(Exchange(ReadRequest(1, 40001, 1)), ReadReply(1, {0x0103}));
}

TEST_F(SimulatedLine, KeepsSilentOnAnyOtherLine) {
  const std::vector<int> bauds = {1200, 2400, 4800, 9600, 19200, 38400, 57600};
  const std::vector<bus::Parity> parities = {bus::Parity::kNone, bus::Parity::kEven, bus::Parity::kOdd};
  Put(1, "19200,e,8,1");
  Line& line = Start();
  for (const int baud : bauds) {
    for (const bus::Parity parity : parities) {
      got.clear();
      line.Arrived(ReadRequest(1, 40001, 1), bus::LineSettings{baud, parity});
      time.Run(std::chrono::seconds(1));
      EXPECT_EQ(!got.empty(), baud == 19200 && parity == bus::Parity::kEven) << baud << static_cast<char>(parity);
    }
  }
  got.clear();
  line.Arrived(ReadRequest(1, 40001, 1), std::nullopt);
  time.Run(std::chrono::seconds(1));
  EXPECT_TRUE(got.empty());
}

TEST_F(SimulatedLine, JoinsNoBytesOfDifferentLines) {
  Put(1, "9600,n,8,1");
  Start();
  const Bytes request = ReadRequest(1, 40001, 1);
  Arrive(Bytes(request.begin(), request.begin() + 4), "9600,e,8,1");
  Arrive(Bytes(request.begin() + 4, request.end()));
  time.Run(milliseconds(100));
  EXPECT_TRUE(got.empty());
}

TEST_F(SimulatedLine, AnswersOnItsNewLineAfterAReset) {
  Put(1, "9600,n,8,1");
  Start();
  Exchange(WriteRequest(1, 40073, 0x18));
  Exchange(WriteRequest(1, 40074, 0x0302));
  EXPECT_EQ(Exchange(WriteRequest(1, 40011, 1)), WriteRequest(1, 40011, 1));
  EXPECT_TRUE(Exchange(ReadRequest(1, 40001, 1)).empty());
  EXPECT_TRUE(Exchange(ReadRequest(2, 40001, 1)).empty());
  EXPECT_EQ(Exchange(ReadRequest(2, 40001, 1), "38400,o,8,1"), ReadReply(2, {0x0103}));
}

TEST_F(SimulatedLine, HasSeveralModulesByTheirAddresses) {
  Put(StillWith({{40003, 111}}));
  ModuleOptions other = StillWith({{40003, 222}});
  other.setting.address = 9;
  Put(other);
  Start();
  EXPECT_EQ(Exchange(ReadRequest(1, 40003, 1)), ReadReply(1, {111}));
  EXPECT_EQ(Exchange(ReadRequest(9, 40003, 1)), ReadReply(9, {222}));
  EXPECT_TRUE(Exchange(ReadRequest(5, 40003, 1)).empty());
  EXPECT_TRUE(Exchange(WriteRequest(0, 40003, 7)).empty());
  EXPECT_EQ(Exchange(ReadRequest(1, 40003, 1)), ReadReply(1, {7}));
  EXPECT_EQ(Exchange(ReadRequest(9, 40003, 1)), ReadReply(9, {7}));
}

TEST_F(SimulatedLine, AnswersTwoRequestsThatArriveTogetherOneAfterTheOther) {
  Put(1, "9600,n,8,1");
  Start();
  Bytes both = WriteRequest(0, 40003, 7);
  for (const std::uint8_t byte : ReadRequest(1, 40003, 1)) both.push_back(byte);
  EXPECT_EQ(Exchange(both), ReadReply(1, {7}));
}

TEST_F(SimulatedLine, SendsNoFasterWhenOneReplyWaitsForAnother) {
  Put(1, "9600,n,8,1");
  Start();
  Bytes both = ReadRequest(1, 40002, 9);
  for (const std::uint8_t byte : ReadRequest(1, 40002, 9)) both.push_back(byte);
  EXPECT_EQ(Exchange(both).size(), 46U);
  EXPECT_GE(lastByte, LineOf("9600,n,8,1").TimeOf(8 + 3.5 + 23 + 23) - microseconds(1));
}

TEST_F(SimulatedLine, TakesTheTimeThatTheBytesTakeOnTheLine) {
  struct Row {
    const char* line;
    double bits;
    double baud;
    core::Duration turnRound;  // 3.5 characters, 2 ms at least
  };
  const std::vector<Row> rows = {{"1200,n,8,1", 10, 1200, microseconds(29166)},
                                 {"9600,n,8,1", 10, 9600, microseconds(3645)},
                                 {"9600,e,8,1", 11, 9600, microseconds(4010)},
                                 {"57600,o,8,1", 11, 57600, milliseconds(2)}};
  for (const Row& row : rows) {
    SCOPED_TRACE(row.line);
    Put(1, row.line);
    Start();
    using Microseconds = std::chrono::duration<double, std::micro>;
    const auto lineTime = [&row](double characters) {
      return characters * row.bits / row.baud * 1e6 + Microseconds(row.turnRound).count();
    };
    const Bytes reply = Exchange(ReadRequest(1, 40002, 9), row.line);
    ASSERT_EQ(reply.size(), 23U);
    EXPECT_NEAR(Microseconds(firstByte).count(), lineTime(8 + 1), 2.0);
    EXPECT_NEAR(Microseconds(lastByte).count(), lineTime(8 + 23), 2.0);
  }
}

TEST_F(SimulatedLine, WaitsForNoMoreThanTheRestOfARequestThatCameAtItsPace) {
  Put(1, "9600,n,8,1");
  Start();
  for (const std::uint8_t byte : ReadRequest(1, 40001, 1)) {
    time.Run(microseconds(1042));
    Arrive({byte});
  }
  time.Run(milliseconds(100));
  // The rest: the first byte counts from when it was here, not from when it began.
  EXPECT_LT(firstByte, microseconds(3646 + 1042 + 1042 + 10));
}

TEST_F(SimulatedLine, SendsASlowReplyByteByByteAndAFastOneInSlices) {
  Put(1, "1200,n,8,1");
  Start();
  Exchange(ReadRequest(1, 40002, 9), "1200,n,8,1");
  EXPECT_EQ(chunks, 23);
  chunks = 0;
  Put(1, "57600,n,8,1");
  Start();
  Exchange(ReadRequest(1, 40002, 9), "57600,n,8,1");
  EXPECT_GT(chunks, 1);
  EXPECT_LE(chunks, 4);
}

TEST_F(SimulatedLine, AnswersTwelveMillisecondsLaterByTheDelayFlag) {
  Put(1, "9600,n,8,1");
  Put(2, "9600,n,8,1");
  Start();
  Exchange(WriteRequest(2, 40009, 4));
  Exchange(ReadRequest(1, 40001, 1));
  const core::Duration usual = lastByte;
  Exchange(ReadRequest(2, 40001, 1));
  EXPECT_EQ(lastByte - usual, milliseconds(12));
}

TEST_F(SimulatedLine, SendsTheRestOfALateReplyBeforeTheNextOne) {
  Put(1, "1200,n,8,1");
  Start();
  Arrive(ReadRequest(1, 40001, 2), "1200,n,8,1");
  time.Run(milliseconds(110));
  ASSERT_FALSE(got.empty());
  Arrive(ReadRequest(1, 40001, 1), "1200,n,8,1");
  time.Run(std::chrono::seconds(1));
  Bytes both = ReadReply(1, {0x0103, 0});
  for (const std::uint8_t byte : ReadReply(1, {0x0103})) both.push_back(byte);
  EXPECT_EQ(got, both);
}

TEST_F(SimulatedLine, SendsNothingMoreWhenTheMasterHasGone) {
  Put(1, "9600,n,8,1");
  Line& line = Start();
  Arrive(ReadRequest(1, 40002, 9));
  time.Run(milliseconds(20));
  const std::size_t before = got.size();
  line.Forget();
  time.Run(std::chrono::seconds(1));
  EXPECT_GT(before, 0U);
  EXPECT_EQ(got.size(), before);
  EXPECT_EQ(Exchange(ReadRequest(1, 40001, 1)), ReadReply(1, {0x0103}));
}

}  // namespace
}  // namespace tarvo::simulator
