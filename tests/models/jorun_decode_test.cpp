#include "support/jorun_fixture.h"

namespace tarvo::test {
namespace {

using testing::ElementsAre;

// The first block.

class JorunFirstBlock : public JorunFixture {};

TEST_F(JorunFirstBlock, TicksEachBoxByItsOwnBit) {
  for (int bit = 0; bit < 16; ++bit) {
    SCOPED_TRACE(bit);
    Set(kFlags, 1 << bit);
    Begin();
    EXPECT_EQ(Checked("CheckJorun(0)"), bit == 1);
    EXPECT_EQ(Checked("CheckJorun(1)"), bit == 2);
    EXPECT_EQ(Checked("CheckJorun(2)"), bit == 3);
    EXPECT_EQ(Checked("OptionOdd"), bit == 4);
    EXPECT_EQ(Checked("OptionEven"), bit != 4);
  }
}

TEST_F(JorunFirstBlock, ClearsEachBoxWhoseBitIsClear) {
  for (int bit = 0; bit < 16; ++bit) {
    SCOPED_TRACE(bit);
    Set(kFlags, 0xFFFF & ~(1 << bit));
    Begin();
    EXPECT_EQ(Checked("CheckJorun(0)"), bit != 1);
    EXPECT_EQ(Checked("CheckJorun(1)"), bit != 2);
    EXPECT_EQ(Checked("CheckJorun(2)"), bit != 3);
    EXPECT_EQ(Checked("OptionOdd"), bit != 4);
    EXPECT_EQ(Checked("OptionEven"), bit == 4);
  }
}

TEST_F(JorunFirstBlock, LeavesTheAddressInForceAloneForTheStoredOne) {
  Set(kCommunication, 0x0311);
  Set(kStoredCommunication, 0x0222);
  Begin();
  EXPECT_EQ(Text("labAddressJorun"), "34");
  EXPECT_EQ(Text("cbBaudJorun"), "19200");
}

TEST_F(JorunFirstBlock, SelectsTheRateByBits8To10OfTheStoredWord) {
  const std::pair<int, const char*> rows[] = {{6, "1200"},  {7, "2400"},  {0, "4800"}, {1, "9600"},
                                              {2, "19200"}, {3, "38400"}, {4, "57600"}};
  for (const auto& [code, rate] : rows) {
    for (const int above : {0x0000, 0xF800}) {
      Set(kStoredCommunication, above | code << 8 | 0xFF);
      Begin();
      EXPECT_EQ(Text("cbBaudJorun"), rate);
      EXPECT_EQ(Text("labAddressJorun"), "255");
    }
  }
}

TEST_F(JorunFirstBlock, LeavesTheRateWhereTheCodeHasNoRow) {
  Set(kStoredCommunication, 0x0301);
  Begin();
  Set(kStoredCommunication, 0x0509);
  Begin();
  EXPECT_EQ(Text("cbBaudJorun"), "38400");
  EXPECT_EQ(Text("labAddressJorun"), "9");
}

TEST_F(JorunFirstBlock, LeavesAddressAndRateWhenTheStoredWordIsRefused) {
  Set(kStoredCommunication, 0x0307);
  Begin();
  Click("StopJorun");
  Set(kStoredCommunication, 0x0208);
  // Identity and block; the version has been read before.
  module.Next(ModuleFault::None());
  module.Next(ModuleFault::None());
  module.Next(ModuleFault::Exception(2));
  module.ForgetLog();
  Begin();
  EXPECT_THAT(Exchanges(), ElementsAre("reads 40001", "reads 40002 x10", "reads 40066: exception 2"));
  EXPECT_EQ(Text("labAddressJorun"), "7");
  EXPECT_EQ(Text("cbBaudJorun"), "38400");
  EXPECT_TRUE(TimersRun());
}

TEST_F(JorunFirstBlock, ShowsFlagsAndAddressOnlyOnce) {
  Set(kFlags, 0x06);
  Begin();
  Set(kFlags, 0);
  Set(kStoredCommunication, 0x0499);
  Run(std::chrono::seconds(2));
  EXPECT_TRUE(Checked("CheckJorun(0)"));
  EXPECT_EQ(Text("labAddressJorun"), "1");
}

// The view before anything was read.

class JorunView : public JorunFixture {};

TEST_F(JorunView, BeginsWithTheUsualLineAndNoParity) {
  EXPECT_EQ(Text("labAddressJorun"), "1");
  EXPECT_EQ(Text("cbBaudJorun"), "9600");
  EXPECT_FALSE(Enabled("OptionEven"));
  EXPECT_FALSE(Enabled("OptionOdd"));
}

TEST_F(JorunView, HasNoTimerWithoutATask) {
  EXPECT_EQ(FindControl("TimerControllo"), nullptr);
}

TEST_F(JorunView, HasItsCaptions) {
  const std::pair<const char*, const char*> captions[] = {{"StartJorun", "&Start"},
                                                          {"StopJorun", "S&top"},
                                                          {"buttResetJorun", "Module &Reset"},
                                                          {"buttWEEPJorun", "&Write EEprom"},
                                                          {"CheckJorun(0)", "Speed Up Acquisition"},
                                                          {"CheckJorun(1)", "Delay 12ms"},
                                                          {"CheckJorun(2)", "Parity ON/OFF"},
                                                          {"OptionEven", "Even"},
                                                          {"OptionOdd", "Odd"}};
  for (const auto& [name, caption] : captions) EXPECT_EQ(Text(name), caption);
}

TEST_F(JorunView, NamesItsRegistersInTheToolTips) {
  const std::pair<const char*, const char*> tips[] = {{"CheckJorun(0)", "40003.1 - Speed Up Acquisition"},
                                                      {"CheckJorun(1)", "40003.2 - Latency Time"},
                                                      {"CheckJorun(2)", "40003.3 - Parity ON/OFF"},
                                                      {"OptionEven", "40003.4 - Parity Type"},
                                                      {"OptionOdd", "40003.4 - Parity Type"},
                                                      {"cbBaudJorun", "40002(H) - Module Baud Rate"},
                                                      {"labAddressJorun", "40002(L) - Module Address"},
                                                      {"StartJorun", "Start Communication"},
                                                      {"StopJorun", "Stop Communication"}};
  for (const auto& [name, tip] : tips) EXPECT_EQ(ToolTip(name), tip) << name;
}

}  // namespace
}  // namespace tarvo::test
