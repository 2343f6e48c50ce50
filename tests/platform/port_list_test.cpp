#include "platform/port_list.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <set>
#include <string>
#include <vector>

namespace tarvo::platform {
namespace {

using testing::ElementsAre;

std::vector<std::string> Sorted(std::vector<SerialPort> ports) {
  SortPorts(ports);
  std::vector<std::string> devices;
  for (const SerialPort& port : ports) devices.push_back(port.device);
  return devices;
}

TEST(PortList, PutsUsbAdaptersFirst) {
  EXPECT_THAT(Sorted({{"/dev/ttyS0", "", false}, {"/dev/ttyUSB0", "", true}, {"/dev/ttyAMA0", "", false}}),
              ElementsAre("/dev/ttyUSB0", "/dev/ttyAMA0", "/dev/ttyS0"));
}

TEST(PortList, OrdersNumbersByTheirValue) {
  EXPECT_THAT(Sorted({{"/dev/ttyUSB10", "", true}, {"/dev/ttyUSB2", "", true}, {"/dev/ttyACM3", "", true}}),
              ElementsAre("/dev/ttyACM3", "/dev/ttyUSB2", "/dev/ttyUSB10"));
}

TEST(PortList, ListsOnlyDevicesThatAreThereAndEachOnce) {
  std::set<std::string> devices;
  for (const SerialPort& port : SystemPorts()) {
    EXPECT_TRUE(std::filesystem::is_character_file(port.device)) << port.device;
    EXPECT_TRUE(devices.insert(port.device).second) << port.device;
  }
}

}  // namespace
}  // namespace tarvo::platform
