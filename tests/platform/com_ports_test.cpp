#include "platform/com_ports.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "core/virtual_scheduler.h"
#include "platform/poll_loop.h"
#include "support/pseudo_terminal.h"
#include "support/temporary_folder.h"

namespace tarvo::platform {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;

using Devices = ComPorts::Devices;

class ComPortsTest : public testing::Test {
 protected:
  /// Ports over `settings` as the file's text, on a machine that has `machine`.
  ComPorts& Make(const Devices& given, const std::string& text) {
    std::ofstream(settings.Path()) << text;
    EXPECT_TRUE(settings.Load().Ok());
    ports = std::make_unique<ComPorts>(scheduler, given, settings, [this] {
      ++looks;
      return machine;
    });
    return *ports;
  }

  std::vector<std::string> Mapped() {
    std::vector<std::string> devices;
    for (int comPort = 1; comPort <= ComPorts::kCount; ++comPort) devices.push_back(ports->DeviceOf(comPort));
    return devices;
  }

  void AfterAWhile() { scheduler.Run(std::chrono::seconds(1)); }

  void Unplug(const std::string& device) {
    std::erase_if(machine, [&](const SerialPort& port) { return port.device == device; });
  }

  core::VirtualScheduler scheduler;
  test::TemporaryFolder folder;
  SettingsFile settings{folder / "Tarvo.conf"};
  std::vector<SerialPort> machine;
  int looks = 0;
  std::unique_ptr<ComPorts> ports;
};

struct Row {
  const char* what;
  Devices given;
  const char* settings;
  std::vector<SerialPort> machine;
  std::vector<std::string> mapped;
};

TEST_F(ComPortsTest, MapsByCommandLineThenSettingsThenWhatIsFound) {
  const SerialPort s0{"/dev/ttyS0", "", false};
  const SerialPort s1{"/dev/ttyS1", "", false};
  const SerialPort u0{"/dev/ttyUSB0", "", true};
  const SerialPort u1{"/dev/ttyUSB1", "", true};
  const std::vector<Row> rows = {
      {"nothing at all", {}, "", {}, {"", "", "", ""}},
      {"found ports, USB first", {}, "", {s0, s1, u0}, {"/dev/ttyUSB0", "/dev/ttyS0", "/dev/ttyS1", ""}},
      {"no more than four",
       {},
       "",
       {s0, s1, u0, u1, {"/dev/ttyS2", "", false}},
       {"/dev/ttyUSB0", "/dev/ttyUSB1", "/dev/ttyS0", "/dev/ttyS1"}},
      {"settings keep their place", {}, "COM2=/dev/x\n", {u0, s0}, {"/dev/ttyUSB0", "/dev/x", "/dev/ttyS0", ""}},
      {"a found port that settings name is not named again",
       {},
       "COM3=/dev/ttyUSB0\n",
       {u0, s0},
       {"/dev/ttyS0", "", "/dev/ttyUSB0", ""}},
      {"command line before settings",
       {"/dev/a", "", "", ""},
       "COM1=/dev/b\nCOM2=/dev/c\n",
       {},
       {"/dev/a", "/dev/c", "", ""}},
      {"settings do not repeat the command line",
       {"", "/dev/a", "", ""},
       "COM1=/dev/a\n",
       {u0},
       {"/dev/ttyUSB0", "/dev/a", "", ""}},
      {"settings that repeat themselves", {}, "COM1=/dev/a\nCOM4=/dev/a\n", {}, {"/dev/a", "", "", ""}},
      {"command line that repeats itself",
       {"/dev/a", "/dev/a", "", ""},
       "COM2=/dev/b\n",
       {},
       {"/dev/a", "/dev/b", "", ""}},
      {"an empty value is none", {}, "COM1=\nCOM2=/dev/a\n", {u0}, {"/dev/ttyUSB0", "/dev/a", "", ""}},
      {"numbers that do not exist", {}, "COM0=/dev/a\nCOM5=/dev/b\n", {}, {"", "", "", ""}},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.what);
    machine = row.machine;
    Make(row.given, row.settings);
    EXPECT_EQ(Mapped(), row.mapped);
  }
}

