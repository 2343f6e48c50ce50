#include "state/word.h"

#include <gtest/gtest.h>

namespace tarvo::state {
namespace {

using namespace literals;

TEST(Word, ReadsItsBitsBothWays) {
  EXPECT_EQ(Word(0x8001).Unsigned(), 32769);
  EXPECT_EQ(Word(0x8001).Signed(), -32767);
  EXPECT_EQ(Word(0x7FFF).Signed(), 32767);
  EXPECT_EQ(Word(0xFFFF).Signed(), -1);
  EXPECT_EQ(Word().Unsigned(), 0);
}

TEST(Word, KeepsTheLowSixteenBits) {
  EXPECT_EQ(Word(0x12345678).Unsigned(), 0x5678);
  EXPECT_EQ(Word(static_cast<unsigned>(-2)).Unsigned(), 0xFFFE);
}

TEST(Word, GivesItsBytes) {
  EXPECT_EQ(Word(0x0183).High(), 0x01);
  EXPECT_EQ(Word(0x0183).Low(), 0x83);
  EXPECT_EQ(Word(0xFF00).High(), 0xFF);
}

TEST(Word, SetsAndClearsByMask) {
  EXPECT_EQ(Word(0x0080).Or(0x0001), Word(0x0081));
  EXPECT_EQ(Word(0x0081).And(0xFFFE), Word(0x0080));
  EXPECT_TRUE(Word(0x0080).Has(0x0080));
  EXPECT_FALSE(Word(0x0080).Has(0x0101));
}

TEST(Register, HasTheAddressOfItsFiveDigits) {
  EXPECT_EQ("40001"_reg.LineAddress(), 0);
  EXPECT_EQ("40066"_reg.LineAddress(), 65);
  EXPECT_EQ("49999"_reg.LineAddress(), 9998);
  EXPECT_EQ("40009"_reg.Number(), 40009);
}

TEST(Register, CountsOnAndBack) {
  EXPECT_EQ("40002"_reg + 64, "40066"_reg);
  EXPECT_EQ("40009"_reg - "40002"_reg, 7);
  EXPECT_LT("40002"_reg, "40009"_reg);
}

}  // namespace
}  // namespace tarvo::state
