#include "support/belk_fixture.h"

namespace tarvo::test {
namespace {

using testing::ElementsAre;

class BelkFirmware : public BelkFixture {
 protected:
  /// A session on a module of that release, ended again.
  void Visit(int release) {
    SetRelease(release);
    StartSession();
    Click("StopBelk");
  }
  /// A rate code that no list has, so that a visit's first block leaves the selection.
  void LetTheModuleTellNoRate() { module[kCommunication] = 0x0901; }

  void ExpectFiveRates() {
    EXPECT_THAT(List("BaudBelk"), ElementsAre("4800", "9600", "19200", "38400", "57600"));
    EXPECT_THAT(ItemData("BaudBelk"), ElementsAre(0, 1, 2, 3, 4));
  }
  void ExpectSevenRates() {
    EXPECT_THAT(List("BaudBelk"), ElementsAre("1200", "2400", "4800", "9600", "19200", "38400", "57600"));
    EXPECT_THAT(ItemData("BaudBelk"), ElementsAre(6, 7, 0, 1, 2, 3, 4));
  }
};

TEST_F(BelkFirmware, ShowsTheReleaseOfTheLowByte) {
  Visit(3);
  EXPECT_EQ(Text("FirmwBelk"), "Firmware rel: 3");
  Visit(12);
  EXPECT_EQ(Text("FirmwBelk"), "Firmware rel: 12");
}

TEST_F(BelkFirmware, BeginsWithFiveRates) {
  ExpectFiveRates();
  EXPECT_EQ(Text("BaudBelk"), "9600");
}

TEST_F(BelkFirmware, HasSevenRatesFromRelease3On) {
  for (const int release : {3, 4, 255}) {
    SCOPED_TRACE(release);
    Visit(1);
    Visit(release);
    ExpectSevenRates();
  }
}

TEST_F(BelkFirmware, HasFiveRatesBelowRelease3) {
  for (const int release : {0, 1, 2}) {
    SCOPED_TRACE(release);
    Visit(3);
    Visit(release);
    ExpectFiveRates();
  }
}

TEST_F(BelkFirmware, KeepsItsRatesWhenTheReleaseIsTheSame) {
  for (int i = 0; i < 3; ++i) Visit(3);
  ExpectSevenRates();
  for (int i = 0; i < 3; ++i) Visit(2);
  ExpectFiveRates();
}

TEST_F(BelkFirmware, KeepsTheSelectedCodeWhenTheListGrows) {
  LetTheModuleTellNoRate();
  for (int position = 0; position < 5; ++position) {
    SCOPED_TRACE(position);
    Visit(2);
    Choose("BaudBelk", position);
    Visit(3);
    EXPECT_EQ(ListIndex("BaudBelk"), position + 2);
    EXPECT_EQ(ItemData("BaudBelk")[static_cast<std::size_t>(position) + 2], position);
  }
}

TEST_F(BelkFirmware, KeepsTheSelectedPositionWhenTheListShrinks) {
  LetTheModuleTellNoRate();
  for (int position = 0; position < 5; ++position) {
    SCOPED_TRACE(position);
    Visit(3);
    Choose("BaudBelk", position);
    Visit(2);
    EXPECT_EQ(ListIndex("BaudBelk"), position);
  }
}

TEST_F(BelkFirmware, SelectsNothingBeyondItsListWhenTheListShrinks) {
  LetTheModuleTellNoRate();
  for (int position = 5; position < 7; ++position) {
    SCOPED_TRACE(position);
    Visit(3);
    Choose("BaudBelk", position);
    Visit(2);
    ExpectFiveRates();
    EXPECT_LT(ListIndex("BaudBelk"), 5);
  }
}

TEST_F(BelkFirmware, KeepsTheSelectionWhenTheListStaysAsItIs) {
  LetTheModuleTellNoRate();
  Visit(3);
  Choose("BaudBelk", 6);
  Visit(3);
  EXPECT_EQ(ListIndex("BaudBelk"), 6);
  Visit(2);
  Choose("BaudBelk", 4);
  Visit(2);
  EXPECT_EQ(ListIndex("BaudBelk"), 4);
}

TEST_F(BelkFirmware, ShowsTheModulesOwnRateWhateverTheListWas) {
  module[kCommunication] = 0x0401;
  Visit(3);
  EXPECT_EQ(Text("BaudBelk"), "57600");
  Visit(2);
  EXPECT_EQ(Text("BaudBelk"), "57600");
  Visit(3);
  EXPECT_EQ(Text("BaudBelk"), "57600");
}

constexpr const char* kNewerBoxes[] = {"CheckBelk3", "CheckBelk4", "CheckBelk5", "CheckBelk6"};

TEST_F(BelkFirmware, DisablesTheNewerFlagsBelowRelease2) {
  for (const int release : {0, 1}) {
    SetRelease(release);
    StartSession();
    for (const char* box : kNewerBoxes) EXPECT_FALSE(Enabled(box)) << box;
    EXPECT_FALSE(Enabled("OptionBelk1"));
    EXPECT_FALSE(Enabled("OptionBelk2"));
    EXPECT_TRUE(Enabled("CheckBelk1"));
    EXPECT_TRUE(Enabled("CheckBelk2"));
    Click("StopBelk");
  }
}

TEST_F(BelkFirmware, EnablesTheNewerFlagsFromRelease2On) {
  module[kFlags] = 0x0008;
  for (const int release : {2, 3, 255}) {
    Visit(1);
    SetRelease(release);
    StartSession();
    for (const char* box : kNewerBoxes) EXPECT_TRUE(Enabled(box)) << box;
    EXPECT_TRUE(Enabled("OptionBelk1"));
    EXPECT_TRUE(Enabled("OptionBelk2"));
    Click("StopBelk");
  }
}

TEST_F(BelkFirmware, LeavesTheNewerFlagsDisabledThroughTheRepeatingDecode) {
  SetRelease(1);
  module[kFlags] = 0xFFFF;
  StartSession();
  RunThroughADecode();
  for (const char* box : kNewerBoxes) EXPECT_FALSE(Enabled(box)) << box;
}

TEST_F(BelkFirmware, LetsTheParityBitHaveTheLastWordOnTheOptions) {
  module[kFlags] = 0x0008;
  SetRelease(1);
  StartSession();
  EXPECT_TRUE(Enabled("OptionBelk1"));
  EXPECT_TRUE(Enabled("OptionBelk2"));
  Click("StopBelk");
  module[kFlags] = 0;
  SetRelease(3);
  StartSession();
  EXPECT_FALSE(Enabled("OptionBelk1"));
  EXPECT_FALSE(Enabled("OptionBelk2"));
}

}  // namespace
}  // namespace tarvo::test
