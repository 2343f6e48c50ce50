#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "support/child_process.h"

namespace tarvo::test {

/// A line of JSON by which the console answers a command.
class ConsoleReply {
 public:
  explicit ConsoleReply(std::string line) : line_(std::move(line)) {}

  const std::string& Line() const { return line_; }
  bool Ok() const { return line_.starts_with("{\"ok\":true,"); }
  /// What was asked for, as JSON, but a text without its quotes.
  std::string Value() const { return Between("\"value\":"); }
  /// Why the command failed.
  std::string Error() const { return Between("\"error\":"); }
  /// What stands in front, as JSON; "null" when nothing does.
  std::string Modal() const {
    const std::size_t at = line_.rfind(kModal);
    return at == std::string::npos ? "" : line_.substr(at + kModal.size(), line_.size() - at - kModal.size() - 1);
  }

 private:
  static constexpr std::string_view kModal = ",\"modal\":";

  std::string Between(std::string_view key) const {
    const std::size_t at = line_.find(key);
    const std::size_t end = line_.rfind(kModal);
    if (at == std::string::npos || end == std::string::npos) return "";
    std::string json = line_.substr(at + key.size(), end - at - key.size());
    return json.starts_with('"') ? json.substr(1, json.size() - 2) : json;
  }

  std::string line_;
};

/// The console as a program that talks JSON. A test program that uses it tells the program's path as TARVO_CONSOLE.
class ConsoleProcess {
 public:
  /// `arguments` follow "--json". `runner` is a program with its arguments that starts the console, none by default.
  explicit ConsoleProcess(std::vector<std::string> arguments, const std::vector<std::string>& runner = {})
      : process_(Command(std::move(arguments), runner)) {}

  ChildProcess& Process() { return process_; }

  /// The reply to a command that may well fail.
  ConsoleReply Try(const std::string& command, ChildProcess::Milliseconds patience = ChildProcess::kPatience) {
    Send(command);
    return Receive(command, patience);
  }
  /// The two halves of it, for what a test does meanwhile.
  void Send(const std::string& command) {
    EXPECT_TRUE(process_.Write(command + '\n')) << command << ": the console takes no more";
  }
  ConsoleReply Receive(const std::string& command, ChildProcess::Milliseconds patience = ChildProcess::kPatience) {
    std::string line = process_.ReadUntil("\n", patience);
    EXPECT_TRUE(line.ends_with('\n')) << command << ": no reply";
    if (line.ends_with('\n')) line.pop_back();
    return ConsoleReply(line);
  }
  /// The same for one that must not; gives what stands in front after it, as JSON.
  std::string Do(const std::string& command) {
    const ConsoleReply reply = Try(command);
    EXPECT_TRUE(reply.Ok()) << command << ": " << reply.Error();
    return reply.Modal();
  }
  /// A value as JSON, a text without its quotes. `name` is that of a property or of a shared value.
  std::string Get(const std::string& name) {
    const ConsoleReply reply = Try("get " + name);
    EXPECT_TRUE(reply.Ok()) << name << ": " << reply.Error();
    return reply.Value();
  }
  int Number(const std::string& name) { return std::atoi(Get(name).c_str()); }

 private:
  static std::vector<std::string> Command(std::vector<std::string> arguments, const std::vector<std::string>& runner) {
    arguments.insert(arguments.begin(), {TARVO_CONSOLE, "--json"});
    arguments.insert(arguments.begin(), runner.begin(), runner.end());
    return arguments;
  }

  ChildProcess process_;
};

}  // namespace tarvo::test
