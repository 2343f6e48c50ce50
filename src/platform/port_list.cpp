#include "platform/port_list.h"

#include <libserialport.h>

#include <algorithm>
#include <memory>
#include <string_view>

namespace tarvo::platform {

namespace {

std::string TextOf(const char* text) {
  return text == nullptr ? std::string() : std::string(text);
}

bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}

/// `name` without the number at its end.
std::string_view StemOf(std::string_view name) {
  while (!name.empty() && IsDigit(name.back())) name.remove_suffix(1);
  return name;
}

/// By name, a number at the end by its value: one with fewer digits is smaller.
bool NameBefore(const std::string& left, const std::string& right) {
  if (left.size() != right.size() && StemOf(left) == StemOf(right)) return left.size() < right.size();
  return left < right;
}

}  // namespace

std::vector<SerialPort> SystemPorts() {
  std::vector<SerialPort> found;
  sp_port** list = nullptr;
  if (sp_list_ports(&list) != SP_OK) return found;
  const std::unique_ptr<sp_port*, void (*)(sp_port**)> owner(list, sp_free_port_list);
  for (sp_port** port = list; *port != nullptr; ++port) {
    SerialPort one;
    one.device = TextOf(sp_get_port_name(*port));
    one.usb = sp_get_port_transport(*port) == SP_TRANSPORT_USB;
    // The name that the adapter gives itself; the description would repeat its serial number.
    if (one.usb) one.description = TextOf(sp_get_port_usb_product(*port));
    if (one.description.empty()) one.description = TextOf(sp_get_port_description(*port));
    // Where nothing is known the description is the bare name over again.
    if (one.device.ends_with("/" + one.description)) one.description.clear();
    found.push_back(std::move(one));
  }
  return found;
}

void SortPorts(std::vector<SerialPort>& ports) {
  std::sort(ports.begin(), ports.end(), [](const SerialPort& left, const SerialPort& right) {
    if (left.usb != right.usb) return left.usb;
    return NameBefore(left.device, right.device);
  });
}

}  // namespace tarvo::platform