TEST_F(ComPortsTest, KnowsADeviceBehindALink) {
  const test::PseudoTerminal device;
  fs::create_symlink(device.Name(), folder / "by-id");
  machine = {{device.Name(), "Adapter", true}};
  Make({}, "COM1=" + (folder / "by-id").string() + "\n");
  EXPECT_THAT(Mapped(), ElementsAre((folder / "by-id").string(), "", "", ""));
  EXPECT_EQ(ports->DescriptionOf(1), (folder / "by-id").string() + " - Adapter");
}

TEST_F(ComPortsTest, DescribesADeviceForTheUser) {
  machine = {{"/dev/ttyUSB0", "FT232R USB UART", true}, {"/dev/ttyS0", "", false}};
  Make({}, "COM3=/dev/x\n");
  EXPECT_EQ(ports->DescriptionOf(1), "/dev/ttyUSB0 - FT232R USB UART");
  EXPECT_EQ(ports->DescriptionOf(2), "/dev/ttyS0");
  EXPECT_EQ(ports->DescriptionOf(3), "/dev/x");
  EXPECT_EQ(ports->DescriptionOf(4), "");
  EXPECT_EQ(ports->DescriptionOf(5), "");
}

TEST_F(ComPortsTest, FindsAnAdapterThatIsPluggedInLater) {
  Make({}, "");
  EXPECT_EQ(ports->DeviceOf(1), "");
  machine = {{"/dev/tarvo-ttyUSB0", "", true}};
  AfterAWhile();
  EXPECT_EQ(ports->DeviceOf(1), "/dev/tarvo-ttyUSB0");
}

TEST_F(ComPortsTest, AFoundDeviceKeepsItsNumberWhenAnotherIsUnplugged) {
  machine = {{"/dev/tarvo-ttyUSB0", "", true}, {"/dev/tarvo-ttyUSB1", "", true}};
  Make({}, "");
  EXPECT_THAT(Mapped(), ElementsAre("/dev/tarvo-ttyUSB0", "/dev/tarvo-ttyUSB1", "", ""));
  Unplug("/dev/tarvo-ttyUSB0");
  AfterAWhile();
  EXPECT_THAT(Mapped(), ElementsAre("", "/dev/tarvo-ttyUSB1", "", ""));
  machine.push_back({"/dev/tarvo-ttyUSB2", "", true});
  AfterAWhile();
  EXPECT_THAT(Mapped(), ElementsAre("/dev/tarvo-ttyUSB2", "/dev/tarvo-ttyUSB1", "", ""));
}

TEST_F(ComPortsTest, LooksAtTheMachineOnceForAllFourNumbers) {
  Make({}, "");
  Mapped();
  EXPECT_EQ(looks, 1);
}

TEST_F(ComPortsTest, LooksAtTheMachineForNoNumberThatIsGiven) {
  Make({"/dev/a", "/dev/b", "/dev/c", "/dev/d"}, "");
  Mapped();
  EXPECT_EQ(looks, 0);
}

TEST_F(ComPortsTest, ANumberWithoutADeviceIsNotFound) {
  Make({}, "");
  for (const int comPort : {-1, 0, 1, 4, 5, 1000000}) {
    const auto opened = ports->Open(comPort, bus::LineSettings());
    EXPECT_EQ(opened.port, nullptr);
    EXPECT_EQ(opened.status.Description(), core::kDeviceNotFound) << comPort;
  }
}

TEST_F(ComPortsTest, ADeviceThatIsNotThereIsNotFound) {
  Make({}, "COM2=/dev/tarvo-no-such-device\n");
  EXPECT_EQ(ports->Open(2, bus::LineSettings()).status.Description(), core::kDeviceNotFound);
}

TEST_F(ComPortsTest, OpensTheDeviceBehindANumber) {
  PollLoop loop;
  const test::PseudoTerminal device;
  ComPorts onLoop(loop, {"", device.Name(), "", ""}, settings, [] { return std::vector<SerialPort>(); });
  const auto opened = onLoop.Open(2, {57600, bus::Parity::kOdd});
  ASSERT_TRUE(opened.status.Ok()) << opened.status.Description();
  const termios line = device.Line();
  EXPECT_EQ(cfgetospeed(&line), static_cast<speed_t>(B57600));
  EXPECT_EQ(onLoop.Open(2, bus::LineSettings()).status.Description(), core::kPortAlreadyOpen);
}

}  // namespace
}  // namespace tarvo::platform
