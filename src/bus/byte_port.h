#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>

#include "bus/line_settings.h"
#include "core/fault.h"

namespace tarvo::bus {

/// Who wants to know what happens on a `BytePort`. Called from the scheduler's turn, never from within a call of the
/// port.
class BytePortListener {
 public:
  /// Bytes have arrived; `Take` gives them.
  virtual void BytesArrived() = 0;
  /// The device is gone; nothing more arrives and each write fails.
  virtual void PortLost() = 0;

 protected:
  ~BytePortListener() = default;
};

/// The one door to a serial line that is open. Its end closes the line.
class BytePort {
 public:
  virtual ~BytePort() = default;

  /// Who is told from now on; null for nobody.
  virtual void SetListener(BytePortListener* listener) = 0;
  /// Sends all of `bytes`. False when the device is gone.
  virtual bool Write(std::span<const std::uint8_t> bytes) = 0;
  /// Takes what has arrived, as far as it fits, and gives how much that was. Never waits.
  virtual std::size_t Take(std::span<std::uint8_t> into) = 0;
  /// Throws away what has arrived and was not taken.
  virtual void DiscardInput() = 0;
  virtual core::Status SetLine(const LineSettings& line) = 0;
};

/// Opens serial lines by the number of their COM port.
class PortOpener {
 public:
  struct Opened {
    std::unique_ptr<BytePort> port;  ///< null when opening failed
    core::Status status = core::Status::Good();
  };

  virtual ~PortOpener() = default;
  /// Faults: "Device not found" (no device behind the number, or the device is not there), "Permission denied",
  /// "Port already open" (held by this or another program), "Device unavailable" (anything else). The fault's advice
  /// says to the user why, and what to do.
  virtual Opened Open(int comPort, const LineSettings& line) = 0;
  /// What stands behind the number, for the user: "/dev/ttyUSB0 - FT232R USB UART". Empty when nothing does.
  virtual std::string DescriptionOf(int /*comPort*/) { return {}; }
};

}  // namespace tarvo::bus
