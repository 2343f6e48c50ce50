#include "bus/ms_comm.h"

#include <optional>
#include <utility>

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

std::vector<view::NamedValue> MSComm::Properties() const {
  return {{"CommPort", std::int64_t{CommPort()}}, {"Settings", Settings()}, {"PortOpen", PortOpen()}};
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
