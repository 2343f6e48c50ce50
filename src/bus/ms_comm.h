#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "bus/byte_port.h"
#include "core/fault.h"
#include "view/control.h"

namespace tarvo::bus {

/// The plain serial instance of a window: owns a port and moves bytes, without knowing what they mean.
class MSComm : public view::Control {
 public:
  /// Codes of `CommEvent`: what may have gone wrong on the line.
  enum class Event {
    kBreak = 1001,
    kFraming = 1004,
    kOverrun = 1006,
    kReceiveFull = 1008,
    kParity = 1009,
    kTransmitFull = 1010,
    kDeviceControl = 1011,
  };

  MSComm(view::Window& window, std::string_view name, PortOpener& opener);

  view::Property<int> CommPort{*this, 1};
  view::Property<std::string> Settings{*this, "9600,n,8,1"};
  view::Property<int> RThreshold{*this, 0};  ///< bytes received that signal the instance; it is asked by `Input`

  bool PortOpen() const { return port_ != nullptr; }
  /// Opens the port with the present `CommPort` and `Settings`, or closes it. The faults are those of `PortOpener`.
  core::Status SetPortOpen(bool open);

  /// Sends the bytes of `text` as they stand. Nothing goes out when the port is closed or gone.
  void Output(std::string_view text);
  /// What was received since it was asked last, one character a byte; empty when the port is closed. Of more than a
  /// frame can have, 257 bytes.
  std::string Input();

  /// What happened on the line.
  std::function<void(Event event)> OnComm;

  std::vector<view::NamedValue> Properties() const override;

 private:
  PortOpener& opener_;
  std::unique_ptr<BytePort> port_;
};

/// Opens the port of that number and closes it again: 1 when it opened, else 0.
int TestPort(MSComm& comm, int port);

}  // namespace tarvo::bus
