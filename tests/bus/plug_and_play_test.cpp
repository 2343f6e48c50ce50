#include "bus/rawlink/plug_and_play.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <vector>

#include "core/fault.h"
#include "raw_bench.h"

namespace tarvo::bus {
namespace {

using core::milliseconds;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::int32_t kWait = 200;

/// The good reply of slave 1 to a read of one register that holds 0x1234.
const RawFrame kReply{0x01, 0x03, 0x02, 0x12, 0x34, 0xB5, 0x33};
constexpr std::int32_t kReplyValue = 0x1234;

/// The good reply to a read of 40001 to 40003: 0x0103, 0x8000, 0xFFFF.
const RawFrame kReplyOfThree{0x01, 0x03, 0x06, 0x01, 0x03, 0x80, 0x00, 0xFF, 0xFF, 0x4C, 0xD4};

const RawFrame kReplyOfEleven{0x01, 0x03, 0x16, 0x00, 0x01, 0x01, 0x02, 0x02, 0x03, 0x03, 0x04, 0x04, 0x05, 0x05,
                              0x06, 0x06, 0x07, 0x07, 0x08, 0x08, 0x09, 0x09, 0x0A, 0x0A, 0x0B, 0x4D, 0x9D};
const RawFrame kReplyOfTwelve{0x01, 0x03, 0x18, 0x00, 0x01, 0x01, 0x02, 0x02, 0x03, 0x03, 0x04, 0x04, 0x05, 0x05, 0x06,
                              0x06, 0x07, 0x07, 0x08, 0x08, 0x09, 0x09, 0x0A, 0x0A, 0x0B, 0x0B, 0x0C, 0xA7, 0x11};

/// A parameter: flags 0xA5, first name byte 200, up to 5000, down to 65534, at 0x0142.
const RawFrame kParameter{0x01, 0x6E, 0xA5, 0xC8, 0x64, 0x72, 0x65, 0x73, 0x73, 0x20,
                          0x31, 0x13, 0x88, 0xFF, 0xFE, 0x01, 0x42, 0x6A, 0xBA};
/// The same with one byte more before the CRC.
const RawFrame kLongParameter{0x01, 0x6E, 0xA5, 0xC8, 0x64, 0x72, 0x65, 0x73, 0x73, 0x20,
                              0x31, 0x13, 0x88, 0xFF, 0xFE, 0x01, 0x42, 0x77, 0x7A, 0x09};
/// The same with one byte less, and a right CRC.
const RawFrame kShortParameter{0x01, 0x6E, 0xA5, 0xC8, 0x64, 0x72, 0x65, 0x73, 0x73,
                               0x20, 0x31, 0x13, 0x88, 0xFF, 0xFE, 0x01, 0xE5, 0x2B};

/// What a call throws; empty when it throws nothing.
std::string FaultOf(const std::function<void()>& call) {
  try {
    call();
  } catch (const core::Fault& fault) {
    return fault.what();
  }
  return {};
}

class PlugAndPlayTest : public testing::Test, protected RawBench {
 protected:
  PlugAndPlayTest() { Link.WordCount = 1; }

  /// The frame of the present state, and what `expected` becomes.
  RawFrame Build() {
    const std::size_t length = Link.BuildFrame(Expected, Link.WordCount);
    return {Link.TxBuffer.begin(), Link.TxBuffer.begin() + static_cast<std::ptrdiff_t>(length)};
  }
  RawFrame Build(std::uint8_t slave, std::uint8_t function, std::int32_t number, std::int32_t wordCount) {
    Link.SlaveByte = slave;
    Link.FunctionByte = function;
    Link.RegisterNumber = number;
    Link.WordCount = wordCount;
    return Build();
  }

  /// Decodes `reply` as the answer to `function`.
  PlugAndPlay::Decoded Decode(const RawFrame& reply, std::uint8_t function = 3, std::int32_t wordCount = 1) {
    Link.FunctionByte = function;
    Link.WordCount = wordCount;
    return Link.DecodeReply(Result, Link.CopyInput(TextOf(reply)));
  }

