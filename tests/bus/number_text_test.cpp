#include "state/number_text.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>

#include "core/fault.h"

namespace tarvo::state {
namespace {

TEST(NumberText, ReadsDecimalsWithEitherSeparator) {
  EXPECT_DOUBLE_EQ(ToNumber("12.5"), 12.5);
  EXPECT_DOUBLE_EQ(ToNumber("12,5"), 12.5);
  EXPECT_DOUBLE_EQ(ToNumber(" -0.25 "), -0.25);
  EXPECT_DOUBLE_EQ(ToNumber(".5"), 0.5);
  EXPECT_DOUBLE_EQ(ToNumber("5."), 5);
}

TEST(NumberText, ReadsAnyNumberOfDecimals) {
  EXPECT_DOUBLE_EQ(ToNumber("0." + std::string(400, '1')), 1.0 / 9);
  EXPECT_DOUBLE_EQ(ToNumber("0." + std::string(400, '0') + "1"), 0);
}

TEST(NumberText, TakesTooManyDigitsForBeyondAllBounds) {
  EXPECT_EQ(ToNumber(std::string(400, '9')), std::numeric_limits<double>::infinity());
  EXPECT_EQ(ToNumber("-" + std::string(400, '9')), -std::numeric_limits<double>::infinity());
}

TEST(NumberText, RoundsTiesToTheEvenInteger) {
  EXPECT_EQ(RoundToInteger(2.5), 2);
  EXPECT_EQ(RoundToInteger(3.5), 4);
  EXPECT_EQ(RoundToInteger(-2.5), -2);
  EXPECT_EQ(RoundToInteger(2147483647.4), 2147483647);
}

TEST(NumberText, RefusesToRoundWhatFitsNoInteger) {
  for (const double value : {2147483647.5, -2147483648.6, std::numeric_limits<double>::infinity(), std::nan("")}) {
    EXPECT_THROW(RoundToInteger(value), core::Fault) << value;
  }
}

}  // namespace
}  // namespace tarvo::state
