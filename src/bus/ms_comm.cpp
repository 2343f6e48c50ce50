#include "bus/ms_comm.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <utility>

#include "bus/rtu_frame.h"

namespace tarvo::bus {

MSComm::MSComm(view::Window& window, std::string_view name, PortOpener& opener)
    : Control(window, view::Kind::kComponent, name), opener_(opener) {}

core::Status MSComm::SetPortOpen(bool open) {
  if (!open) {
    port_.reset();
    return core::Status::Good();
  }
  if (PortOpen()) return core::Status::Good();
  const std::optional<LineSettings> line = LineSettings::Parse(Settings());
  if (!line) return core::Status::Failed(core::Fault(core::kDeviceUnavailable));
  PortOpener::Opened opened = opener_.Open(CommPort(), *line);
  port_ = std::move(opened.port);
  return std::move(opened.status);
}

void MSComm::Output(std::string_view text) {
  if (!PortOpen()) return;
  const std::vector<std::uint8_t> bytes(text.begin(), text.end());
  // A device that is gone shows as silence.
  (void)port_->Write(bytes);
}

std::string MSComm::Input() {
  if (!PortOpen()) return {};
  // One byte more than any frame has tells that it is none; a device may babble without end.
  std::array<std::uint8_t, kLongestFrame + 1> bytes{};
  const std::size_t count = port_->Take(bytes);
  port_->DiscardInput();
  return {bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(count)};
}

std::vector<view::NamedValue> MSComm::Properties() const {
  return {{"CommPort", std::int64_t{CommPort()}},
          {"Settings", Settings()},
          {"RThreshold", std::int64_t{RThreshold()}},
          {"PortOpen", PortOpen()}};
}

int TestPort(MSComm& comm, int port) {
  // One that is open already tells nothing about another.
  (void)comm.SetPortOpen(false);
  comm.CommPort = port;
  const bool opened = comm.SetPortOpen(true).Ok();
  (void)comm.SetPortOpen(false);
  return opened ? 1 : 0;
}

}  // namespace tarvo::bus
