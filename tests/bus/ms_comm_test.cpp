#include "bus/ms_comm.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "core/virtual_scheduler.h"
#include "support/bare_window.h"
#include "support/memory_port.h"
#include "view/screen.h"

namespace tarvo::bus {
namespace {

using core::milliseconds;
using testing::ElementsAre;
using testing::IsEmpty;

class MSCommTest : public testing::Test {
 protected:
  MSCommTest() {
    ports.Connect(1, line);
    EXPECT_TRUE(comm.SetPortOpen(true).Ok());
  }

  core::VirtualScheduler scheduler;
  view::Screen screen{scheduler};
  test::MemoryLine line{scheduler};
  test::MemoryPorts ports;
  test::BareWindow window{screen};
  MSComm comm{window, "MSComm1", ports};
};

TEST_F(MSCommTest, SendsBytesAsTheyStandInOneGo) {
  comm.Output(std::string("\x00\x7F\x80\xFF\n\r", 6));
  ASSERT_EQ(line.Writes().size(), 1U);
  EXPECT_THAT(line.Writes()[0].bytes, ElementsAre(0x00, 0x7F, 0x80, 0xFF, 0x0A, 0x0D));
}

TEST_F(MSCommTest, GivesWhatWasReceivedOnce) {
  line.Deliver({0x00, 0x7F});
  line.Deliver({0x80, 0xFF}, milliseconds(10));
  scheduler.Run(milliseconds(10));
  EXPECT_EQ(comm.Input(), std::string("\x00\x7F\x80\xFF", 4));
  EXPECT_EQ(comm.Input(), "");
}

TEST_F(MSCommTest, GivesWhatWasReceivedInAHardWait) {
  line.Deliver({0x01, 0x02}, milliseconds(200));
  line.Deliver({0x03}, milliseconds(201));
  scheduler.Block(milliseconds(200));
  EXPECT_EQ(comm.Input(), "\x01\x02");
}

TEST_F(MSCommTest, GivesWhatWasReceivedBelowItsThreshold) {
  comm.RThreshold = 8;
  line.Deliver({0x01, 0x02});
  scheduler.RunReady();
  EXPECT_EQ(comm.Input(), "\x01\x02");
}

TEST_F(MSCommTest, GivesOneByteMoreThanAFrameCanHaveAndForgetsTheRest) {
  const std::vector<std::uint8_t> bytes(600, 0x55);
  line.Deliver(bytes);
  scheduler.RunReady();
  EXPECT_EQ(comm.Input(), std::string(257, '\x55'));
  EXPECT_EQ(comm.Input(), "");
}

TEST_F(MSCommTest, IsDumbAndDeafWithThePortClosed) {
  line.Deliver({0x01});
  scheduler.RunReady();
  ASSERT_TRUE(comm.SetPortOpen(false).Ok());
  comm.Output("abc");
  EXPECT_EQ(comm.Input(), "");
  EXPECT_THAT(line.Writes(), IsEmpty());
}

TEST_F(MSCommTest, IsDumbAndDeafWithTheDeviceGone) {
  line.Lose();
  line.Deliver({0x01}, milliseconds(1));
  scheduler.Run(milliseconds(10));
  comm.Output("abc");
  EXPECT_EQ(comm.Input(), "");
  EXPECT_THAT(line.Writes(), IsEmpty());
}

}  // namespace
}  // namespace tarvo::bus
