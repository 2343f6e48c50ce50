#include <array>

#include "support/cobin_fixture.h"

namespace tarvo::test {
namespace {

/// How a block of registers comes into the view.
enum class Road { kFirstBlock, kRepeatingDecode };

/// What a poll makes of each bit, at Start and in the repeating decode alike.
class CobinDecode : public CobinFixture, public testing::WithParamInterface<Road> {
 protected:
  void Show(int number, int word) {
    if (GetParam() == Road::kFirstBlock) {
      if (InSession()) Click("StopCobin");
      Set(number, word);
      // Start's own block is looked at before the first tick of a timer.
      Click("StartCobin");
    } else {
      if (!InSession()) Click("StartCobin");
      Set(number, word);
      RunThroughADecode();
    }
    ASSERT_TRUE(InSession());
  }
};

INSTANTIATE_TEST_SUITE_P(Roads, CobinDecode, testing::Values(Road::kFirstBlock, Road::kRepeatingDecode),
                         [](const auto& given) {
                           return given.param == Road::kFirstBlock ? "FirstBlock" : "RepeatingDecode";
                         });

TEST_P(CobinDecode, ShowsEachOutputBitInItsOwnPictureAlone) {
  for (int bit = 0; bit < 16; ++bit) {
    SCOPED_TRACE(bit);
    Show(kOutputs, 1 << bit);
    for (int i = 0; i < kOutputCount; ++i) {
      EXPECT_EQ(Picture(Out(i)), i == bit ? 2 : 1) << Out(i);
      EXPECT_EQ(Picture(Safe(i)), 1) << Safe(i);
    }
  }
}

TEST_P(CobinDecode, ShowsEachSafeStateBitInItsOwnPictureAlone) {
  for (int bit = 0; bit < 16; ++bit) {
    SCOPED_TRACE(bit);
    Show(kSafeStates, 1 << bit);
    for (int i = 0; i < kOutputCount; ++i) {
      EXPECT_EQ(Picture(Safe(i)), i == bit ? 2 : 1) << Safe(i);
      EXPECT_EQ(Picture(Out(i)), 1) << Out(i);
    }
  }
}

TEST_P(CobinDecode, ShowsImage1WhereTheBitIsClear) {
  for (int bit = 0; bit < kOutputCount; ++bit) {
    SCOPED_TRACE(bit);
    Show(kOutputs, 0xFFFF & ~(1 << bit));
    Show(kSafeStates, 0xFFFF & ~(1 << bit));
    for (int i = 0; i < kOutputCount; ++i) {
      EXPECT_EQ(Picture(Out(i)), i == bit ? 1 : 2) << Out(i);
      EXPECT_EQ(Picture(Safe(i)), i == bit ? 1 : 2) << Safe(i);
    }
  }
}

struct FlagBox {
  const char* box;
  int bit;
};

constexpr std::array kFlagBoxes = {FlagBox{"CheckCobin1", 7}, FlagBox{"CheckCobin2", 0}, FlagBox{"CheckCobin3", 6},
                                   FlagBox{"CheckCobin4", 2}, FlagBox{"CheckCobin5", 3}};

TEST_P(CobinDecode, TicksEachBoxByItsOwnBit) {
  for (int bit = 0; bit < 16; ++bit) {
    SCOPED_TRACE(bit);
    Show(kFlags, 1 << bit);
    for (const FlagBox& flag : kFlagBoxes) EXPECT_EQ(Checked(flag.box), flag.bit == bit) << flag.box;
  }
}

TEST_P(CobinDecode, ClearsEachBoxWhoseBitIsClear) {
  for (int bit = 0; bit < 16; ++bit) {
    SCOPED_TRACE(bit);
    Show(kFlags, 0xFFFF & ~(1 << bit));
    for (const FlagBox& flag : kFlagBoxes) EXPECT_EQ(Checked(flag.box), flag.bit != bit) << flag.box;
  }
}

TEST_P(CobinDecode, SelectsTheParityByBit4) {
  Show(kFlags, 0x0018);
  EXPECT_FALSE(Checked("OptionCobin1"));
  EXPECT_TRUE(Checked("OptionCobin2"));
  Show(kFlags, 0xFFEF);
  EXPECT_TRUE(Checked("OptionCobin1"));
  EXPECT_FALSE(Checked("OptionCobin2"));
}

TEST_P(CobinDecode, SelectsTheParityThoughParityIsOff) {
  Show(kFlags, 0x0010);
  EXPECT_TRUE(Checked("OptionCobin2"));
  EXPECT_FALSE(Enabled("OptionCobin2"));
}

TEST_P(CobinDecode, EnablesTheParityOptionsExactlyByBit3) {
  for (const int flags : {0x0008, 0xFFFF, 0x0018}) {
    Show(kFlags, flags);
    EXPECT_TRUE(Enabled("OptionCobin1")) << flags;
    EXPECT_TRUE(Enabled("OptionCobin2")) << flags;
    Show(kFlags, flags & ~0x0008);
    EXPECT_FALSE(Enabled("OptionCobin1")) << flags;
    EXPECT_FALSE(Enabled("OptionCobin2")) << flags;
  }
}

// What only the first block shows.

class CobinFirstBlock : public CobinFixture {};

TEST_F(CobinFirstBlock, ShowsTheSafeTimeAsItIs) {
  for (const int time : {0, 5, 250, 251, 32768, 65535}) {
    module[kSafeTime] = static_cast<std::uint16_t>(time);
    StartSession();
    EXPECT_EQ(Text("SafetimeCobin"), std::to_string(time));
    Click("StopCobin");
  }
}

TEST_F(CobinFirstBlock, ShowsTheStoredAddressOfTheLowByte) {
  for (const int address : {0, 1, 128, 247, 255}) {
    Set(kStoredCommunication, 0x0200 | address);
    StartSession();
    EXPECT_EQ(Text("AddressCobin"), std::to_string(address));
    Click("StopCobin");
  }
}

TEST_F(CobinFirstBlock, SelectsTheRateByTheStoredCode) {
  const std::pair<int, const char*> rates[] = {{6, "1200"},  {7, "2400"},  {0, "4800"}, {1, "9600"},
                                               {2, "19200"}, {3, "38400"}, {4, "57600"}};
  for (const auto& [code, rate] : rates) {
    Set(kStoredCommunication, code << 8 | 0xFF);
    StartSession();
    EXPECT_EQ(Text("BaudCobin"), rate);
    Click("StopCobin");
  }
}

TEST_F(CobinFirstBlock, TakesTheCodeFromBits8To10Alone) {
  for (const int high : {0x0B, 0x83, 0xFB}) {
    Set(kStoredCommunication, high << 8 | 1);
    StartSession();
    EXPECT_EQ(Text("BaudCobin"), "38400") << high;
    Click("StopCobin");
    Set(kStoredCommunication, 0x0101);
    StartSession();
    Click("StopCobin");
  }
}

TEST_F(CobinFirstBlock, LeavesTheRateWhereTheCodeHasNoEntry) {
  Set(kStoredCommunication, 0x0301);
  StartSession();
  ASSERT_EQ(Text("BaudCobin"), "38400");
  Click("StopCobin");
  for (const int high : {0x05, 0x0D, 0xFD}) {
    Set(kStoredCommunication, high << 8 | 7);
    StartSession();
    EXPECT_EQ(Text("BaudCobin"), "38400") << high;
    EXPECT_EQ(Text("AddressCobin"), "7");
    Click("StopCobin");
  }
}

TEST_F(CobinFirstBlock, LeavesTheRateWhereAnOlderListLacksTheCode) {
  SetRelease(2);
  for (const int code : {6, 7}) {
    Set(kStoredCommunication, code << 8 | 1);
    StartSession();
    EXPECT_EQ(Text("BaudCobin"), "9600") << code;
    Click("StopCobin");
  }
}

TEST_F(CobinFirstBlock, NeverLooksAtTheLiveAddressAndRate) {
  Set(kStoredCommunication, 0x0105);
  Set(40006, 0x0399);
  StartSession();
  Run(std::chrono::seconds(1));
  EXPECT_EQ(Polled(4), 0x0399);
  EXPECT_EQ(Text("AddressCobin"), "5");
  EXPECT_EQ(Text("BaudCobin"), "9600");
}

TEST_F(CobinFirstBlock, LeavesAddressAndRateWhenTheyAreNotRead) {
  Set(kStoredCommunication, 0x0305);
  const std::string rate = Text("BaudCobin");
  module.Next(ModuleFault::None());
  module.Next(ModuleFault::None());
  module.Next(ModuleFault::Exception(2));
  Click("StartCobin");
  ASSERT_TRUE(InSession());
  EXPECT_EQ(Text("AddressCobin"), "1");
  EXPECT_EQ(Text("BaudCobin"), rate);
  EXPECT_TRUE(TimersRun());
}

TEST_F(CobinFirstBlock, IsTheOnlyOneToShowSafeTimeAddressAndRate) {
  Set(kStoredCommunication, 0x0105);
  StartSession();
  Set(kSafeTime, 99);
  Set(kStoredCommunication, 0x0399);
  Run(std::chrono::seconds(2));
  EXPECT_EQ(Polled(2), 99);
  EXPECT_EQ(Text("SafetimeCobin"), "50");
  EXPECT_EQ(Text("AddressCobin"), "5");
  EXPECT_EQ(Text("BaudCobin"), "9600");
}

TEST_F(CobinFirstBlock, LeavesAnEditOfASettingToStay) {
  StartSession();
  Click("SafetimeCobin");
  AnswerChangeValue("77");
  Click("AddressCobin");
  AnswerChangeValue("33");
  Choose("BaudCobin", 6);
  Run(std::chrono::seconds(2));
  EXPECT_EQ(Text("SafetimeCobin"), "77");
  EXPECT_EQ(Text("AddressCobin"), "33");
  EXPECT_EQ(Text("BaudCobin"), "57600");
}

TEST_F(CobinFirstBlock, StaysInTheViewWhenPollsFail) {
  Set(kOutputs, 0x15);
  Set(kFlags, 0x0081);
  StartSession();
  module.Always(ModuleFault::Exception(4));
  Run(std::chrono::seconds(1));
  EXPECT_EQ(Text("MessageCobin"), kPollFailed);
  for (int i = 0; i < kOutputCount; ++i) EXPECT_EQ(Picture(Out(i)), i % 2 == 0 ? 2 : 1) << i;
  EXPECT_TRUE(Checked("CheckCobin1"));
  EXPECT_TRUE(Checked("CheckCobin2"));
  module.Always(ModuleFault::None());
  Run(std::chrono::seconds(1));
  EXPECT_EQ(Text("MessageCobin"), "OK");
}

}  // namespace
}  // namespace tarvo::test
