#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "support/console_process.h"
#include "support/simulator_process.h"
#include "support/temporary_folder.h"

namespace tarvo::test {

using Milliseconds = ChildProcess::Milliseconds;

inline const std::string kNothing = "null";
inline const std::string kSearchInFront = R"({"window":"frmKeyb"})";
inline const std::string kNothingFound = "No devices on line";

/// What a port costs on a line where nothing answers.
constexpr Milliseconds kSilence{2000};
/// What frames, turns and a busy machine may add to a whole search. Less than a port costs.
constexpr Milliseconds kMachine{1200};
/// Longer than any search takes.
constexpr Milliseconds kPatience{30000};

/// The console with its COM ports where a simulator has its own. A port without a simulator's is not there.
class SearchBench : public testing::Test {
 protected:
  /// As the simulator's command line has it: {"--com1", "belk:line=38400n81"}.
  void StartSimulator(std::vector<std::string> modules) {
    modules.emplace_back("--still");
    simulator.reset();
    // It was killed, and where its links lead is another's now.
    for (int comPort = 1; comPort <= 4; ++comPort) std::filesystem::remove(Device(comPort));
    simulator = std::make_unique<SimulatorProcess>(modules, folder.Path());
  }
  std::string Device(int comPort) const { return (folder / ("com" + std::to_string(comPort))).string(); }

  void StoreSwitch(const std::string& text) const { std::ofstream(Settings()) << "AUTOSCAN=" << text << '\n'; }
  std::filesystem::path Settings() const { return folder / "settings"; }

  void OpenConsole() {
    std::vector<std::string> arguments = {"--settings", Settings().string()};
    for (int comPort = 1; comPort <= 4; ++comPort) {
      arguments.push_back("--com" + std::to_string(comPort));
      arguments.push_back(Device(comPort));
    }
    console = std::make_unique<ConsoleProcess>(arguments);
  }
  /// The console that does not search by itself.
  void OpenConsoleWithoutSearch() {
    StoreSwitch("FALSE");
    OpenConsole();
  }
  /// Waits for the end of a search that the start of the program began.
  void AwaitStart() {
    const ConsoleReply reply = console->Try("get StartComm", kPatience);
    EXPECT_EQ(reply.Value(), "0") << reply.Line();
  }

  std::string Do(const std::string& command) const { return console->Do(command); }
  std::string Get(const std::string& name) const { return console->Get(name); }

  /// A whole search; gives how long it took.
  Milliseconds RunSearch(const std::string& starter = "buttCheckDevice") const {
    const auto start = std::chrono::steady_clock::now();
    Do("click " + starter);
    const ConsoleReply idle = console->Try("idle within 30s", kPatience);
    EXPECT_TRUE(idle.Ok()) << idle.Line();
    return Since(start);
  }
  static Milliseconds Since(std::chrono::steady_clock::time_point start) {
    return std::chrono::duration_cast<Milliseconds>(std::chrono::steady_clock::now() - start);
  }

  /// The program as any search leaves it.
  void ExpectSearchIsOver() const {
    EXPECT_EQ(Do("wait 20ms"), kNothing);
    EXPECT_EQ(Get("StartComm"), "0");
    EXPECT_EQ(Get("EscPressed"), "0");
    EXPECT_EQ(Get("MousePointer"), "default");
    EXPECT_EQ(Get("MDIForm1.ModCom1.PortOpen"), "false");
    for (const std::string name : {"LabHome", "LabPCSetup", "labBelk", "MenuBelk", "buttCheckDevice"}) {
      EXPECT_EQ(Get("MDIForm1." + name + ".Enabled"), "true") << name;
    }
    for (int comPort = 1; comPort <= 4; ++comPort) {
      EXPECT_FALSE(console->Process().HasOpen(Device(comPort))) << comPort;
    }
  }
  /// `settings` as "38400,n,8,1".
  void ExpectFound(int comPort, const std::string& settings) const {
    EXPECT_EQ(Get("StatusBar1(2).Text"),
              "Connected to Belk, COM" + std::to_string(comPort) + "," + settings + "  Module Address:1");
    EXPECT_EQ(Get("PCPort"), std::to_string(comPort));
    EXPECT_EQ(Get("PCSettings"), settings);
    EXPECT_EQ(Get("ModuleAddress"), "1");
    EXPECT_EQ(Get("NrFinestra"), "0");
    // Only the page on the screen is found by a bare name.
    EXPECT_EQ(Get("StartBelk.Enabled"), "true");
    EXPECT_EQ(Get("TimerLetturaSeriale.Enabled"), "false");
    ExpectSearchIsOver();
  }
  void ExpectNothingFound() const {
    EXPECT_EQ(Get("StatusBar1(2).Text"), kNothingFound);
    ExpectSearchIsOver();
  }
  bool HomeIsShown() const { return console->Try("get gear1").Ok(); }

  TemporaryFolder folder;
  std::unique_ptr<SimulatorProcess> simulator;
  std::unique_ptr<ConsoleProcess> console;
};

}  // namespace tarvo::test
