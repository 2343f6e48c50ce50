#include "platform/com_ports.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <system_error>
#include <utility>

#include "core/fault.h"
#include "platform/port_advice.h"
#include "platform/posix_byte_port.h"

namespace tarvo::platform {

namespace {

/// A look at the machine's ports within this time of the last one would find the same: a search asks for all four.
constexpr core::Duration kFresh = core::milliseconds(500);

std::string NameOf(int comPort) {
  return "COM" + std::to_string(comPort);
}

/// True when both names lead to one device, through links too.
bool SameDevice(const std::string& left, const std::string& right) {
  if (left == right) return true;
  struct stat one{};
  struct stat other{};
  if (stat(left.c_str(), &one) != 0 || stat(right.c_str(), &other) != 0) return false;
  return S_ISCHR(one.st_mode) && S_ISCHR(other.st_mode) && one.st_rdev == other.st_rdev;
}

}  // namespace

ComPorts::ComPorts(core::Scheduler& scheduler, const Devices& given, const SettingsFile& settings, PortLister lister)
    : scheduler_(scheduler), lister_(std::move(lister)) {
  for (int comPort = 1; comPort <= kCount; ++comPort) Give(comPort, given.at(static_cast<std::size_t>(comPort - 1)));
  for (int comPort = 1; comPort <= kCount; ++comPort) Give(comPort, settings.Value(NameOf(comPort)).value_or(""));
}

ComPorts::Opened ComPorts::Open(int comPort, const bus::LineSettings& line) {
  const std::string device = DeviceOf(comPort);
  Opened opened;
  if (device.empty()) {
    opened.status = core::Status::Failed(FaultOfDevice(ENODEV, NameOf(comPort)));
  } else {
    opened = PosixBytePort::Open(scheduler_, device, line);
  }
  if (!opened.status.Ok()) opened.status = core::Status::Failed(WithAdvice(opened.status.GetFault(), comPort, device));
  return opened;
}

std::string ComPorts::DeviceOf(int comPort) {
  const Entry* entry = EntryOf(comPort);
  if (entry == nullptr) return {};
  std::error_code error;
  if (entry->device.empty() || (entry->found && !std::filesystem::exists(entry->device, error))) Fill();
  return entry->device;
}

std::string ComPorts::DescriptionOf(int comPort) {
  Fill();
  std::string device = DeviceOf(comPort);
  for (const SerialPort& port : found_) {
    if (!device.empty() && !port.description.empty() && SameDevice(port.device, device)) {
      return device + " - " + port.description;
    }
  }
  return device;
}

ComPorts::Entry* ComPorts::EntryOf(int comPort) {
  return comPort < 1 || comPort > kCount ? nullptr : &entries_.at(static_cast<std::size_t>(comPort - 1));
}

void ComPorts::Give(int comPort, const std::string& device) {
  Entry& entry = *EntryOf(comPort);
  if (entry.device.empty() && !Named(device)) entry.device = device;
}

void ComPorts::Fill() {
  const core::TimePoint now = scheduler_.Now();
  if (filledAt_ && now - *filledAt_ < kFresh) return;
  filledAt_ = now;
  found_ = lister_();
  SortPorts(found_);
  for (Entry& entry : entries_) {
    const bool there =
        std::any_of(found_.begin(), found_.end(), [&](const SerialPort& port) { return port.device == entry.device; });
    if (entry.found && !there) entry = {};
  }
  for (const SerialPort& port : found_) {
    auto* const vacant =
        std::find_if(entries_.begin(), entries_.end(), [](const Entry& entry) { return entry.device.empty(); });
    if (vacant == entries_.end()) return;
    if (!Named(port.device)) *vacant = {port.device, true};
  }
}

bool ComPorts::Named(const std::string& device) const {
  return std::any_of(entries_.begin(), entries_.end(),
                     [&](const Entry& entry) { return !entry.device.empty() && SameDevice(entry.device, device); });
}

}  // namespace tarvo::platform
