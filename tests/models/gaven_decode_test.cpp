#include <map>

#include "support/gaven_fixture.h"

namespace tarvo::test {
namespace {

// The first block, at Start.

class GavenFirstBlock : public GavenFixture {
 protected:
  /// Start anew, with this in the module; its blocks are looked at before the first tick of a timer.
  void ShowAtStart(int number, int value) {
    Set(number, value);
    Begin();
  }
};

struct FlagBox {
  const char* box;
  int bit;
};
constexpr FlagBox kFlagBoxes[] = {{"CheckGaven(0)", 1}, {"CheckGaven(1)", 2}, {"CheckGaven(2)", 3}};

TEST_F(GavenFirstBlock, TicksEachBoxByItsOwnBit) {
  for (int bit = 0; bit < 16; ++bit) {
    SCOPED_TRACE(bit);
    ShowAtStart(kFlags, 1 << bit);
    for (const FlagBox& flag : kFlagBoxes) EXPECT_EQ(Checked(flag.box), flag.bit == bit) << flag.box;
    EXPECT_EQ(Checked("OptionGaven2"), bit == 4);
    EXPECT_EQ(Checked("OptionGaven1"), bit != 4);
    EXPECT_EQ(Enabled("OptionGaven1"), bit == 3);
    EXPECT_EQ(Enabled("OptionGaven2"), bit == 3);
  }
}

TEST_F(GavenFirstBlock, ClearsEachBoxWhoseBitIsClear) {
  for (int bit = 0; bit < 16; ++bit) {
    SCOPED_TRACE(bit);
    ShowAtStart(kFlags, 0xFFFF & ~(1 << bit));
    for (const FlagBox& flag : kFlagBoxes) EXPECT_EQ(Checked(flag.box), flag.bit != bit) << flag.box;
    EXPECT_EQ(Checked("OptionGaven2"), bit != 4);
    EXPECT_EQ(Checked("OptionGaven1"), bit == 4);
    EXPECT_EQ(Enabled("OptionGaven1"), bit != 3);
    EXPECT_EQ(Enabled("OptionGaven2"), bit != 3);
  }
}

TEST_F(GavenFirstBlock, ShowsTheStoredAddressAndNotTheOneInForce) {
  Set(kCommunication, 0x0363);
  for (const int address : {1, 128, 247, 255}) {
    ShowAtStart(kStoredCommunication, 0x0100 | address);
    EXPECT_EQ(Text("AddressGaven"), std::to_string(address));
    EXPECT_EQ(Text("BaudGaven"), "9600");
  }
}

TEST_F(GavenFirstBlock, SelectsTheRateByTheThreeBitsOfTheStoredCode) {
  const std::pair<int, const char*> rates[] = {{6, "1200"},  {7, "2400"},  {0, "4800"}, {1, "9600"},
                                               {2, "19200"}, {3, "38400"}, {4, "57600"}};
  for (const auto& [code, rate] : rates) {
    for (const int others : {0x0001, 0xF8FF}) {
      ShowAtStart(kStoredCommunication, code << 8 | others);
      EXPECT_EQ(Text("BaudGaven"), rate) << others;
    }
  }
}

TEST_F(GavenFirstBlock, LeavesTheRateWhereTheCodeHasNoEntry) {
  ShowAtStart(kStoredCommunication, 0x0301);
  ASSERT_EQ(Text("BaudGaven"), "38400");
  ShowAtStart(kStoredCommunication, 0x0509);
  EXPECT_EQ(Text("BaudGaven"), "38400");
  EXPECT_EQ(Text("AddressGaven"), "9");
}

TEST_F(GavenFirstBlock, IsTheOnlyOneToShowFlagsAndAddress) {
  StartSession();
  Set(kFlags, 0x001E);
  Set(kStoredCommunication, 0x0309);
  Run(std::chrono::seconds(2));
  for (const FlagBox& flag : kFlagBoxes) EXPECT_FALSE(Checked(flag.box)) << flag.box;
  EXPECT_EQ(Text("AddressGaven"), "1");
  EXPECT_EQ(Text("BaudGaven"), "9600");
}

// The view before anything was read.

class GavenView : public GavenFixture {};

TEST_F(GavenView, BeginsWithTheUsualLineAndNoFlags) {
  EXPECT_EQ(Text("AddressGaven"), "1");
  EXPECT_EQ(Text("BaudGaven"), "9600");
  EXPECT_FALSE(Enabled("OptionGaven1"));
  EXPECT_FALSE(Enabled("OptionGaven2"));
  for (const FlagBox& flag : kFlagBoxes) EXPECT_FALSE(Checked(flag.box)) << flag.box;
}

TEST_F(GavenView, HasItsCaptions) {
  const std::pair<const char*, const char*> captions[] = {{"StartGaven", "&Start"},
                                                          {"StopGaven", "S&top"},
                                                          {"ResetGaven", "Module &Reset"},
                                                          {"WEEPGaven", "&Write EEprom"},
                                                          {"CheckGaven(0)", "Speed Up Acquisition"},
                                                          {"CheckGaven(1)", "Delay 12ms"},
                                                          {"CheckGaven(2)", "Parity ON/OFF"},
                                                          {"OptionGaven1", "Even"},
                                                          {"OptionGaven2", "Odd"},
                                                          {"Label11", "Module Address"},
                                                          {"Label12", "Module Baud Rate"},
                                                          {"FirmwGaven", "Firmware rel:"}};
  for (const auto& [name, caption] : captions) EXPECT_EQ(Text(name), caption) << name;
}

TEST_F(GavenView, HeadsEachInputsColumns) {
  std::map<std::string, int> counted;
  for (int i = 0; i < 28; ++i) ++counted[Text(Member("labelGaven", i))];
  for (const char* heading : {"Start Scale", "Full Scale", "Filter", "Scaled Input (0..10000)", "Raw Input"}) {
    EXPECT_EQ(counted[heading], kInputs) << heading;
  }
}

TEST_F(GavenView, NamesRegisterAndBitInItsToolTips) {
  const std::pair<const char*, const char*> toolTips[] = {{"StartGaven", "Start Communication"},
                                                          {"StopGaven", "Stop Communication"},
                                                          {"AddressGaven", "40002(L) - Module Address"},
                                                          {"BaudGaven", "40002(H) - Module Baud Rate"},
                                                          {"CheckGaven(0)", "40003.1 - Speed Up Acquisition"},
                                                          {"CheckGaven(1)", "40003.2 - Latency Time"},
                                                          {"CheckGaven(2)", "40003.3 - Parity ON/OFF"},
                                                          {"OptionGaven1", "40003.4 - Parity Type"},
                                                          {"OptionGaven2", "40003.4 - Parity Type"}};
  for (const auto& [name, toolTip] : toolTips) EXPECT_EQ(ToolTip(name), toolTip) << name;
}

}  // namespace
}  // namespace tarvo::test
