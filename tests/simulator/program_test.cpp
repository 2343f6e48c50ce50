// The program itself, and another's Modbus master, mbpoll, at its ports.

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <map>
#include <sstream>
#include <thread>

#include "support/temporary_folder.h"

namespace tarvo::simulator {
namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;
using ::testing::MatchesRegex;

/// A program that runs beside the test; killed at the end when it still does.
class Program {
 public:
  explicit Program(const std::vector<std::string>& command) {
    std::array<int, 2> out{};
    std::array<int, 2> error{};
    if (pipe2(out.data(), O_CLOEXEC) != 0 || pipe2(error.data(), O_CLOEXEC) != 0) return;
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, out[1], 1);
    posix_spawn_file_actions_adddup2(&actions, error[1], 2);
    std::vector<char*> arguments;
    for (const std::string& word : command) arguments.push_back(const_cast<char*>(word.c_str()));
    arguments.push_back(nullptr);
    if (posix_spawnp(&process_, arguments[0], &actions, nullptr, arguments.data(), environ) != 0) process_ = -1;
    posix_spawn_file_actions_destroy(&actions);
    close(out[1]);
    close(error[1]);
    out_ = out[0];
    error_ = error[0];
  }
  Program(const Program&) = delete;
  Program& operator=(const Program&) = delete;
  ~Program() {
    if (process_ > 0) kill(process_, SIGKILL);
    Wait();
    close(out_);
    close(error_);
  }

  bool Started() const { return process_ > 0; }
  void Signal(int signal) const { kill(process_, signal); }

  /// Its standard output up to and with `end`, or as much as there is in five seconds.
  std::string ReadUntil(const std::string& end) { return Read(out_, end); }
  /// All of its standard output or error, until it closes them.
  std::string Output() { return Read(out_, {}); }
  std::string Errors() { return Read(error_, {}); }

  /// Its exit status; -1 when a signal ended it.
  int Wait() {
    if (process_ <= 0) return status_;
    int status = 0;
    waitpid(process_, &status, 0);
    process_ = -1;
    status_ = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return status_;
  }

 private:
  static std::string Read(int from, const std::string& end) {
    std::string text;
    std::array<char, 4096> buffer{};
    while (end.empty() || text.find(end) == std::string::npos) {
      pollfd readable{from, POLLIN, 0};
      if (poll(&readable, 1, 5000) <= 0) break;
      const ssize_t count = read(from, buffer.data(), buffer.size());
      if (count <= 0) break;
      text.append(buffer.data(), static_cast<std::size_t>(count));
    }
    return text;
  }

  pid_t process_ = -1;
  int status_ = -1;
  int out_ = -1;
  int error_ = -1;
};

class SimulatorProgram : public ::testing::Test {
 protected:
  /// Starts the simulator with its links in the test's directory and waits until it is ready.
  void Start(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), TARVO_SIM);
    arguments.insert(arguments.end(), {"--link", directory.Path().string()});
    simulator = std::make_unique<Program>(arguments);
    ASSERT_TRUE(simulator->Started());
    told = simulator->ReadUntil("ready\n");
    ASSERT_THAT(told, HasSubstr("ready\n"));
  }

  struct Polled {
    int status = -1;
    std::map<int, int> registers;  // by mbpoll's reference, 1 for 40001
    std::string errors;
  };

  /// Runs mbpoll once on com1, with what `options` say and, when there are any, values to write.
  Polled Poll(const std::string& options, const std::vector<int>& values = {}) {
    std::vector<std::string> command = {"mbpoll", "-m", "rtu", "-t", "4", "-1", "-o", "0.3"};
    std::istringstream words(options);
    for (std::string word; words >> word;) command.push_back(word);
    command.push_back((directory.Path() / "com1").string());
    for (const int value : values) command.push_back(std::to_string(value));
    Program mbpoll(command);
    EXPECT_TRUE(mbpoll.Started()) << "mbpoll is not installed";
    Polled polled;
    std::istringstream lines(mbpoll.Output());
    for (std::string line; std::getline(lines, line);) {
      int reference = 0;
      int value = 0;
      if (std::sscanf(line.c_str(), "[%d]: %d", &reference, &value) == 2) polled.registers[reference] = value;
    }
    polled.errors = mbpoll.Errors();
    polled.status = mbpoll.Wait();
    return polled;
  }

  test::TemporaryFolder directory;
  std::unique_ptr<Program> simulator;
  std::string told;
};

const char* const kUsual = "-a 1 -b 9600 -P none";

std::string Usual(const std::string& more) {
  return std::string(kUsual) + ' ' + more;
}

TEST_F(SimulatorProgram, TellsItsPortsAndThatItIsReady) {
  Start({"--com1", "belk:addr=1,line=38400n81,fw=3", "--com3", "belk:addr=7,line=9600e81,fw=1"});
  EXPECT_THAT(told, MatchesRegex("com1 /dev/pts/[0-9]+ belk address 1 38400,n,8,1 firmware 3\n"
                                 "com3 /dev/pts/[0-9]+ belk address 7 9600,e,8,1 firmware 1\nready\n"));
  const std::string target = fs::read_symlink(directory.Path() / "com1").string();
  EXPECT_THAT(told, HasSubstr("com1 " + target + " "));
}

TEST_F(SimulatorProgram, TakesItsLinksAwayWhenASignalEndsIt) {
  for (const int signal : {SIGINT, SIGTERM}) {
    Start({"--com1", "belk", "--com2", "belk"});
    EXPECT_TRUE(fs::is_symlink(directory.Path() / "com2"));
    simulator->Signal(signal);
    EXPECT_EQ(simulator->Wait(), 0);
    EXPECT_TRUE(fs::is_empty(directory.Path()));
  }
}

