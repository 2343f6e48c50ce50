#pragma once

#include <functional>
#include <string>
#include <vector>

namespace tarvo::platform {

/// A serial port that the machine has.
struct SerialPort {
  std::string device;       ///< "/dev/ttyUSB0"
  std::string description;  ///< what the port or its adapter calls itself, "FT232R USB UART"; may be empty
  bool usb = false;
};

/// Gives the machine's serial ports.
using PortLister = std::function<std::vector<SerialPort>()>;

/// The serial ports that the system knows, in its own order; none when it cannot tell. Opens none of them for good.
std::vector<SerialPort> SystemPorts();

/// The order in which ports are offered: USB adapters first, then the others, each by name ("ttyUSB2" before
/// "ttyUSB10").
void SortPorts(std::vector<SerialPort>& ports);

}  // namespace tarvo::platform
