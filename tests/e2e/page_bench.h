#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "support/console_process.h"
#include "support/mbpoll.h"
#include "support/page_names.h"
#include "support/quiet_settings.h"
#include "support/simulator_process.h"
#include "support/temporary_folder.h"

namespace tarvo::test {

/// The console's words for a message box with the program's caption and an OK.
inline std::string BoxJson(const std::string& text, const std::string& icon) {
  return R"({"window":"MsgBox","text":")" + text + R"(","caption":"Tarvo","icon":")" + icon + R"(","buttons":["OK"]})";
}

inline const std::string kNothing = "null";
inline const std::string kWrongComm = "ERROR! Wrong Comm.";
inline const std::string kValueDialog = R"({"window":"ChangeValue"})";
inline const std::string kLampOn = "255";
inline const std::string kLampOff = "64";

enum class Life { kStill, kLive };

/// The console on COM1 with a model's page on its screen, and a simulator whose com1 is behind it.
class PageBench : public testing::Test {
 protected:
  /// `model` as the page's controls have it: "Belk" for "StartBelk".
  explicit PageBench(std::string model) : PageBench(PageNames{std::move(model)}) {}
  explicit PageBench(PageNames names) : names_(std::move(names)) {}

  /// Where the simulator's port is, once it runs.
  std::string Device() const { return (folder / "com1").string(); }

  /// `module` as the simulator's command line has it: "belk:fw=1". One that was there before ends.
  void StartSimulator(const std::string& module, Life life = Life::kStill) {
    std::vector<std::string> arguments = {"--com1", module};
    if (life == Life::kStill) arguments.emplace_back("--still");
    // The old one takes its links away, so it goes before the new one makes them.
    simulator.reset();
    simulator = std::make_unique<SimulatorProcess>(arguments, folder.Path());
  }

  /// A program of its own on `device`, with its own empty settings.
  std::unique_ptr<ConsoleProcess> OpenProgram(const std::string& device) {
    const std::string settings = SettingsWithoutSearch(folder / ("settings" + std::to_string(++programs_)));
    auto program = std::make_unique<ConsoleProcess>(std::vector<std::string>{"--settings", settings, "--com1", device});
    EXPECT_EQ(program->Do("click " + names_.label), kNothing);
    return program;
  }
  void OpenConsole(const std::string& device) { console = OpenProgram(device); }
  void OpenConsole() { OpenConsole(Device()); }

  /// A click on Start that must lead to a session.
  void StartSession() {
    EXPECT_EQ(console->Do("click " + names_.start), kNothing);
    EXPECT_EQ(Get("StartComm"), "-1");
    Until(names_.message + ".Caption = OK");
  }
  void StopSession() {
    EXPECT_EQ(console->Do("click " + names_.stop), kNothing);
    EXPECT_EQ(Get("StartComm"), "0");
  }
  /// All of it: simulator, console, session.
  void OpenSession(const std::string& module, Life life = Life::kStill) {
    StartSimulator(module, life);
    OpenConsole();
    StartSession();
  }
  std::string Do(const std::string& command) const { return console->Do(command); }
  std::string Get(const std::string& name) const { return console->Get(name); }
  int Number(const std::string& name) const { return console->Number(name); }
  /// Lets the program run until that holds; the test fails when it does not.
  void Until(const std::string& condition, const std::string& limit = "3s") const {
    console->Do("until " + condition + " within " + limit);
  }
  /// Long enough for a poll and the decode of what it brought.
  void LetPoll() const { console->Do("wait 450ms"); }

  /// Types into the value dialog in front and presses its OK; gives what stands in front then.
  std::string EnterValue(const std::string& text) const {
    EXPECT_EQ(console->Do("type Text1 \"" + text + "\""), kValueDialog);
    return console->Do("click OK");
  }

  /// What the module itself holds, from 40001 on by its last digits: Registers(9) is 40009. Only while no session runs.
  std::map<int, int> Registers(int first, int count = 1) const {
    const Polled polled =
        RunMbpoll(Device(), "-a 1 -b 9600 -P none -r " + std::to_string(first) + " -c " + std::to_string(count));
    EXPECT_EQ(polled.status, 0) << polled.errors;
    return polled.registers;
  }
  /// Sets a register as another master would.
  void SetRegister(int number, int value) const {
    const Polled polled = RunMbpoll(Device(), "-a 1 -b 9600 -P none -r " + std::to_string(number), {value});
    EXPECT_EQ(polled.status, 0) << polled.errors;
  }
  int Register(int number) const {
    const std::map<int, int> registers = Registers(number);
    return registers.contains(number) ? registers.at(number) : -1;
  }

  /// As the page is while no session runs.
  void ExpectOffline() const {
    EXPECT_EQ(Get("StartComm"), "0");
    EXPECT_EQ(Get("ModCom1.PortOpen"), "false");
    EXPECT_EQ(Get("TimerLetturaSeriale.Enabled"), "false");
    EXPECT_EQ(Get("TimerGestioneLetture.Enabled"), "false");
    EXPECT_EQ(Get(names_.start + ".Enabled"), "true");
    EXPECT_EQ(Get(names_.label + ".Enabled"), "true");
    EXPECT_EQ(Get(names_.menu + ".Enabled"), "true");
    EXPECT_EQ(Get("MousePointer"), "default");
  }

  TemporaryFolder folder;
  std::unique_ptr<SimulatorProcess> simulator;
  std::unique_ptr<ConsoleProcess> console;

 private:
  PageNames names_;
  int programs_ = 0;
};

}  // namespace tarvo::test
