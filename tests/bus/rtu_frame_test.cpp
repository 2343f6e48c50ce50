#include "bus/rtu_frame.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <string_view>
#include <vector>

namespace tarvo::bus {
namespace {

std::vector<std::uint8_t> BytesOf(std::string_view text) {
  return {text.begin(), text.end()};
}

TEST(RtuFrame, GivesTheCrcOfKnownVectors) {
  struct Vector {
    std::vector<std::uint8_t> bytes;
    std::uint16_t crc;
  };
  const std::vector<Vector> vectors = {
      {BytesOf("123456789"), 0x4B37},
      {{}, 0xFFFF},
      {{0x02, 0x07}, 0x1241},
      {{0x01, 0x03, 0x00, 0x00, 0x00, 0x01}, 0x0A84},
      {{0x11, 0x03, 0x00, 0x6B, 0x00, 0x03}, 0x8776},
      {{0x01, 0x06, 0x00, 0x01, 0x00, 0x03}, 0x0B98},
  };
  for (const Vector& vector : vectors) EXPECT_EQ(Crc16(vector.bytes), vector.crc) << std::hex << vector.crc;
}

TEST(RtuFrame, AppendsTheCrcLowByteFirst) {
  std::array<std::uint8_t, 8> frame{0x01, 0x03, 0x00, 0x00, 0x00, 0x01};
  EXPECT_EQ(AppendCrc(frame, 6), 8U);
  EXPECT_EQ(frame[6], 0x84);
  EXPECT_EQ(frame[7], 0x0A);
}

TEST(RtuFrame, SeesEachSingleBitThatIsWrong) {
  std::array<std::uint8_t, 7> frame{0x01, 0x03, 0x02, 0x01, 0x03};
  AppendCrc(frame, 5);
  ASSERT_TRUE(CrcFits(frame));
  for (std::size_t bit = 0; bit < 8 * frame.size(); ++bit) {
    std::array<std::uint8_t, 7> damaged = frame;
    damaged[bit / 8] = static_cast<std::uint8_t>(damaged[bit / 8] ^ (1U << bit % 8));
    EXPECT_FALSE(CrcFits(damaged)) << "bit " << bit;
  }
}

TEST(RtuFrame, TakesNothingShorterThanAFrame) {
  EXPECT_FALSE(CrcFits({}));
  const std::array<std::uint8_t, 2> crcOfNothing{0xFF, 0xFF};
  EXPECT_FALSE(CrcFits(crcOfNothing));
}

}  // namespace
}  // namespace tarvo::bus
