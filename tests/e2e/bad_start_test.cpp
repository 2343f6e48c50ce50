// Starts of a Belk session that must fail: each gives the told message, and the next good one works.

#include <algorithm>
#include <fstream>
#include <functional>
#include <random>
#include <stop_token>
#include <thread>

#include "e2e/belk_bench.h"
#include "support/pseudo_terminal.h"

namespace tarvo {
namespace {

using test::kNotBelk;
using test::kNothing;
using testing::HasSubstr;

class BadStart : public test::BelkBench {
 protected:
  void ExpectRefusedStart() {
    EXPECT_EQ(Do("click StartBelk"), kNotBelk);
    EXPECT_EQ(Do("answer OK"), kNothing);
    ExpectOffline();
  }
  /// `reason` is what panel 1 of the status bar says after it.
  void ExpectRefusedStart(const std::string& reason) {
    ExpectRefusedStart();
    EXPECT_EQ(Get("StatusBar1(1).Text"), reason);
  }
  void ExpectGoodStart(const std::string& module = "belk") {
    StartSimulator(module);
    StartSession();
    EXPECT_EQ(Get("StatusBar1(1).Text"), "");
  }
};

/// Something behind a COM port that says random things.
class Babbler {
 public:
  enum class When { kAlways, kWhenAsked };

  Babbler(unsigned seed, When when)
      : random_(seed), thread_([this, when](const std::stop_token& stop) {
          while (!stop.stop_requested()) {
            constexpr int kPause = 10;
            if (when == When::kAlways) {
              std::this_thread::sleep_for(std::chrono::milliseconds(kPause));
            } else if (line_.Receive(1, kPause).empty()) {
              continue;
            }
            line_.TrySend(Noise());
          }
        }) {}

  const std::string& Device() const { return line_.Name(); }

 private:
  std::string Noise() {
    std::string noise(std::uniform_int_distribution<std::size_t>(1, 30)(random_), '\0');
    std::generate(noise.begin(), noise.end(), [this] { return static_cast<char>(random_() & 0xFF); });
    return noise;
  }

