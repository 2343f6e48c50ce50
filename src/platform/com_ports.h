#pragma once

#include <array>
#include <optional>
#include <string>
#include <vector>

#include "bus/byte_port.h"
#include "core/scheduler.h"
#include "platform/port_list.h"
#include "platform/settings_file.h"

namespace tarvo::platform {

/// The COM ports that the program knows, and the devices behind them. A device found on the machine stays behind its
/// number while it is there; a number without a device looks for one each time it is asked.
class ComPorts : public bus::PortOpener {
 public:
  static constexpr int kCount = 4;
  /// A device for each of COM1 to COM4; an empty one is not given.
  using Devices = std::array<std::string, kCount>;

  /// `given` (the command line's) goes before what `settings` say; the rest is filled with the ports that `lister`
  /// finds, in the order of `SortPorts`. No device is named twice: a later number that repeats one counts as not given.
  ComPorts(core::Scheduler& scheduler, const Devices& given, const SettingsFile& settings,
           PortLister lister = SystemPorts);

  Opened Open(int comPort, const bus::LineSettings& line) override;

  /// The device behind COM`comPort`; empty when there is none.
  std::string DeviceOf(int comPort);
  /// For the user: "/dev/ttyUSB0 - FT232R USB UART", or the device alone; empty when there is none.
  std::string DescriptionOf(int comPort) override;

 private:
  struct Entry {
    std::string device;  // empty: none
    bool found = false;  // on the machine; else it was given and stays
  };

  /// Null for a number that is not 1 to 4.
  Entry* EntryOf(int comPort);
  void Give(int comPort, const std::string& device);
  /// Looks at the machine's ports, forgets those that are gone and fills the numbers without a device.
  void Fill();
  bool Named(const std::string& device) const;

  core::Scheduler& scheduler_;
  PortLister lister_;
  std::array<Entry, kCount> entries_;
  std::vector<SerialPort> found_;
  std::optional<core::TimePoint> filledAt_;
};

}  // namespace tarvo::platform