TEST_F(SimulatorProgram, ReplacesTheLinksOfOneThatWasKilled) {
  Start({"--com1", "belk"});
  simulator->Signal(SIGKILL);
  simulator->Wait();
  EXPECT_TRUE(fs::is_symlink(directory.Path() / "com1"));
  Start({"--com1", "belk", "--still"});
  EXPECT_EQ(Poll(Usual("-r 1")).registers[1], 0x0103);
}

TEST_F(SimulatorProgram, TellsWrongUsageInOneLineAndEndsWith2) {
  for (const std::string module : {"", "bolk", "belk:addr=300"}) {
    Program program({TARVO_SIM, "--com1", module});
    EXPECT_EQ(program.Output(), "");
    EXPECT_THAT(program.Errors(), MatchesRegex("tarvo-sim: [^\n]+ \\(see tarvo-sim --help\\)\n"));
    EXPECT_EQ(program.Wait(), 2);
  }
}

TEST_F(SimulatorProgram, TellsWhenItsLinksCannotBeMade) {
  Program program({TARVO_SIM, "--com1", "belk", "--link", "/dev/null/ports"});
  EXPECT_THAT(program.Errors(), MatchesRegex("tarvo-sim: /dev/null/ports: [^\n]+\n"));
  EXPECT_EQ(program.Wait(), 1);
}

TEST_F(SimulatorProgram, PrintsItsHelp) {
  Program program({TARVO_SIM, "--help"});
  EXPECT_THAT(program.Output(), HasSubstr("Usage: tarvo-sim"));
  EXPECT_EQ(program.Wait(), 0);
}

TEST_F(SimulatorProgram, IsReadByMbpoll) {
  Start({"--com1", "belk:40002=0x0105,40003=1,40004=2,40005=3,40006=4,40007=65535,40008=20,40009=0x81", "--still"});
  const Polled polled = Poll(Usual("-r 2 -c 9"));
  EXPECT_EQ(polled.status, 0) << polled.errors;
  // The inputs are shown negated.
  EXPECT_EQ(
      polled.registers,
      (std::map<int, int>{{2, 0x011A}, {3, 1}, {4, 2}, {5, 3}, {6, 4}, {7, 65535}, {8, 20}, {9, 0x81}, {10, 0x0101}}));
}

TEST_F(SimulatorProgram, IsWrittenByMbpoll) {
  Start({"--com1", "belk", "--still"});
  EXPECT_EQ(Poll(Usual("-r 8"), {33}).status, 0);
  EXPECT_EQ(Poll(Usual("-r 3"), {10, 20, 30, 40, 50}).status, 0);
  EXPECT_EQ(Poll(Usual("-r 3 -c 6")).registers,
            (std::map<int, int>{{3, 10}, {4, 20}, {5, 30}, {6, 40}, {7, 50}, {8, 33}}));
}

TEST_F(SimulatorProgram, RefusesByExceptionsThatMbpollTells) {
  Start({"--com1", "belk", "--still"});
  EXPECT_THAT(Poll(Usual("-r 12")).errors, HasSubstr("Illegal data address"));
  EXPECT_THAT(Poll(Usual("-r 8"), {255}).errors, HasSubstr("Illegal data value"));
  // Input registers, function 4.
  EXPECT_THAT(Poll(Usual("-t 3 -r 1")).errors, HasSubstr("Illegal function"));
}

TEST_F(SimulatorProgram, IsSilentToMbpollOnAnotherLineOrAddress) {
  Start({"--com1", "belk:line=19200e81", "--still"});
  EXPECT_EQ(Poll("-a 1 -b 19200 -P even -r 1").registers[1], 0x0103);
  for (const char* options : {"-a 1 -b 19200 -P odd -r 1", "-a 1 -b 19200 -P none -r 1", "-a 1 -b 9600 -P even -r 1",
                              "-a 2 -b 19200 -P even -r 1"}) {
    EXPECT_THAT(Poll(options).errors, HasSubstr("timed out")) << options;
  }
  EXPECT_EQ(Poll("-a 1 -b 19200 -P even -r 1").registers[1], 0x0103);
}

TEST_F(SimulatorProgram, RestartsByItsEepromWithItsNewAddressSpeedAndParity) {
  Start({"--com1", "belk", "--still"});
  EXPECT_EQ(Poll(Usual("-r 72"), {44, 0x18, 0x0309}).status, 0);
  EXPECT_EQ(Poll(Usual("-r 8 -c 3")).registers, (std::map<int, int>{{8, 10}, {9, 0}, {10, 0x0101}}));
  EXPECT_EQ(Poll(Usual("-r 11"), {1}).status, 0);
  std::this_thread::sleep_for(std::chrono::milliseconds(320));
  EXPECT_THAT(Poll(Usual("-r 1")).errors, HasSubstr("timed out"));
  EXPECT_EQ(Poll("-a 9 -b 38400 -P odd -r 8 -c 3").registers, (std::map<int, int>{{8, 44}, {9, 0x18}, {10, 0x0309}}));
}

TEST_F(SimulatorProgram, LivesWhileNobodyAsks) {
  Start({"--com1", "belk:line=57600n81,40009=0x80,40007=0"});
  const int before = Poll("-a 1 -b 57600 -P none -r 7").registers[7];
  std::this_thread::sleep_for(std::chrono::milliseconds(200));
  const int after = Poll("-a 1 -b 57600 -P none -r 7").registers[7];
  EXPECT_GE(after - before, 200);
}

}  // namespace
}  // namespace tarvo::simulator