  test::PseudoTerminal line_;
  std::mt19937 random_;
  std::jthread thread_;  // last: it uses the others
};

TEST_F(BadStart, OnAnotherModelTellsItAndWorksAgainOnABelk) {
  StartSimulator("belk:40001=0x0203");
  OpenConsole();
  ExpectRefusedStart();
  ExpectGoodStart();
}

TEST_F(BadStart, WaitsForTheAnswerToItsMessage) {
  StartSimulator("belk:40001=0x0003");
  OpenConsole();
  EXPECT_EQ(Do("click StartBelk"), kNotBelk);
  EXPECT_FALSE(console->Try("click Belk.StartBelk").Ok());
  EXPECT_EQ(Get("StartComm"), "0");
  EXPECT_EQ(Do("answer OK"), kNothing);
  ExpectOffline();
}

TEST_F(BadStart, OnAModuleAtAnotherAddressTellsIt) {
  StartSimulator("belk:addr=2");
  OpenConsole();
  ExpectRefusedStart();
  ExpectGoodStart();
}

TEST_F(BadStart, OnAnotherSpeedTellsIt) {
  StartSimulator("belk:line=19200n81");
  OpenConsole();
  ExpectRefusedStart();
  ExpectGoodStart();
}

TEST_F(BadStart, OnAnotherParityTellsIt) {
  StartSimulator("belk:line=9600e81");
  OpenConsole();
  ExpectRefusedStart();
  ExpectGoodStart();
}

TEST_F(BadStart, WithoutADeviceTellsIt) {
  OpenConsole();
  ExpectRefusedStart(Device() + " is not there. Plug in the adapter and try again.");
  ExpectGoodStart();
}

TEST_F(BadStart, OnSomethingThatIsNoSerialPortTellsIt) {
  std::ofstream(folder / "file") << "text";
  for (const std::string& device : {std::string("/dev/null"), (folder / "file").string(), folder.Path().string()}) {
    SCOPED_TRACE(device);
    OpenConsole(device);
    ExpectRefusedStart(device + " is no serial port. Give COM1 another device.");
  }
  std::string text;
  std::ifstream(folder / "file") >> text;
  EXPECT_EQ(text, "text");
}

TEST_F(BadStart, OnAPortThatAnotherProgramHoldsTellsItAndLeavesThatOneAlone) {
  OpenSession("belk:40003=123");
  const std::unique_ptr<test::ConsoleProcess> first = std::move(console);
  OpenConsole();
  ExpectRefusedStart(Device() + " is held by tarvo-console (process " + std::to_string(first->Process().Id()) +
                     "). Close that and try again.");
  for (int i = 0; i < 5; ++i) {
    first->Do("wait 60ms");
    EXPECT_EQ(first->Get("MessageBelk.Caption"), "OK");
  }
  EXPECT_EQ(first->Get("TotIN(0).Caption"), "123");
  EXPECT_EQ(first->Do("click StopBelk"), kNothing);
  StartSession();
  EXPECT_EQ(Get("StatusBar1(1).Text"), "");
}

TEST_F(BadStart, OnADeviceThatBabblesTellsIt) {
  constexpr unsigned kSeed = 20;
  SCOPED_TRACE("seed " + std::to_string(kSeed));
  const Babbler babbler(kSeed, Babbler::When::kAlways);
  OpenConsole(babbler.Device());
  ExpectRefusedStart();
}

TEST_F(BadStart, OnADeviceThatAnswersGarbageTellsIt) {
  constexpr unsigned kSeed = 21;
  SCOPED_TRACE("seed " + std::to_string(kSeed));
  const Babbler babbler(kSeed, Babbler::When::kWhenAsked);
  OpenConsole(babbler.Device());
  ExpectRefusedStart();
}

TEST_F(BadStart, OnADeviceThatVanishesMeanwhileTellsIt) {
  StartSimulator("belk");
  OpenConsole();
  simulator->Freeze();
  Do("nowait click StartBelk");
  EXPECT_EQ(Do("wait 100ms"), kNothing);
  simulator->Kill();
  EXPECT_EQ(Do("wait 300ms"), kNotBelk);
  EXPECT_EQ(Do("answer OK"), kNothing);
  ExpectOffline();
  ExpectGoodStart();
}

/// A settings file of any content, with the device on the command line or in the file.
class BelkSettingsFile : public test::BelkBench {
 protected:
  void OpenWith(const std::vector<std::string>& arguments) {
    console = std::make_unique<test::ConsoleProcess>(arguments);
    EXPECT_EQ(Do("click labBelk"), kNothing);
  }
  /// The program goes on with its defaults, so it searches.
  void OpenDespiteBox() {
    console = std::make_unique<test::ConsoleProcess>(
        std::vector<std::string>{"--settings", (folder / "settings").string(), "--com1", Device()});
    EXPECT_THAT(Do("get AutoScan"), HasSubstr("Registry Key Entry:"));
    Do("answer OK");
    EXPECT_EQ(Do("click labBelk"), kNothing);
  }
};

TEST_F(BelkSettingsFile, MapsThePort) {
  StartSimulator("belk");
  std::ofstream(folder / "settings") << "# the bench\nAUTOSCAN=FALSE\nCOM1=" << Device() << "\n";
  OpenWith({"--settings", (folder / "settings").string()});
  StartSession();
}

TEST_F(BelkSettingsFile, GivesWayToTheCommandLine) {
  StartSimulator("belk");
  std::ofstream(folder / "settings") << "AUTOSCAN=FALSE\nCOM1=/dev/null\n";
  OpenWith({"--settings", (folder / "settings").string(), "--com1", Device()});
  StartSession();
}

TEST_F(BelkSettingsFile, ThatCannotBeReadIsToldAndDoesNoHarm) {
  StartSimulator("belk");
  std::filesystem::create_directory(folder / "settings");
  OpenDespiteBox();
  StartSession();
  StopSession();
  console->Process().EndInput();
  EXPECT_EQ(console->Process().WaitWithin(), 0);
  EXPECT_THAT(console->Process().Errors(), HasSubstr((folder / "settings").string()));
}

TEST_F(BelkSettingsFile, OfGarbageDoesNoHarm) {
  constexpr unsigned kSeed = 22;
  SCOPED_TRACE("seed " + std::to_string(kSeed));
  StartSimulator("belk");
  std::mt19937 random(kSeed);
  std::string garbage(20000, '\0');
  std::generate(garbage.begin(), garbage.end(), [&] { return static_cast<char>(random() & 0xFF); });
  std::ofstream(folder / "settings") << garbage << "\nCOM1\nCOM1=\nCOM9=/dev/null\n=\n";
  OpenDespiteBox();
  StartSession();
}

}  // namespace
}  // namespace tarvo
