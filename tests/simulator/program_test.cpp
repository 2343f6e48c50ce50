// The program itself, and another's Modbus master, mbpoll, at its ports.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <map>
#include <memory>
#include <thread>

#include "support/child_process.h"
#include "support/mbpoll.h"
#include "support/simulator_process.h"
#include "support/temporary_folder.h"

namespace tarvo::simulator {
namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;
using ::testing::MatchesRegex;

class SimulatorProgram : public ::testing::Test {
 protected:
  /// Starts the simulator with its links in the test's directory and waits until it is ready.
  void Start(const std::vector<std::string>& arguments) {
    simulator = std::make_unique<test::SimulatorProcess>(arguments, directory.Path());
  }

  /// Runs mbpoll once on com1.
  test::Polled Poll(const std::string& options, const std::vector<int>& values = {}) const {
    return test::RunMbpoll(directory / "com1", options, values);
  }

  test::TemporaryFolder directory;
  std::unique_ptr<test::SimulatorProcess> simulator;
};

const char* const kUsual = "-a 1 -b 9600 -P none";

std::string Usual(const std::string& more) {
  return std::string(kUsual) + ' ' + more;
}

TEST_F(SimulatorProgram, TellsItsPortsAndThatItIsReady) {
  Start({"--com1", "belk:addr=1,line=38400n81,fw=3", "--com3", "belk:addr=7,line=9600e81,fw=1"});
  EXPECT_THAT(simulator->Told(), MatchesRegex("com1 /dev/pts/[0-9]+ belk address 1 38400,n,8,1 firmware 3\n"
                                              "com3 /dev/pts/[0-9]+ belk address 7 9600,e,8,1 firmware 1\nready\n"));
  const std::string target = fs::read_symlink(directory.Path() / "com1").string();
  EXPECT_THAT(simulator->Told(), HasSubstr("com1 " + target + " "));
}

TEST_F(SimulatorProgram, TakesItsLinksAwayWhenASignalEndsIt) {
  for (const int signal : {SIGINT, SIGTERM}) {
    Start({"--com1", "belk", "--com2", "belk"});
    EXPECT_TRUE(fs::is_symlink(directory.Path() / "com2"));
    simulator->Process().Signal(signal);
    EXPECT_EQ(simulator->Process().WaitWithin(), 0);
    EXPECT_TRUE(fs::is_empty(directory.Path()));
  }
}

TEST_F(SimulatorProgram, ReplacesTheLinksOfOneThatWasKilled) {
  Start({"--com1", "belk"});
  simulator->Kill();
  EXPECT_TRUE(fs::is_symlink(directory.Path() / "com1"));
  Start({"--com1", "belk", "--still"});
  EXPECT_EQ(Poll(Usual("-r 1")).registers[1], 0x0103);
}

TEST_F(SimulatorProgram, TellsWrongUsageInOneLineAndEndsWith2) {
  for (const std::string module : {"", "bolk", "belk:addr=300"}) {
    test::ChildProcess program({TARVO_SIM, "--com1", module});
    EXPECT_EQ(program.Output(), "");
    EXPECT_THAT(program.Errors(), MatchesRegex("tarvo-sim: [^\n]+ \\(see tarvo-sim --help\\)\n"));
    EXPECT_EQ(program.WaitWithin(), 2);
  }
}

TEST_F(SimulatorProgram, TellsWhenItsLinksCannotBeMade) {
  test::ChildProcess program({TARVO_SIM, "--com1", "belk", "--link", "/dev/null/ports"});
  EXPECT_THAT(program.Errors(), MatchesRegex("tarvo-sim: /dev/null/ports: [^\n]+\n"));
  EXPECT_EQ(program.WaitWithin(), 1);
}

TEST_F(SimulatorProgram, PrintsItsHelp) {
  test::ChildProcess program({TARVO_SIM, "--help"});
  EXPECT_THAT(program.Output(), HasSubstr("Usage: tarvo-sim"));
  EXPECT_EQ(program.WaitWithin(), 0);
}

TEST_F(SimulatorProgram, IsReadByMbpoll) {
  Start({"--com1", "belk:40002=0x0105,40003=1,40004=2,40005=3,40006=4,40007=65535,40008=20,40009=0x81", "--still"});
  const test::Polled polled = Poll(Usual("-r 2 -c 9"));
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
