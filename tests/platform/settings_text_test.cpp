#include "platform/settings_text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

namespace tarvo::platform {
namespace {

using namespace std::string_view_literals;

struct FindRow {
  std::string_view text;
  std::optional<std::string_view> value;
};

TEST(SettingsText, FindsTheValueOfAName) {
  for (const FindRow& row : {
           FindRow{"", std::nullopt},
           FindRow{"COM1=/dev/ttyUSB0", "/dev/ttyUSB0"},
           FindRow{"COM1=/dev/ttyUSB0\n", "/dev/ttyUSB0"},
           FindRow{"COM1=/dev/ttyUSB0\r\n", "/dev/ttyUSB0"},
           FindRow{"AUTOSCAN=TRUE\nCOM1=a\nCOM2=b\n", "a"},
           FindRow{" \tCOM1 =  a b \t\n", "a b"},
           FindRow{"\xEF\xBB\xBF"
                   "COM1=a\n",
                   "a"},
           FindRow{"COM1=a=b", "a=b"},
           FindRow{"COM1=a # b", "a # b"},
           FindRow{"COM1=", ""},
           FindRow{"COM1=a\nCOM1=b\n", "b"},
           FindRow{"#COM1=a", std::nullopt},
           FindRow{"  # COM1=a", std::nullopt},
           FindRow{"COM1", std::nullopt},
           FindRow{"COM1 a", std::nullopt},
           FindRow{"=a", std::nullopt},
           FindRow{"COM11=a\nXCOM1=b\ncom1=c\n", std::nullopt},
           FindRow{"\n\n\n", std::nullopt},
           FindRow{"=\n==\n#\n=#", std::nullopt},
       }) {
    EXPECT_EQ(FindSetting(row.text, "COM1"), row.value) << row.text;
  }
}

struct SetRow {
  std::string_view before;
  std::string_view after;
};

TEST(SettingsText, SetsOneValueAndLeavesEveryOtherByte) {
  for (const SetRow& row : {
           SetRow{"", "AUTOSCAN=TRUE\n"},
           SetRow{"AUTOSCAN=FALSE\n", "AUTOSCAN=TRUE\n"},
           SetRow{"AUTOSCAN=FALSE", "AUTOSCAN=TRUE"},
           SetRow{"AUTOSCAN=\n", "AUTOSCAN=TRUE\n"},
           SetRow{"AUTOSCAN=\nCOM1=a\n", "AUTOSCAN=TRUE\nCOM1=a\n"},
           SetRow{"AUTOSCAN=FALSE\r\nCOM1=a\r\n", "AUTOSCAN=TRUE\r\nCOM1=a\r\n"},
           SetRow{"# mine\n\n  x \t y\nAUTOSCAN = FALSE  \nlast", "# mine\n\n  x \t y\nAUTOSCAN = TRUE  \nlast"},
           SetRow{"COM1=a\n", "COM1=a\nAUTOSCAN=TRUE\n"},
           SetRow{"COM1=a", "COM1=a\nAUTOSCAN=TRUE\n"},
           SetRow{"COM1=a\r\nCOM2=b", "COM1=a\r\nCOM2=b\r\nAUTOSCAN=TRUE\r\n"},
           SetRow{"#AUTOSCAN=FALSE\n", "#AUTOSCAN=FALSE\nAUTOSCAN=TRUE\n"},
           SetRow{"AUTOSCAN=1\nAUTOSCAN=2\n", "AUTOSCAN=1\nAUTOSCAN=TRUE\n"},
           SetRow{"caf\xE9=\xFF\n", "caf\xE9=\xFF\nAUTOSCAN=TRUE\n"},
       }) {
    EXPECT_EQ(WithSetting(row.before, "AUTOSCAN", "TRUE"), row.after) << row.before;
  }
}

TEST(SettingsText, FindsWhatItSet) {
  for (const std::string_view text : {""sv, "junk"sv, "A=1\nB=2"sv, "\r\n"sv, "=\n"sv}) {
    EXPECT_EQ(FindSetting(WithSetting(text, "A", "/dev/tty x"), "A"), "/dev/tty x") << text;
  }
}

TEST(SettingsText, RefusesWhatNoLineCanHold) {
  EXPECT_THROW(WithSetting("", "A", "1\nB=2"), std::invalid_argument);
  EXPECT_THROW(WithSetting("", "A", "1\r"), std::invalid_argument);
  EXPECT_THROW(WithSetting("", "A", " 1"), std::invalid_argument);
  EXPECT_THROW(WithSetting("", "A", "1\0"sv), std::invalid_argument);
  EXPECT_THROW(WithSetting("", "A=B", "1"), std::invalid_argument);
  EXPECT_THROW(WithSetting("", "#A", "1"), std::invalid_argument);
  EXPECT_THROW(WithSetting("", "\xEF\xBB\xBF", "1"), std::invalid_argument) << "it would be the text's own mark";
  EXPECT_THROW(WithSetting("", "", "1"), std::invalid_argument);
}

TEST(SettingsText, TellsTextFromJunk) {
  EXPECT_TRUE(IsSettingsText(""));
  EXPECT_TRUE(IsSettingsText("COM1=/dev/ttyUSB0\r\n\t# caf\xC3\xA9 caf\xE9\n"));
  EXPECT_FALSE(IsSettingsText("COM1=a\0"sv));
  EXPECT_FALSE(
      IsSettingsText("\x7F"
                     "ELF"));
  EXPECT_FALSE(IsSettingsText("\x1B[0m"));
}

}  // namespace
}  // namespace tarvo::platform
