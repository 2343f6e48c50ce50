// Cobin sessions: what the user toggles, edits and stores, looked up in the module itself.

#include <array>
#include <fstream>
#include <string>
#include <vector>

#include "e2e/page_bench.h"

namespace tarvo {
namespace {

using test::BoxJson;
using test::kNothing;
using test::kValueDialog;
using test::Life;
using testing::ElementsAre;

const std::string kNotCobin = BoxJson("ERROR! Module is not Cobin or communication failed", "critical");
const std::string kCommitted = BoxJson("EEProm updated! Please reset module to apply changes.", "information");
const std::string kResetInSession = BoxJson("Module is Resetted! Comunication Stopped", "information");
const std::string kResetDone = BoxJson("Module is Resetted!", "information");

constexpr int kOutputs = 40002;
constexpr int kSafeStates = 40003;
constexpr int kSafeTime = 40004;
constexpr int kFlags = 40005;
constexpr int kCommunication = 40006;

class Cobin : public test::PageBench {
 protected:
  Cobin() : PageBench("Cobin") {}

  /// What a register of the simulated module holds, also while a session runs; it is no talk on the line.
  int Held(int number) const {
    const std::string answer = simulator->Order("com1 get " + std::to_string(number));
    EXPECT_TRUE(answer.starts_with("ok ")) << answer;
    return std::atoi(answer.substr(answer.rfind(' ') + 1).c_str());
  }
  std::vector<int> Images() const { return {Held(40067), Held(40068), Held(40069), Held(40070)}; }

