#pragma once

#include <array>

#include "bus/byte_port.h"
#include "bus/ms_comm.h"
#include "pages/change_value.h"
#include "state/shared_state.h"
#include "view/window.h"

namespace tarvo::shell {

/// `PCsetup`: the PC's side of the line and the address of the module to talk to. Each click acts at once.
class PCsetup : public view::Window {
 public:
  struct Parts {
    view::Screen& screen;
    state::SharedState& state;
    bus::PortOpener& ports;
    pages::ChangeValue& changeValue;
    view::Panel& panel1;  ///< the status bar's passing texts, cleared when the page is shown
  };

  explicit PCsetup(const Parts& parts);

  static constexpr int kPorts = 4;
  static constexpr int kParities = 3;

  bus::MSComm MSComm1;

  view::ControlArray<view::OptionButton, kPorts> SetCOM;  ///< named "SetCOM1" to "SetCOM4"
  view::ControlArray<view::Label, kPorts> DeviceCOM;      ///< the devices behind them, "DeviceCOM1" to "DeviceCOM4"
  view::ComboBox PCBaudRate;
  view::ControlArray<view::OptionButton, kParities> Option;  ///< named "Option3" to "Option5": none, even, odd
  view::Label PCAddress{*this, "PCAddress", "1"};

  /// Enables the ports that `comm` can open, and says which device stands behind each.
  void TestPorts(bus::MSComm& comm);
  /// Shows the shared values, which others set too: port, speed, parity, address.
  void ShowLine();

  core::Task<> Activate() override;
  void Deactivate() override;
  void Unload() override;
  void KeyDown(view::Key key) override;
  view::Node Arrangement() const override;

 private:
  core::Task<> SetCOMClick(int port);
  void PCBaudRateClick();
  core::Task<> OptionClick();
  core::Task<> PCAddressClick();

  state::SharedState& state_;
  bus::PortOpener& ports_;
  pages::ChangeValue& changeValue_;
  view::Panel& panel1_;
  bool painting_ = false;
};

}  // namespace tarvo::shell
