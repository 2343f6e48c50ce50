#pragma once

#include <fstream>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

#include "e2e/belk_bench.h"

namespace tarvo::test {

inline const std::string kMustStop = "Communication must be stopped before exit !";
inline const std::string kCommittedBox =
    BoxJson("EEProm updated! Please reset module to apply changes.", "information");
inline const std::string kResetInSessionBox = BoxJson("Module is Resetted! Comunication Stopped", "information");
inline const std::string kResetBox = BoxJson("Module is Resetted!", "information");

/// The console with settings of the test's own, and no search at its start unless they say so.
class ShellBench : public BelkBench {
 protected:
  std::filesystem::path Settings() const { return folder / "own-settings"; }
  void WriteSettings(const std::string& text) const { std::ofstream(Settings(), std::ios::binary) << text; }
  std::string ReadSettings() const {
    std::ifstream file(Settings(), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }

  /// `devices` from COM1 on; those that are not given are not there.
  std::unique_ptr<ConsoleProcess> OpenShell(std::vector<std::string> devices,
                                            const std::filesystem::path& settings) const {
    devices.resize(4);
    std::vector<std::string> arguments = {"--settings", settings.string()};
    for (std::size_t i = 0; i < devices.size(); ++i) {
      const std::string comPort = std::to_string(i + 1);
      arguments.push_back("--com" + comPort);
      arguments.push_back(devices[i].empty() ? (folder / ("no-com" + comPort)).string() : devices[i]);
    }
    return std::make_unique<ConsoleProcess>(arguments);
  }
  /// On the simulator's com1, with the Belk page shown.
  void OpenBelk() {
    WriteSettings("AUTOSCAN=FALSE\n");
    console = OpenShell({Device()}, Settings());
    EXPECT_EQ(Do("click labBelk"), kNothing);
  }
  /// All of it: simulator, console, session.
  void OpenBelkSession(const std::string& module) {
    StartSimulator(module);
    OpenBelk();
    StartSession();
  }

  void ExpectEnds(int status = 0) const { EXPECT_EQ(console->Process().WaitWithin(), status); }
  void SendAndEnd(const std::string& command) const {
    EXPECT_TRUE(console->Process().Write(command + '\n'));
    ExpectEnds();
  }

  /// What a register of the simulated module holds, also while a session runs.
  std::string Held(int number) const {
    const std::string answer = simulator->Order("com1 get " + std::to_string(number));
    EXPECT_TRUE(answer.starts_with("ok ")) << answer;
    return answer.substr(answer.rfind(' ') + 1);
  }
  std::vector<std::string> Images() const { return {Held(40072), Held(40073), Held(40074)}; }

  /// Sets the PC's line on its page and comes back to the Belk page.
  void SetPcLine(const std::string& baud, const std::string& parityOption, const std::string& address) const {
    EXPECT_EQ(Do("click LabPCSetup"), kNothing);
    EXPECT_EQ(Do("choose PCBaudRate " + baud), kNothing);
    EXPECT_EQ(Do("click " + parityOption), kNothing);
    EXPECT_EQ(Do("click PCAddress"), kValueDialog);
    EXPECT_EQ(EnterValue(address), kNothing);
    EXPECT_EQ(Do("click labBelk"), kNothing);
  }
  /// Edits a value of the page by its dialog.
  void Edit(const std::string& control, const std::string& text) const {
    EXPECT_EQ(Do("click " + control), kValueDialog);
    EXPECT_EQ(EnterValue(text), kNothing);
  }
  /// Until a module that was reset listens again.
  void AwaitRestart() const { console->Do("wait 450ms"); }
};

}  // namespace tarvo::test