  PlugAndPlay& Link = Page.Link;
  std::int32_t Expected = -1;
  std::int32_t Result = -1;
};

TEST_F(PlugAndPlayTest, BuildsAReadOfEightBytes) {
  EXPECT_THAT(Build(1, 3, 40001, 1), ElementsAre(0x01, 0x03, 0x00, 0x00, 0x00, 0x01, 0x84, 0x0A));
}

TEST_F(PlugAndPlayTest, BuildsAReadWithTheHighBytesFirst) {
  EXPECT_THAT(Build(17, 3, 40001 + 0x1234, 11), ElementsAre(0x11, 0x03, 0x12, 0x34, 0x00, 0x0B, 0x42, 0x2B));
}

TEST_F(PlugAndPlayTest, BuildsAReadUpToTheLastRegisterAndSlave) {
  EXPECT_THAT(Build(255, 3, 40001 + 0xFFFF, 0xFFFF), ElementsAre(0xFF, 0x03, 0xFF, 0xFF, 0xFF, 0xFF, 0x51, 0x80));
}

TEST_F(PlugAndPlayTest, BuildsAReadOfAParameterInSixBytes) {
  EXPECT_THAT(Build(1, 110, 40001, 1), ElementsAre(0x01, 0x6E, 0x00, 0x00, 0x60, 0x05));
  EXPECT_THAT(Build(9, 110, 40001 + 0x1234, 1), ElementsAre(0x09, 0x6E, 0x12, 0x34, 0x6F, 0x12));
}

TEST_F(PlugAndPlayTest, BuildsASingleWriteWithTheValueBehindTheRegister) {
  EXPECT_THAT(Build(7, 6, 40066, 0x8102), ElementsAre(0x07, 0x06, 0x00, 0x41, 0x81, 0x02, 0x38, 0x29));
}

TEST_F(PlugAndPlayTest, BuildsTheHeadOfAWriteOfSeveralLikeASingleWrite) {
  EXPECT_THAT(Build(7, 16, 40066, 2), ElementsAre(0x07, 0x10, 0x00, 0x41, 0x00, 0x02, 0x11, 0xBA));
}

struct LengthRow {
  std::uint8_t function;
  std::int32_t wordCount;
  std::int32_t expected;
};

class ExpectedLengths : public PlugAndPlayTest, public testing::WithParamInterface<LengthRow> {};

TEST_P(ExpectedLengths, GoByTheFunction) {
  Build(1, GetParam().function, 40001, GetParam().wordCount);
  EXPECT_EQ(Expected, GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(PlugAndPlay, ExpectedLengths,
                         testing::Values(LengthRow{3, 1, 8}, LengthRow{3, 11, 8}, LengthRow{6, 1, 8},
                                         LengthRow{6, 0x8102, 8}, LengthRow{110, 1, 20}, LengthRow{110, 5, 20},
                                         LengthRow{16, 1, 7}, LengthRow{16, 2, 9}, LengthRow{16, 11, 27}),
                         [](const testing::TestParamInfo<LengthRow>& row) {
                           return "Function" + std::to_string(row.param.function) + "Of" +
                                  std::to_string(row.param.wordCount);
                         });

TEST_F(PlugAndPlayTest, SendsEightBytesInOneGo) {
  ASSERT_TRUE(OpenPort());
  Build(1, 3, 40001, 1);
  Link.SendFrame(Page);
  EXPECT_THAT(Sent(), ElementsAre(RawFrame{0x01, 0x03, 0x00, 0x00, 0x00, 0x01, 0x84, 0x0A}));
}

TEST_F(PlugAndPlayTest, SendsTheEightByteLayoutAlsoForAParameter) {
  ASSERT_TRUE(OpenPort());
  Build(9, 110, 40001 + 0x1234, 1);
  Link.SendFrame(Page);
  EXPECT_THAT(Sent(), ElementsAre(RawFrame{0x09, 0x6E, 0x12, 0x34, 0x00, 0x01, 0x6C, 0x3D}));
}

TEST_F(PlugAndPlayTest, SendsWhatItsFieldsSayAndNotWhatWasBuilt) {
  ASSERT_TRUE(OpenPort());
  Build(1, 3, 40001, 1);
  Link.SlaveByte = 7;
  Link.FunctionByte = 6;
  Link.RegisterNumber = 40066;
  Link.WordCount = 0x8102;
  Link.SendFrame(Page);
  EXPECT_THAT(Sent(), ElementsAre(RawFrame{0x07, 0x06, 0x00, 0x41, 0x81, 0x02, 0x38, 0x29}));
}

TEST_F(PlugAndPlayTest, KeepsTheFrameThatItSent) {
  ASSERT_TRUE(OpenPort());
  Build(1, 110, 40001, 1);
  Build(1, 3, 40001, 1);
  Link.TxBuffer.fill(0xEE);
  Link.SendFrame(Page);
  EXPECT_EQ(RawFrame(Link.TxBuffer.begin(), Link.TxBuffer.begin() + 8),
            (RawFrame{0x01, 0x03, 0x00, 0x00, 0x00, 0x01, 0x84, 0x0A}));
}

TEST_F(PlugAndPlayTest, GivesTheCrcWithItsBytesSwapped) {
  const RawFrame bytes{0x01, 0x03, 0x00, 0x00, 0x00, 0x01};
  EXPECT_EQ(PlugAndPlay::CrcOverReply(bytes, 0, 5), 0x840A);
  std::copy(bytes.begin(), bytes.end(), Link.TxBuffer.begin());
  EXPECT_EQ(Link.CrcOverFrame(0, 6), 0x840A);
}

TEST_F(PlugAndPlayTest, TakesTheCrcOfASliceOnly) {
  const RawFrame bytes{0xEE, 0x03, 0x00, 0x00, 0x00, 0x01, 0xEE};
  EXPECT_EQ(PlugAndPlay::CrcOverReply(bytes, 1, 5), 0xA1C0);
  std::copy(bytes.begin(), bytes.end(), Link.TxBuffer.begin());
  EXPECT_EQ(Link.CrcOverFrame(1, 5), 0xA1C0);
}

TEST_F(PlugAndPlayTest, GivesTheCrcOfTheCheckText) {
  const std::string check = "123456789";
  const RawFrame bytes(check.begin(), check.end());
  EXPECT_EQ(PlugAndPlay::CrcOverReply(bytes, 0, 8), 0x374B);
}

TEST_F(PlugAndPlayTest, CopiesInputFromIndexOneOn) {
  Link.RxBuffer.fill(0xEE);
  EXPECT_EQ(Link.CopyInput(std::string("\x01\x00\xFF", 3)), 3U);
  EXPECT_EQ(RawFrame(Link.RxBuffer.begin(), Link.RxBuffer.begin() + 5), (RawFrame{0xEE, 0x01, 0x00, 0xFF, 0xEE}));
}

TEST_F(PlugAndPlayTest, CopiesNothingOfAnEmptyInput) {
  Link.RxBuffer.fill(0xEE);
  EXPECT_EQ(Link.CopyInput({}), 0U);
  EXPECT_THAT(Link.RxBuffer, Each(0xEE));
}

TEST_F(PlugAndPlayTest, CopiesUpTo256Bytes) {
  std::string text(256, 'x');
  text.back() = '\x7F';
  EXPECT_EQ(Link.CopyInput(text), 256U);
  EXPECT_EQ(Link.RxBuffer[1], 'x');
  EXPECT_EQ(Link.RxBuffer[256], 0x7F);
}

TEST_F(PlugAndPlayTest, RefusesToCopyMoreThan256Bytes) {
  for (const std::size_t size : {257U, 258U, 1000U}) {
    EXPECT_EQ(FaultOf([&] { Link.CopyInput(std::string(size, 'x')); }), "Subscript out of range") << size;
  }
}

TEST_F(PlugAndPlayTest, DecodesOneValue) {
  EXPECT_EQ(Decode(kReply), PlugAndPlay::kGood);
  EXPECT_EQ(Result, kReplyValue);
  EXPECT_EQ(Link.ResultTable[0], kReplyValue);
}

TEST_F(PlugAndPlayTest, DecodesSeveralValuesIntoItsTable) {
  EXPECT_EQ(Decode(kReplyOfThree, 3, 3), PlugAndPlay::kGood);
  EXPECT_THAT(std::vector(Link.ResultTable.begin(), Link.ResultTable.begin() + 4),
              ElementsAre(0x0103, 0x8000, 0xFFFF, 0));
  EXPECT_EQ(Result, 0xFFFF) << "the last one stands";
}

TEST_F(PlugAndPlayTest, DecodesValuesWithoutASign) {
  EXPECT_EQ(Decode({0x01, 0x03, 0x02, 0xFF, 0xFF, 0xB9, 0xF4}), PlugAndPlay::kGood);
  EXPECT_EQ(Result, 65535);
  EXPECT_EQ(Decode({0x01, 0x03, 0x02, 0x80, 0x00, 0xD9, 0x84}), PlugAndPlay::kGood);
  EXPECT_EQ(Result, 32768);
}

TEST_F(PlugAndPlayTest, DecodesElevenValues) {
  EXPECT_EQ(Decode(kReplyOfEleven, 3, 11), PlugAndPlay::kGood);
  EXPECT_THAT(Link.ResultTable,
              ElementsAre(0x0001, 0x0102, 0x0203, 0x0304, 0x0405, 0x0506, 0x0607, 0x0708, 0x0809, 0x090A, 0x0A0B));
  EXPECT_EQ(Result, 0x0A0B);
}

TEST_F(PlugAndPlayTest, HasNoRoomForATwelfthValue) {
  EXPECT_EQ(FaultOf([&] { Decode(kReplyOfTwelve, 3, 12); }), "Subscript out of range");
}

TEST_F(PlugAndPlayTest, DecodesTheReplyOfAnySlave) {
  EXPECT_EQ(Decode({0x09, 0x03, 0x02, 0x12, 0x34, 0x54, 0xF2}), PlugAndPlay::kGood);
  EXPECT_EQ(Result, kReplyValue);
}

TEST_F(PlugAndPlayTest, TakesNothingFromAReplyToAWrite) {
  EXPECT_EQ(Decode({0x01, 0x06, 0x00, 0x00, 0x12, 0x34, 0x84, 0xBD}, 6, 0x1234), PlugAndPlay::kGood);
  EXPECT_EQ(Decode({0x01, 0x10, 0x00, 0x00, 0x00, 0x01, 0x01, 0xC9}, 16), PlugAndPlay::kGood);
  EXPECT_EQ(Result, -1);
  EXPECT_THAT(Link.ResultTable, Each(0));
}

/// A reply that is no good answer to a read of `wordCount` registers.
struct BadReply {
  const char* name;
  RawFrame bytes;
  PlugAndPlay::Decoded decoded;
  std::uint8_t function = 3;
  std::int32_t wordCount = 1;
};

class BadReplies : public PlugAndPlayTest, public testing::WithParamInterface<BadReply> {
 protected:
  BadReplies() { Link.ResultTable.fill(0x5555); }

  void ExpectNothingDecoded() const {
    EXPECT_EQ(Result, -1);
    EXPECT_THAT(Link.ResultTable, Each(0x5555));
    EXPECT_EQ(Link.ParameterName, "");
    EXPECT_EQ(Link.ParameterFlags, 0);
    EXPECT_EQ(Link.ParameterMax, 0);
    EXPECT_EQ(Link.ParameterMin, 0);
    EXPECT_EQ(Link.ParameterAddress, 0);
  }
};

TEST_P(BadReplies, GiveTheirReasonAndNoValue) {
  const BadReply& bad = GetParam();
  // What came before lies in the buffer still.
  Link.CopyInput(TextOf(bad.function == 3 ? kReply : kParameter));
  EXPECT_EQ(Decode(bad.bytes, bad.function, bad.wordCount), bad.decoded);
  ExpectNothingDecoded();
}

constexpr PlugAndPlay::Decoded kNoReply = PlugAndPlay::kNoReply;
constexpr PlugAndPlay::Decoded kWrongCrc = PlugAndPlay::kWrongCrc;

const BadReply kBadReplies[] = {
    {"Empty", {}, kWrongCrc},
    {"OneByte", {0x01}, kWrongCrc},
    {"TwoBytesThatAreTheCrcOfNothing", {0xFF, 0xFF}, kWrongCrc},
    {"ThreeBytesWithTheirCrc", {0x01, 0x7E, 0x80}, kWrongCrc},
    {"FourBytesWithTheirCrc", {0x01, 0x03, 0x40, 0x21}, kNoReply},
    {"NoValues", {0x01, 0x03, 0x00, 0x20, 0xF0}, kNoReply},
    {"CrcBytesSwapped", {0x01, 0x03, 0x02, 0x12, 0x34, 0x33, 0xB5}, kWrongCrc},
    {"OneByteMore", {0x01, 0x03, 0x02, 0x12, 0x34, 0xB5, 0x33, 0x55}, kWrongCrc},
    {"NoiseBefore", {0x55, 0x01, 0x03, 0x02, 0x12, 0x34, 0xB5, 0x33}, kWrongCrc},
    // The CRC does not see zeros behind a frame that ends in its own CRC.
    {"OneZeroMore", {0x01, 0x03, 0x02, 0x12, 0x34, 0xB5, 0x33, 0x00}, kNoReply},
    {"TwoZerosMore", {0x01, 0x03, 0x02, 0x12, 0x34, 0xB5, 0x33, 0x00, 0x00}, kNoReply},
    {"OneByteMoreBeforeTheCrc", {0x01, 0x03, 0x02, 0x12, 0x34, 0x00, 0xF2, 0xB7}, kNoReply},
    {"CountAboveItsLength", {0x01, 0x03, 0x04, 0x12, 0x34, 0x55, 0x32}, kNoReply},
    {"CountAboveItsLengthAsAsked", {0x01, 0x03, 0x04, 0x12, 0x34, 0x55, 0x32}, kNoReply, 3, 2},
    {"CountBelowItsLength", {0x01, 0x03, 0x00, 0x12, 0x34, 0x14, 0xF3}, kNoReply},
    {"HalfAValue", {0x01, 0x03, 0x01, 0x12, 0x70, 0x45}, kNoReply},
    {"AValueAndAHalf", {0x01, 0x03, 0x03, 0x12, 0x34, 0x56, 0x73, 0x75}, kNoReply},
    {"MoreValuesThanAsked", {0x01, 0x03, 0x04, 0x12, 0x34, 0x56, 0x78, 0x81, 0x07}, kNoReply},
    {"FewerValuesThanAsked", {0x01, 0x03, 0x04, 0x12, 0x34, 0x56, 0x78, 0x81, 0x07}, kNoReply, 3, 3},
    {"OneValueWhereTwoWereAsked", kReply, kNoReply, 3, 2},
    {"AnotherFunction", {0x01, 0x04, 0x02, 0x12, 0x34, 0xB4, 0x47}, kNoReply},
    {"AnEchoOfAWrite", {0x01, 0x06, 0x00, 0x00, 0x12, 0x34, 0x84, 0xBD}, kNoReply},
    {"AnException", {0x01, 0x83, 0x02, 0xC0, 0xF1}, kNoReply},
    {"TheRequestItself", {0x01, 0x03, 0x00, 0x00, 0x00, 0x01, 0x84, 0x0A}, kNoReply},
    {"AParameter", kParameter, kNoReply},
    {"AReadWhereAParameterWasAsked", kReply, kNoReply, kReadParameter},
    {"AnExceptionToAParameter", {0x01, 0xEE, 0x01, 0xAC, 0x60}, kNoReply, kReadParameter},
    {"AParameterOfFourBytes", {0x01, 0x6E, 0x81, 0xCC}, kNoReply, kReadParameter},
    {"AParameterOfEighteenBytes", kShortParameter, kNoReply, kReadParameter},
};

INSTANTIATE_TEST_SUITE_P(PlugAndPlay, BadReplies, testing::ValuesIn(kBadReplies),
                         [](const testing::TestParamInfo<BadReply>& row) { return row.param.name; });

/// Good replies that are damaged in every place.
struct GoodReply {
  const char* name;
  RawFrame bytes;
  std::uint8_t function;
  std::int32_t wordCount;
};

class DamagedReplies : public PlugAndPlayTest, public testing::WithParamInterface<GoodReply> {
 protected:
  PlugAndPlay::Decoded DecodeDamaged(const RawFrame& bytes) {
    return Decode(bytes, GetParam().function, GetParam().wordCount);
  }
};

TEST_P(DamagedReplies, AreGoodWithoutDamage) {
  EXPECT_EQ(DecodeDamaged(GetParam().bytes), PlugAndPlay::kGood);
}

TEST_P(DamagedReplies, AreCrcErrorsForEachBitThatIsWrong) {
  for (std::size_t bit = 0; bit < 8 * GetParam().bytes.size(); ++bit) {
    RawFrame damaged = GetParam().bytes;
    damaged[bit / 8] = static_cast<std::uint8_t>(damaged[bit / 8] ^ (1U << bit % 8));
    EXPECT_EQ(DecodeDamaged(damaged), PlugAndPlay::kWrongCrc) << "bit " << bit;
  }
  EXPECT_EQ(Result, -1);
}

TEST_P(DamagedReplies, AreCrcErrorsForEachByteThatIsInverted) {
  for (std::size_t at = 0; at < GetParam().bytes.size(); ++at) {
    RawFrame damaged = GetParam().bytes;
    damaged[at] = static_cast<std::uint8_t>(~damaged[at]);
    EXPECT_EQ(DecodeDamaged(damaged), PlugAndPlay::kWrongCrc) << "byte " << at;
  }
  EXPECT_EQ(Result, -1);
}

TEST_P(DamagedReplies, AreCrcErrorsAtEachLengthThatIsTooShort) {
  for (std::size_t length = 0; length < GetParam().bytes.size(); ++length) {
    // The rest of the whole reply still lies behind the torn one.
    Link.CopyInput(TextOf(GetParam().bytes));
    const RawFrame torn(GetParam().bytes.begin(), GetParam().bytes.begin() + static_cast<std::ptrdiff_t>(length));
    EXPECT_EQ(DecodeDamaged(torn), PlugAndPlay::kWrongCrc) << length << " bytes";
  }
  EXPECT_EQ(Result, -1);
}

TEST_P(DamagedReplies, AreCrcErrorsWithAnyByteBehindThemButZero) {
  for (int more = 1; more < 256; ++more) {
    RawFrame damaged = GetParam().bytes;
    damaged.push_back(static_cast<std::uint8_t>(more));
    EXPECT_EQ(DecodeDamaged(damaged), PlugAndPlay::kWrongCrc) << "byte " << more;
  }
  EXPECT_EQ(Result, -1);
}

const GoodReply kGoodReplies[] = {
    {"OneValue", kReply, 3, 1},
    {"ThreeValues", kReplyOfThree, 3, 3},
    {"ElevenValues", kReplyOfEleven, 3, 11},
    {"Parameter", kParameter, kReadParameter, 1},
};

INSTANTIATE_TEST_SUITE_P(PlugAndPlay, DamagedReplies, testing::ValuesIn(kGoodReplies),
                         [](const testing::TestParamInfo<GoodReply>& row) { return row.param.name; });

TEST_F(PlugAndPlayTest, DecodesAParameterOfNineteenBytesAndOfTwenty) {
  RawFrame withZero = kParameter;
  withZero.push_back(0);
  for (const RawFrame& reply : {kParameter, kLongParameter, withZero}) {
    Link.ParameterFlags = 0;
    Link.ParameterName.clear();
    Link.ParameterMax = Link.ParameterMin = Link.ParameterAddress = 0;
    EXPECT_EQ(Decode(reply, kReadParameter), PlugAndPlay::kGood);
    EXPECT_EQ(Link.ParameterFlags, 0xA5);
    EXPECT_EQ(Link.ParameterName, "200") << "the first name byte in decimal";
    EXPECT_EQ(Link.ParameterMax, 5000);
    EXPECT_EQ(Link.ParameterMin, 65534);
    EXPECT_EQ(Link.ParameterAddress, 0x0142);
  }
}

TEST_F(PlugAndPlayTest, AParameterLeavesTheValuesAsTheyWere) {
  Link.ResultTable.fill(0x5555);
  EXPECT_EQ(Decode(kParameter, kReadParameter), PlugAndPlay::kGood);
  EXPECT_EQ(Result, -1);
  EXPECT_THAT(Link.ResultTable, Each(0x5555));
}

/// One exchange with an open port.
class RawExchange : public PlugAndPlayTest {
 protected:
  RawExchange() {
    Link.SlaveByte = 1;
    EXPECT_TRUE(OpenPort());
  }

  void Exchange(int index) { Link.ExchangeParameter(Page, index, kWait); }
};

TEST_F(RawExchange, AsksForTheRegisterOfItsIndex) {
  Link.FunctionByte = kReadParameter;
  Exchange(0);
  Link.SlaveByte = 17;
  Link.WordCount = 11;
  Exchange(0x1234);
  EXPECT_THAT(Sent(), ElementsAre(RawFrame{0x01, 0x03, 0x00, 0x00, 0x00, 0x01, 0x84, 0x0A},
                                  RawFrame{0x11, 0x03, 0x12, 0x34, 0x00, 0x0B, 0x42, 0x2B}));
}

TEST_F(RawExchange, LeavesItsFunctionRegisterAndLengthsBehind) {
  Exchange(5);
  EXPECT_EQ(Link.FunctionByte, 3);
  EXPECT_EQ(Link.RegisterNumber, 40006);
  EXPECT_EQ(Link.ExpectedLength, 8);
  EXPECT_EQ(Page.MSComm1.RThreshold(), 8);
}

TEST_F(RawExchange, ShowsTheValueInTheControlOfItsIndex) {
  Answer(kReply);
  for (const std::size_t index : {std::size_t{0}, std::size_t{7}, std::size_t{19}}) {
    const std::vector<std::string> expected = ShownWith(index, "4660");
    Exchange(static_cast<int>(index));
    EXPECT_EQ(Shown(), expected) << index;
  }
  EXPECT_EQ(Link.ResultWord, 4660);
}

TEST_F(RawExchange, ShowsTheLastOfSeveralValues) {
  Answer(kReplyOfThree);
  Link.WordCount = 3;
  const std::vector<std::string> expected = ShownWith(2, "65535");
  Exchange(2);
  EXPECT_EQ(Shown(), expected);
}

TEST_F(RawExchange, TakesTheWholeWaitAndLetsNothingRunMeanwhile) {
  const core::TimePoint start = Scheduler.Now();
  core::TimePoint ran{};
  core::Call call(Scheduler, [&] { ran = Scheduler.Now(); });
  call.After(milliseconds(50));
  Answer(kReply);
  Exchange(0);
  EXPECT_EQ(Scheduler.Now() - start, milliseconds(200));
  EXPECT_EQ(ran, core::TimePoint{});
  Scheduler.RunReady();
  EXPECT_EQ(ran - start, milliseconds(200));
}

TEST_F(RawExchange, TakesAnAnswerAtTheEndOfItsWait) {
  Answer(kReply, milliseconds(200));
  Exchange(0);
  EXPECT_EQ(Page.Parameter[0].Caption(), "4660");
}

TEST_F(RawExchange, DoesNotTakeAnAnswerAfterItsWait) {
  const std::vector<std::string> before = Shown();
  Answer(kReply, milliseconds(200) + core::microseconds(1));
  Exchange(0);
  EXPECT_EQ(Shown(), before);
}

TEST_F(RawExchange, ThrowsALateAnswerAwayBeforeItAsksAgain) {
  const std::vector<std::string> before = Shown();
  Answer(kReply, milliseconds(300));
  Exchange(0);
  Line.OnWrite = nullptr;
  Scheduler.Run(milliseconds(500));
  Exchange(1);
  EXPECT_EQ(Shown(), before);
  EXPECT_EQ(Sent().size(), 2U);
}

TEST_F(RawExchange, TakesNeitherOfTwoAnswersThatComeTogether) {
  const std::vector<std::string> before = Shown();
  RawFrame both = kReply;
  both.insert(both.end(), kReply.begin(), kReply.end());
  Answer(both);
  Exchange(0);
  EXPECT_EQ(Shown(), before);
}

TEST_F(RawExchange, TakesAnAnswerThatComesByteByByte) {
  Line.OnWrite = [this](std::span<const std::uint8_t> /*request*/) {
    Line.DeliverOneByOne(kReply, milliseconds(5), milliseconds(30));
  };
  Exchange(0);
  EXPECT_EQ(Page.Parameter[0].Caption(), "4660");
}

TEST_F(RawExchange, ShowsNothingOfAnAnswerThatIsNotComplete) {
  const std::vector<std::string> before = Shown();
  Line.OnWrite = [this](std::span<const std::uint8_t> /*request*/) {
    Line.DeliverOneByOne(kReply, milliseconds(5), milliseconds(40));
  };
  Exchange(0);
  EXPECT_EQ(Shown(), before);
}

TEST_F(RawExchange, DecodesNothingInSilence) {
  // What came before lies in the buffer still.
  Link.CopyInput(TextOf(kReply));
  Link.ResultWord = 77;
  const std::vector<std::string> before = Shown();
  Exchange(0);
  EXPECT_EQ(Shown(), before);
  EXPECT_EQ(Link.ResultWord, 77);
}

TEST_F(RawExchange, ShowsNothingOfABadReply) {
  const std::vector<std::string> before = Shown();
  for (const BadReply& bad : kBadReplies) {
    if (bad.function != 3) continue;
    Link.WordCount = bad.wordCount;
    Answer(bad.bytes);
    Exchange(4);
    EXPECT_EQ(Shown(), before) << bad.name;
  }
}

TEST_F(RawExchange, AsksOnceAndNoSecondTimeAfterABadReply) {
  Answer({0x01, 0x83, 0x02, 0xC0, 0xF1});
  Exchange(0);
  EXPECT_EQ(Sent().size(), 1U);
}

TEST_F(RawExchange, IsAFaultWithAnAnswerOfMoreThan256Bytes) {
  Answer(RawFrame(256, 0x55));
  EXPECT_EQ(FaultOf([&] { Exchange(0); }), "");
  Answer(RawFrame(257, 0x55));
  EXPECT_EQ(FaultOf([&] { Exchange(0); }), "Subscript out of range");
}

TEST_F(RawExchange, IsAFaultWithAnAnswerForAnIndexThatHasNoControl) {
  Answer(kReply);
  EXPECT_EQ(FaultOf([&] { Exchange(1000); }), "Subscript out of range");
}

TEST_F(RawExchange, IsNoFaultInSilenceForAnIndexThatHasNoControl) {
  EXPECT_EQ(FaultOf([&] { Exchange(1000); }), "");
  EXPECT_EQ(Sent().size(), 1U);
}

TEST_F(RawExchange, WithTheDeviceGoneSendsAndShowsNothing) {
  const std::vector<std::string> before = Shown();
  Answer(kReply);
  Line.Lose();
  Scheduler.RunReady();
  EXPECT_EQ(FaultOf([&] { Exchange(0); }), "");
  EXPECT_EQ(Shown(), before);
  EXPECT_THAT(Sent(), IsEmpty());
}

TEST_F(RawExchange, WithTheDeviceGoneWhileItWaitsShowsNothing) {
  const std::vector<std::string> before = Shown();
  Line.OnWrite = [this](std::span<const std::uint8_t> /*request*/) { Line.Lose(); };
  EXPECT_EQ(FaultOf([&] { Exchange(0); }), "");
  Scheduler.RunReady();
  EXPECT_EQ(FaultOf([&] { Exchange(1); }), "");
  EXPECT_EQ(Shown(), before);
  EXPECT_EQ(Sent().size(), 1U);
}

TEST_F(RawExchange, WithThePortClosedSendsAndShowsNothing) {
  const std::vector<std::string> before = Shown();
  Answer(kReply);
  ASSERT_TRUE(Page.MSComm1.SetPortOpen(false).Ok());
  EXPECT_EQ(FaultOf([&] { Exchange(0); }), "");
  EXPECT_EQ(Shown(), before);
  EXPECT_THAT(Sent(), IsEmpty());
}

}  // namespace
}  // namespace tarvo::bus
