#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "bus/byte_port.h"
#include "bus/line_settings.h"
#include "core/fault.h"
#include "core/scheduler.h"
#include "platform/file_descriptor.h"

namespace tarvo::platform {

/// The fault of a serial device that could not be opened or set up, from the system's error number. Carries that
/// number, and the device as its source.
core::Fault FaultOfDevice(int error, const std::string& device);

/// A serial line of the system, or a pseudo terminal that stands in for one.
class PosixBytePort : public bus::BytePort {
 public:
  /// Opens `device` for this program alone and sets the line. For the faults see `bus::PortOpener::Open`.
  static bus::PortOpener::Opened Open(core::Scheduler& scheduler, const std::string& device,
                                      const bus::LineSettings& line);
  PosixBytePort(const PosixBytePort&) = delete;
  PosixBytePort& operator=(const PosixBytePort&) = delete;
  ~PosixBytePort() override;

  void SetListener(bus::BytePortListener* listener) override;
  /// A device that takes no bytes for `kWriteWait` is not gone: the rest of the bytes is dropped, which the peer's
  /// silence will tell.
  bool Write(std::span<const std::uint8_t> bytes) override;
  std::size_t Take(std::span<std::uint8_t> into) override;
  void DiscardInput() override;
  core::Status SetLine(const bus::LineSettings& line) override;

  static constexpr core::Duration kWriteWait = core::milliseconds(20);

 private:
  PosixBytePort(core::Scheduler& scheduler, FileDescriptor descriptor, std::string device);

  void OnEvents(core::DescriptorEvents events);
  /// Reads once into `input_`. False when nothing was there.
  bool ReadOnce();
  void Lose();
  void TellLost();

  FileDescriptor descriptor_;
  std::string device_;
  bus::BytePortListener* listener_ = nullptr;
  // What has arrived and was not taken: the bytes from begin_ to end_. What does not fit is dropped.
  std::array<std::uint8_t, 4096> input_{};
  std::size_t begin_ = 0;
  std::size_t end_ = 0;
  bool lost_ = false;
  bool lostTold_ = false;
  core::Call lostCall_;
  std::optional<core::DescriptorWatch> watch_;
};

}  // namespace tarvo::platform
