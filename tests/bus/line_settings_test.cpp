#include "bus/line_settings.h"

#include <gtest/gtest.h>

#include <string>

namespace tarvo::bus {
namespace {

TEST(LineSettings, UnderstandsEachSpeedWithEachParity) {
  for (const int baud : {1200, 2400, 4800, 9600, 19200, 38400, 57600}) {
    for (const char parity : {'n', 'e', 'o'}) {
      const std::string text = std::to_string(baud) + "," + parity + ",8,1";
      const auto line = LineSettings::Parse(text);
      ASSERT_TRUE(line) << text;
      EXPECT_EQ(line->baud, baud) << text;
      EXPECT_EQ(static_cast<char>(line->parity), parity) << text;
    }
  }
}

TEST(LineSettings, UnderstandsNothingElse) {
  for (const char* text : {"",
                           ",",
                           "9600",
                           "9600,",
                           "9600,n",
                           "9600,n,8",
                           "9600,n,8,",
                           "9600,n,8,2",
                           "9600,n,7,1",
                           "9600,m,8,1",
                           "9600,n,8,1 ",
                           " 9600,n,8,1",
                           "9600, n,8,1",
                           "9600;n;8;1",
                           "9601,n,8,1",
                           "0,n,8,1",
                           "-9600,n,8,1",
                           "300,n,8,1",
                           "115200,n,8,1",
                           "99999999999999999999,n,8,1",
                           "n,8,1",
                           "9600,,8,1",
                           "9600,ne,8,1",
                           "9600.0,n,8,1",
                           "9600,n,8,1,1",
                           "COM1"}) {
    EXPECT_FALSE(LineSettings::Parse(text)) << '"' << text << '"';
  }
}

TEST(LineSettings, CountsTenBitsACharacterAndElevenWithParity) {
  EXPECT_EQ((LineSettings{9600, Parity::kNone}).BitsPerCharacter(), 10);
  EXPECT_EQ((LineSettings{9600, Parity::kEven}).BitsPerCharacter(), 11);
  EXPECT_EQ((LineSettings{9600, Parity::kOdd}).BitsPerCharacter(), 11);
}

TEST(LineSettings, KnowsTheTimeOfCharacters) {
  EXPECT_EQ((LineSettings{1200, Parity::kNone}).TimeOf(12), core::milliseconds(100));
  EXPECT_EQ((LineSettings{57600, Parity::kOdd}).TimeOf(57.6), core::milliseconds(11));
}

}  // namespace
}  // namespace tarvo::bus