  /// The pictures of five buttons: "21111" where the first is on.
  std::string Pictures(const std::string& buttons) const {
    std::string pictures;
    for (int i = 1; i <= 5; ++i) pictures += Get(buttons + std::to_string(i) + ".Picture");
    return pictures;
  }
  void Edit(const std::string& control, const std::string& text) const {
    EXPECT_EQ(Do("click " + control), kValueDialog);
    EXPECT_EQ(EnterValue(text), kNothing);
  }
  /// A button whose box must be `box`.
  void ClickThrough(const std::string& button, const std::string& box) const {
    EXPECT_EQ(Do("click " + button), box);
    EXPECT_EQ(Do("answer OK"), kNothing);
  }
  /// Until a module that was reset listens again.
  void AwaitRestart() const { Do("wait 450ms"); }
};

TEST_F(Cobin, ShowsOutputsSafeStatesAndSettings) {
  OpenSession("cobin:40002=0x15,40003=0x06,40004=123,40005=0xC5");
  EXPECT_EQ(Pictures("OutCobin"), "21212");
  EXPECT_EQ(Pictures("SafeCobin"), "12211");
  EXPECT_EQ(Get("SafetimeCobin.Caption"), "123");
  EXPECT_EQ(Get("AddressCobin.Caption"), "1");
  EXPECT_EQ(Get("BaudCobin.Text"), "9600");
  for (const char* box : {"CheckCobin1", "CheckCobin2", "CheckCobin3", "CheckCobin4"}) {
    EXPECT_EQ(Get(box + std::string(".Value")), "1") << box;
  }
  EXPECT_EQ(Get("CheckCobin5.Value"), "0");
  EXPECT_EQ(Get("FirmwCobin.Caption"), "Firmware rel:  3");
  EXPECT_EQ(Get("StatusBar1(2).Text"), "Connected to Cobin , COM1,9600,n,8,1  Module Address:1");
  EXPECT_EQ(Get("RunKind"), "2");
  StopSession();
  ExpectOffline();
}

TEST_F(Cobin, TogglesEachOutputWhilePollingGoesOn) {
  OpenSession("cobin:40002=0x0A");
  int outputs = 0x0A;
  for (int i = 0; i < 5; ++i) {
    const std::string button = "OutCobin" + std::to_string(i + 1);
    EXPECT_EQ(Do("click " + button), kNothing);
    outputs ^= 1 << i;
    EXPECT_EQ(Held(kOutputs), outputs);
    Until(button + ".Picture = " + ((outputs >> i & 1) != 0 ? "2" : "1"));
  }
  EXPECT_EQ(Pictures("OutCobin"), "21212");
  EXPECT_EQ(Get("MessageCobin.Caption"), "OK");
}

TEST_F(Cobin, LosesNoneOfManyTogglesAtOnce) {
  OpenSession("cobin:40002=0x0A");
  for (int i = 1; i <= 5; ++i) Do("nowait click OutCobin" + std::to_string(i));
  Do("idle within 3s");
  EXPECT_EQ(Held(kOutputs), 0x15);
  LetPoll();
  EXPECT_EQ(Pictures("OutCobin"), "21212");
}

TEST_F(Cobin, SetsAndClearsTheSafeStateFlagWithThePattern) {
  OpenSession("cobin:40005=0xAB01");
  EXPECT_EQ(Do("click SafeCobin4"), kNothing);
  EXPECT_EQ(Held(kSafeStates), 0x08);
  EXPECT_EQ(Held(kFlags), 0xAB81);
  EXPECT_EQ(Get("CheckCobin1.Value"), "1");
  Until("SafeCobin4.Picture = 2");
  EXPECT_EQ(Do("click SafeCobin4"), kNothing);
  EXPECT_EQ(Held(kSafeStates), 0);
  // On this road the high byte of the flags goes, too.
  EXPECT_EQ(Held(kFlags), 0x0001);
  EXPECT_EQ(Get("CheckCobin1.Value"), "0");
  Until("SafeCobin4.Picture = 1");
}

TEST_F(Cobin, ChangesEachFlagInTheModule) {
  struct Flag {
    const char* box;
    int mask;
  };
  constexpr std::array kBoxes = {Flag{"CheckCobin1", 0x80}, Flag{"CheckCobin2", 0x01}, Flag{"CheckCobin3", 0x40},
                                 Flag{"CheckCobin4", 0x04}, Flag{"CheckCobin5", 0x08}};
  OpenSession("cobin:40005=0xAB00");
  for (const Flag& flag : kBoxes) {
    EXPECT_EQ(Do(std::string("click ") + flag.box), kNothing);
    EXPECT_EQ(Held(kFlags), 0xAB00 | flag.mask) << flag.box;
    LetPoll();
    EXPECT_EQ(Get(flag.box + std::string(".Value")), "1") << flag.box;
    EXPECT_EQ(Do(std::string("click ") + flag.box), kNothing);
    EXPECT_EQ(Held(kFlags), 0xAB00) << flag.box;
  }
  EXPECT_EQ(Do("click CheckCobin5"), kNothing);
  EXPECT_EQ(Do("click OptionCobin2"), kNothing);
  EXPECT_EQ(Held(kFlags), 0xAB18);
  EXPECT_EQ(Do("click OptionCobin1"), kNothing);
  EXPECT_EQ(Held(kFlags), 0xAB08);
}

TEST_F(Cobin, StoresASessionsSettingsForAfterTheReset) {
  OpenSession("cobin:40004=20");
  EXPECT_EQ(Do("click SafeCobin1"), kNothing);
  EXPECT_EQ(Do("click SafeCobin5"), kNothing);
  EXPECT_EQ(Do("click CheckCobin3"), kNothing);
  EXPECT_EQ(Do("click OutCobin2"), kNothing);
  Edit("SafetimeCobin", "77");
  ClickThrough("WEEPCobin", kCommitted);
  EXPECT_THAT(Images(), ElementsAre(0x11, 77, 0xC0, 0x0101));
  EXPECT_EQ(Held(kSafeTime), 20);
  ClickThrough("ResetCobin", kResetInSession);
  ExpectOffline();
  AwaitRestart();
  StartSession();
  EXPECT_EQ(Pictures("SafeCobin"), "21112");
  EXPECT_EQ(Pictures("OutCobin"), "11111");
  EXPECT_EQ(Get("SafetimeCobin.Caption"), "77");
  EXPECT_EQ(Get("CheckCobin1.Value"), "1");
  EXPECT_EQ(Get("CheckCobin3.Value"), "1");
}

TEST_F(Cobin, ForgetsAtTheResetWhatWasNotStored) {
  OpenSession("cobin:40003=0x04,40004=20,40005=0x80");
  EXPECT_EQ(Do("click SafeCobin1"), kNothing);
  Edit("SafetimeCobin", "77");
  ClickThrough("ResetCobin", kResetInSession);
  AwaitRestart();
  StartSession();
  EXPECT_EQ(Pictures("SafeCobin"), "11211");
  EXPECT_EQ(Get("SafetimeCobin.Caption"), "20");
}

TEST_F(Cobin, StoresAddressAndSpeedForAfterTheReset) {
  OpenSession("cobin");
  Edit("AddressCobin", "9");
  EXPECT_EQ(Do("choose BaudCobin 38400"), kNothing);
  ClickThrough("WEEPCobin", kCommitted);
  EXPECT_EQ(Held(kCommunication), 0x0101);
  ClickThrough("ResetCobin", kResetInSession);
  AwaitRestart();
  ClickThrough("StartCobin", kNotCobin);
  Do("click LabPCSetup");
  Do("choose PCBaudRate 38400");
  Edit("PCAddress", "9");
  Do("click labCobin");
  StartSession();
  EXPECT_EQ(Get("AddressCobin.Caption"), "9");
  EXPECT_EQ(Get("BaudCobin.Text"), "38400");
  EXPECT_EQ(Get("StatusBar1(2).Text"), "Connected to Cobin , COM1,38400,n,8,1  Module Address:9");
}

TEST_F(Cobin, StoresWorkingCopiesWithoutASession) {
  OpenSession("cobin:40003=0x02,40005=0x80");
  ClickThrough("ResetCobin", kResetInSession);
  AwaitRestart();
  // The buttons stay on after a reset. Without a session they show the reverse of what they set.
  EXPECT_EQ(Do("click SafeCobin3"), kNothing);
  EXPECT_EQ(Get("SafeCobin3.Picture"), "1");
  EXPECT_EQ(Do("click SafeCobin2"), kNothing);
  EXPECT_EQ(Get("SafeCobin2.Picture"), "2");
  EXPECT_EQ(Do("click CheckCobin2"), kNothing);
  EXPECT_EQ(Held(kSafeStates), 0x02);
  ClickThrough("WEEPCobin", kCommitted);
  ExpectOffline();
  EXPECT_THAT(Images(), ElementsAre(0x04, 50, 0x81, 0x0101));
  ClickThrough("ResetCobin", kResetDone);
  AwaitRestart();
  StartSession();
  EXPECT_EQ(Pictures("SafeCobin"), "11211");
  EXPECT_EQ(Get("CheckCobin2.Value"), "1");
}

TEST_F(Cobin, TakesNoClickOnItsButtonsWithoutASession) {
  OpenSession("cobin:40002=0x01");
  StopSession();
  EXPECT_EQ(console->Try("click OutCobin1").Error(), "OutCobin1 is disabled");
  EXPECT_EQ(console->Try("click SafeCobin1").Error(), "SafeCobin1 is disabled");
  EXPECT_EQ(Held(kOutputs), 1);
}

TEST_F(Cobin, KeepsItsOutputsWhileTheSessionPollsAndFallsIntoTheSafeStateAfterIt) {
  OpenSession("cobin:40002=0x1F,40003=0x0A,40004=10,40005=0x80", Life::kLive);
  Do("wait 1500ms");
  EXPECT_EQ(Pictures("OutCobin"), "22222");
  StopSession();
  EXPECT_EQ(Held(kOutputs), 0x1F);
  Do("wait 1200ms");
  EXPECT_EQ(Held(kOutputs), 0x0A);
  StartSession();
  EXPECT_EQ(Pictures("OutCobin"), "12121");
}

TEST_F(Cobin, RefusesAnotherModel) {
  StartSimulator("belk");
  OpenConsole();
  for (const char* button : {"StartCobin", "WEEPCobin", "ResetCobin"}) {
    ClickThrough(button, kNotCobin);
    ExpectOffline();
  }
  StartSimulator("cobin");
  StartSession();
}

TEST_F(Cobin, OffersLessOnOldFirmware) {
  OpenSession("cobin:fw=2");
  EXPECT_EQ(Get("FirmwCobin.Caption"), "Firmware rel:  2");
  EXPECT_EQ(Get("StatusBar1(1).Text"), "FW version :1, Delay 12ms and Parity checkboxes   are disabled");
  EXPECT_EQ(Get("BaudCobin.List"), R"(["4800","9600","19200","38400","57600"])");
  for (const std::string name : {"CheckCobin4", "CheckCobin5", "OptionCobin1", "OptionCobin2"}) {
    EXPECT_EQ(console->Try("click " + name).Error(), name + " is disabled");
  }
  StopSession();
  StartSimulator("cobin:fw=3");
  StartSession();
  EXPECT_EQ(Get("BaudCobin.List"), R"(["1200","2400","4800","9600","19200","38400","57600"])");
  EXPECT_EQ(Get("CheckCobin5.Enabled"), "true");
}

TEST_F(Cobin, IsFoundByTheSearchAndRead) {
  StartSimulator("cobin:line=38400n81,40002=0x05,40003=0x0A,40004=77,40005=0x80");
  std::ofstream(folder / "own-settings") << "AUTOSCAN=FALSE\n";
  std::vector<std::string> arguments = {"--settings", folder / "own-settings", "--com1", Device()};
  for (int port = 2; port <= 4; ++port) {
    const std::string name = "com" + std::to_string(port);
    arguments.insert(arguments.end(), {"--" + name, folder / ("no-" + name)});
  }
  console = std::make_unique<test::ConsoleProcess>(arguments);
  Do("nowait click buttCheckDevice");
  Do("idle within 4s");
  EXPECT_EQ(Get("StatusBar1(2).Text"), "Connected to Cobin, COM1,38400,n,8,1  Module Address:1");
  EXPECT_EQ(Get("NrFinestra"), "1");
  EXPECT_EQ(Pictures("OutCobin"), "21211");
  EXPECT_EQ(Pictures("SafeCobin"), "12121");
  EXPECT_EQ(Get("SafetimeCobin.Caption"), "77");
  EXPECT_EQ(Get("BaudCobin.Text"), "38400");
  EXPECT_EQ(Get("CheckCobin1.Value"), "1");
  StartSession();
}

}  // namespace
}  // namespace tarvo
