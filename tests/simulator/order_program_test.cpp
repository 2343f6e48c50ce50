// The program and the orders on its standard input.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <memory>

#include "support/child_process.h"
#include "support/mbpoll.h"
#include "support/simulator_process.h"
#include "support/temporary_folder.h"

namespace tarvo::simulator {
namespace {

using ::testing::HasSubstr;
using ::testing::MatchesRegex;

class OrderedSimulator : public ::testing::Test {
 protected:
  std::string Order(const std::string& lines) { return simulator.Order(lines); }
  test::Polled Poll() const { return test::RunMbpoll(folder / "com1", "-a 1 -b 9600 -P none -r 3"); }

  test::TemporaryFolder folder;
  test::SimulatorProcess simulator{{"--com1", "belk:40003=111", "--still"}, folder.Path()};
};

TEST_F(OrderedSimulator, AnswersEachOrderInOneLine) {
  simulator.Process().Write("\n \t\n");
  EXPECT_EQ(Order("com1 silence 3\ncom1 set 40003 0x10\ncom1 get 40003\n  com1 fault \ncom2 noise\nnonsense"),
            "ok com1 silence 3\nok com1 set 40003 0x10\nok com1 get 40003 16\nok com1 fault silence 3\n"
            "error: nothing is on com2\nerror: 'nonsense' is no port, com1 to com4");
}

TEST_F(OrderedSimulator, SpoilsWhatAMasterReadsUntilTold) {
  EXPECT_EQ(Poll().registers[3], 111);
  Order("com1 exception");
  EXPECT_THAT(Poll().errors, HasSubstr("Slave device or server failure"));
  Order("com1 other-address");
  EXPECT_NE(Poll().status, 0);
  Order("com1 clear\ncom1 set 40003 112");
  EXPECT_EQ(Poll().registers[3], 112);
}

TEST_F(OrderedSimulator, UnplugsAndPlugs) {
  Order("com1 unplug");
  EXPECT_NE(Poll().status, 0);
  EXPECT_THAT(Order("com1 plug"), MatchesRegex("ok com1 plug /dev/pts/[0-9]+"));
  EXPECT_EQ(Poll().registers[3], 111);
}

TEST_F(OrderedSimulator, OutlivesGarbage) {
  simulator.Process().Write(std::string(300'000, 'x') + "\n\377\376\n");
  EXPECT_EQ(simulator.Process().ReadUntil("\n"), "error: the order is too long\n");
  EXPECT_EQ(simulator.Process().ReadUntil("\n"), "error: '\377\376' is no port, com1 to com4\n");
  EXPECT_EQ(Order("com1 get 40003"), "ok com1 get 40003 111");
}

TEST_F(OrderedSimulator, GoesOnAtTheEndOfTheOrders) {
  simulator.Process().Write("com1 set 40003 7");
  simulator.Process().EndInput();
  EXPECT_EQ(simulator.Process().ReadUntil("\n"), "ok com1 set 40003 7\n") << "though the line was not ended";
  EXPECT_EQ(Poll().registers[3], 7);
  simulator.Process().Signal(SIGTERM);
  EXPECT_EQ(simulator.Process().WaitWithin(), 0);
}

TEST(SimulatorWithoutInput, GoesOnAsWell) {
  for (const char* input : {"</dev/null", "<&-"}) {
    const test::TemporaryFolder folder;
    test::ChildProcess program(
        {"sh", "-c",
         std::string("exec ") + TARVO_SIM + " --com1 belk --still --link " + folder.Path().string() + " " + input});
    ASSERT_THAT(program.ReadUntil("ready\n"), HasSubstr("ready\n")) << input;
    EXPECT_EQ(test::RunMbpoll(folder / "com1", "-a 1 -b 9600 -P none -r 1").registers[1], 0x0103) << input;
    program.Signal(SIGTERM);
    EXPECT_EQ(program.WaitWithin(), 0) << input;
  }
}

}  // namespace
}  // namespace tarvo::simulator
