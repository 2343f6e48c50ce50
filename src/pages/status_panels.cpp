#include "pages/status_panels.h"

namespace tarvo::pages {

namespace {

std::string TextOf(const core::Fault& fault, int comPort) {
  if (!fault.Advice().empty()) return fault.Advice();
  return "COM" + std::to_string(comPort) + " cannot be opened: " + fault.what() + ".";
}

}  // namespace

std::string ConnectionLine(std::string_view begin, const bus::ModCom& modcom) {
  return std::string(begin) + "COM" + std::to_string(modcom.CommPort) + "," + modcom.Settings() +
         "  Module Address:" + std::to_string(modcom.ModuleAddr);
}

core::Status OpenPort(bus::ModCom& modcom, StatusPanels& status) {
  core::Status opened = modcom.SetPortOpen(true);
  if (!opened.Ok()) {
    status.refusal = TextOf(opened.GetFault(), modcom.CommPort());
    status.passing.Text = status.refusal;
  } else if (status.passing.Text() == status.refusal) {
    status.passing.Text = "";
  }
  return opened;
}

}  // namespace tarvo::pages
