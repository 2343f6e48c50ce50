#pragma once

#include <algorithm>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "support/child_process.h"

namespace tarvo::test {

/// The simulator as a program, once it has said that it is ready. A test program that uses it tells the program's path
/// as TARVO_SIM.
class SimulatorProcess {
 public:
  /// Puts links to its ports into `folder`.
  SimulatorProcess(std::vector<std::string> arguments, const std::filesystem::path& folder)
      : process_(Command(std::move(arguments), folder)), told_(process_.ReadUntil("ready\n")) {
    if (!told_.ends_with("ready\n")) throw std::runtime_error("the simulator is not ready: " + told_);
  }

  /// What it said up to "ready".
  const std::string& Told() const { return told_; }
  ChildProcess& Process() { return process_; }

  /// Hands it an order, or several that it takes in one go, a line each; gives its answers.
  std::string Order(const std::string& lines) {
    process_.Write(lines + '\n');
    std::string answers;
    for (auto left = 1 + std::count(lines.begin(), lines.end(), '\n'); left > 0; --left) {
      answers += process_.ReadUntil("\n");
    }
    if (answers.ends_with('\n')) answers.pop_back();
    return answers;
  }

  /// It vanishes without a word, and its links stay.
  void Kill() {
    process_.Signal(SIGKILL);
    process_.Wait();
  }
  /// It hears nothing and says nothing from now on, though its ports are still there.
  void Freeze() const { process_.Signal(SIGSTOP); }
  void Thaw() const { process_.Signal(SIGCONT); }

 private:
  static std::vector<std::string> Command(std::vector<std::string> arguments, const std::filesystem::path& folder) {
    arguments.insert(arguments.begin(), TARVO_SIM);
    arguments.insert(arguments.end(), {"--link", folder.string()});
    return arguments;
  }

  ChildProcess process_;
  std::string told_;
};

}  // namespace tarvo::test
