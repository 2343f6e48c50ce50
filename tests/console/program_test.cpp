// The program itself, as a process: options, exit status, standard input.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "support/quiet_settings.h"
#include "support/temporary_folder.h"

namespace tarvo::console {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

class ConsoleProgram : public testing::Test {
 protected:
  ConsoleProgram() {
    std::filesystem::create_directory(folder / "Tarvo");
    test::SettingsWithoutSearch(folder / "Tarvo" / "Tarvo.conf");
  }

  struct Ended {
    int status = -1;
    std::string out;
    std::string errors;
  };

  /// Runs the program from the shell: `before` and `after` stand around its name. Killed after 20 seconds.
  Ended Run(const std::string& after, const std::string& before = "") const {
    const std::string command = before + " env XDG_CONFIG_HOME=" + folder.Path().string() +
                                " timeout 20 " TARVO_CONSOLE " " + after + " >" + (folder / "out").string() + " 2>" +
                                (folder / "errors").string();
    const int status = std::system(command.c_str());  // NOLINT(cert-env33-c)
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, Contents("out"), Contents("errors")};
  }

  std::string Contents(const std::string& name) const {
    std::ostringstream contents;
    contents << std::ifstream(folder / name).rdbuf();
    return contents.str();
  }
  std::string Write(const std::string& name, const std::string& contents) const {
    std::ofstream(folder / name) << contents;
    return (folder / name).string();
  }

  test::TemporaryFolder folder;
};

constexpr char kStopped[] = "{\"ok\":true,\"value\":0,\"modal\":null}\n";

TEST_F(ConsoleProgram, RefusesWrongUsageWithOneLine) {
  for (const char* arguments :
       {"--nonsense", "--com1", "--com9 /dev/null", "--settings", "a b", "/nowhere/script", "/tmp"}) {
    const Ended ended = Run(std::string(arguments) + " </dev/null");
    EXPECT_EQ(ended.status, 2) << arguments;
    EXPECT_EQ(ended.out, "") << arguments;
    EXPECT_THAT(ended.errors, StartsWith("tarvo-console: ")) << arguments;
    EXPECT_EQ(std::count(ended.errors.begin(), ended.errors.end(), '\n'), 1) << arguments;
  }
}

TEST_F(ConsoleProgram, EndsAtTheEndOfInput) {
  for (const char* input : {"</dev/null", "<&-"}) {
    const Ended ended = Run(std::string("--json ") + input);
    EXPECT_EQ(ended.status, 0) << input;
    EXPECT_EQ(ended.out, "") << input;
  }
}

TEST_F(ConsoleProgram, AnswersEachTypedLineAndGoesOnAfterAFailure) {
  const Ended ended = Run("--json", "printf 'get StartComm\\nclick Nothing\\nget StartComm' |");
  EXPECT_EQ(ended.status, 0);
  EXPECT_EQ(ended.out, std::string(kStopped) +
                           "{\"ok\":false,\"error\":\"there is no Nothing here\",\"modal\":null}\n" + kStopped);
  EXPECT_EQ(ended.errors, "");
}

TEST_F(ConsoleProgram, ReadsAFileAsStandardInput) {
  const Ended ended = Run("--json <" + Write("commands", "get StartComm # now\nclick Nothing\nget StartComm\n"));
  EXPECT_EQ(ended.status, 0);
  EXPECT_EQ(std::count(ended.out.begin(), ended.out.end(), '\n'), 3);
}

TEST_F(ConsoleProgram, ExitsWithOneWhenALineOfAScriptFails) {
  const std::string script = Write("script", "get StartComm\n\nclick Nothing\nget StartComm\n");
  const Ended ended = Run("--json " + script + " </dev/null");
  EXPECT_EQ(ended.status, 1);
  EXPECT_EQ(ended.errors, script + ":3: there is no Nothing here\n");
  EXPECT_EQ(std::count(ended.out.begin(), ended.out.end(), '\n'), 2);
}

TEST_F(ConsoleProgram, ExitsWithZeroAfterAGoodScript) {
  const Ended ended = Run(Write("script", "click labBelk\nshow\nquit\nclick Nothing\n") + " </dev/null");
  EXPECT_EQ(ended.status, 0) << ended.errors;
  EXPECT_EQ(ended.errors, "");
  EXPECT_THAT(ended.out, HasSubstr("Five digital inputs"));
}

TEST_F(ConsoleProgram, LivesWhileNobodyTypes) {
  // The wait and its answer come before the next line is typed.
  const Ended ended = Run("--json", "(echo wait 50ms; sleep 0.3; echo get StartComm) |");
  EXPECT_EQ(ended.status, 0);
  EXPECT_EQ(ended.out, std::string("{\"ok\":true,\"modal\":null}\n") + kStopped);
}

TEST_F(ConsoleProgram, WaitsInRealTime) {
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(Run("--json " + Write("script", "wait 300ms\nuntil StartComm = 0 within 5s\n")).status, 0);
  const auto gone = std::chrono::steady_clock::now() - start;
  EXPECT_GE(gone, std::chrono::milliseconds(300));
}

TEST_F(ConsoleProgram, TakesGarbageWithoutHarm) {
  const Ended ended = Run("--json", "(printf '%0300000d' 0; printf '\\n\\377\\376\\000\\n\"\\n') |");
  EXPECT_EQ(ended.status, 0);
  EXPECT_THAT(ended.out, StartsWith("{\"ok\":false,\"error\":\"the line is too long\""));
  EXPECT_EQ(std::count(ended.out.begin(), ended.out.end(), '\n'), 3);
}

TEST_F(ConsoleProgram, TellsOfASettingsFileThatCannotBeRead) {
  std::filesystem::create_directory(folder / "folder");
  const Ended ended = Run("--json --settings " + (folder / "folder").string(), "echo get StartComm |");
  EXPECT_EQ(ended.status, 0);
  EXPECT_THAT(ended.out, HasSubstr("\"text\":\"Error Opening Registry Key Entry:"));
  EXPECT_THAT(ended.errors, HasSubstr((folder / "folder").string()));
}

TEST_F(ConsoleProgram, TellsHowItIsUsed) {
  const Ended ended = Run("--help");
  EXPECT_EQ(ended.status, 0);
  EXPECT_THAT(ended.out, StartsWith("usage: tarvo-console [--json]"));
}

}  // namespace
}  // namespace tarvo::console
