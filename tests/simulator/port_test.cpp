// A port of the simulator that vanishes and comes back under a master that has it open.

#include "simulator/port.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <unistd.h>

#include <filesystem>

#include "platform/poll_loop.h"
#include "played_module.h"
#include "support/temporary_folder.h"

namespace tarvo::simulator {
namespace {

namespace fs = std::filesystem;

std::size_t OpenDescriptors() {
  return static_cast<std::size_t>(std::distance(fs::directory_iterator("/proc/self/fd"), fs::directory_iterator()));
}

class PluggedPort : public ::testing::Test {
 protected:
  PluggedPort() : links(folder.Path()), port(loop, 1, Belks({1, 7}), &links) {}

  void SetUp() override {
    const core::Status plugged = port.Plug();
    ASSERT_TRUE(plugged.Ok()) << plugged.Description();
  }

  std::vector<Module> Belks(const std::vector<int>& addresses) {
    std::vector<Module> modules;
    for (const int address : addresses) {
      ModuleOptions options = StillWith({});
      options.setting.address = address;
      modules.emplace_back(MakeModel("belk"), options, loop.Now());
    }
    return modules;
  }

  /// What the order is answered with.
  std::string Obey(const char* line) {
    const Port::Answer answer = port.Obey(ParseOrder(line).order);
    return answer.error.empty() ? "ok " + answer.told : answer.error;
  }

  Descriptor OpenByLink() const {
    return Descriptor(open((folder / "com1").c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC));
  }

  test::TemporaryFolder folder;
  platform::PollLoop loop;
  Links links;
  Port port;
};

TEST_F(PluggedPort, HangsUpAndTakesItsLinkAwayWhenItIsUnplugged) {
  const Descriptor master = OpenByLink();
  ASSERT_TRUE(master);
  pollfd watched{master.Number(), POLLIN, 0};
  EXPECT_EQ(poll(&watched, 1, 0), 0);
  EXPECT_EQ(Obey("com1 unplug"), "ok ");
  EXPECT_EQ(poll(&watched, 1, 0), 1);
  EXPECT_NE(watched.revents & POLLHUP, 0);
  EXPECT_TRUE(fs::is_empty(folder.Path()));
  EXPECT_EQ(port.Path(), "");
}

TEST_F(PluggedPort, ComesBackBehindTheSameLink) {
  Obey("com1 unplug");
  const std::string answer = Obey("com1 plug");
  EXPECT_EQ(answer, "ok " + port.Path());
  EXPECT_EQ(fs::read_symlink(folder / "com1").string(), port.Path());
  EXPECT_TRUE(OpenByLink());
}

TEST_F(PluggedPort, TellsWhenThereIsNothingToDo) {
  EXPECT_THAT(Obey("com1 plug"), "com1 is plugged in");
  Obey("com1 unplug");
  EXPECT_THAT(Obey("com1 unplug"), "com1 is unplugged");
}

TEST_F(PluggedPort, TakesAHundredPlugsWithoutADescriptorMore) {
  const std::size_t before = OpenDescriptors();
  for (int i = 0; i < 100; ++i) {
    Obey("com1 unplug");
    loop.RunOnce({});
    Obey("com1 plug");
    const Descriptor master = OpenByLink();
    ASSERT_TRUE(master) << i;
    loop.RunOnce({});
  }
  EXPECT_EQ(OpenDescriptors(), before);
}

TEST_F(PluggedPort, KeepsItsModulesWhileItIsUnplugged) {
  EXPECT_EQ(Obey("com1:7 set 40003 99"), "ok ");
  Obey("com1 unplug");
  EXPECT_EQ(Obey("com1:7 set 40004 98"), "ok ");
  Obey("com1 plug");
  EXPECT_EQ(Obey("com1:7 get 40003"), "ok 99");
  EXPECT_EQ(Obey("com1:7 get 40004"), "ok 98");
  EXPECT_EQ(Obey("com1:1 get 40003"), "ok 0");
}

TEST_F(PluggedPort, GetsWhatAMasterWouldRead) {
  Obey("com1:1 set 40002 5");
  Obey("com1:1 set 40009 1");
  // The inputs are shown negated.
  EXPECT_EQ(Obey("com1:1 get 40002"), "ok 26");
}

TEST_F(PluggedPort, RestartsTheModuleThatIsMeant) {
  EXPECT_EQ(Obey("com1:7 restart"), "ok ");
  EXPECT_FALSE(port.Modules().front().Restarting());
  EXPECT_TRUE(port.Modules().back().Restarting());
}

TEST_F(PluggedPort, TellsWhenAModuleWatchesNoLoads) {
  EXPECT_EQ(Obey("com1:7 load 3 open"), "no output 3 whose load is watched");
}

TEST_F(PluggedPort, WantsAnAddressWhereSeveralModulesAre) {
  EXPECT_EQ(Obey("com1 get 40003"), "several modules are on com1, tell one, such as com1:1");
  EXPECT_EQ(Obey("com1 restart"), "several modules are on com1, tell one, such as com1:1");
  EXPECT_EQ(Obey("com1:9 get 40003"), "no module with address 9 on com1");
  EXPECT_EQ(Obey("com1:1 get 40050"), "no register 40050");
  EXPECT_EQ(Obey("com1:9 silence"), "no module with address 9 on com1");
  EXPECT_EQ(Obey("com1 fault"), "ok none");
}

TEST_F(PluggedPort, TellsItsFault) {
  EXPECT_EQ(Obey("com1 fault"), "ok none");
  EXPECT_EQ(Obey("com1:7 wrong-crc 3"), "ok ");
  EXPECT_EQ(Obey("com1 fault"), "ok wrong-crc 3");
  Obey("com1 noise");
  EXPECT_EQ(Obey("com1 fault"), "ok noise");
  Obey("com1 clear");
  EXPECT_EQ(Obey("com1 fault"), "ok none");
}

}  // namespace
}  // namespace tarvo::simulator
