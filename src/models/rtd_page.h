#pragma once

#include <optional>
#include <vector>

#include "pages/baud_list.h"
#include "pages/device_page.h"

namespace tarvo::models {

/// What the two pages of RTD inputs share: the values and failures of each channel, the serial settings, when the
/// module is read, and how a commit paces its writes. The rest is each page's own.
class RtdPage : public pages::DevicePage {
 public:
  static constexpr state::Register kStatus{40002};
  static constexpr state::Register kValue1{40003};  ///< the first of four
  static constexpr state::Register kSerial{40035};

  static constexpr int kChannels = 4;

  // Controls.

  view::ControlArray<view::Label, kChannels> labTI_RTD;
  view::ControlArray<view::Label, kChannels> labChannelFail;
  view::ControlArray<view::Label, kChannels> labSensorFail;
  view::ControlArray<view::ComboBox, kChannels> cbSensorType;
  view::Label labModuleAddress{*this, "labModuleAddress", "1", "40035.0-7   Module Address"};
  view::ComboBox cbBaudRate{*this, "cbBaudRate", pages::kSevenRates, "40035.10-12   Module Baud Rate"};
  view::CheckBox checkParity{*this, "checkParity", "Parity ON/OFF", "40035.8-9  - Parity ON/OFF"};
  view::OptionButton OptionEven{*this, "OptionEven", "parity", "Even", "40035.8-9  - Parity ON/OFF"};
  view::OptionButton OptionOdd{*this, "OptionOdd", "parity", "Odd", "40035.8-9  - Parity ON/OFF"};

  void Load() override;
  core::Task<> Activate() override;
  void Deactivate() override;
  core::Task<> ReadEEPromFlags() override;
  /// The settings that `EnableSettings` and the serial line have.
  void NerithEnableControls(bool enabled);
  /// The first entry of each list, and four channels. No flow calls it.
  void ResetForm();

 protected:
  /// A register of the commit and its value.
  struct Setting {
    state::Register target;
    state::Word value;
  };

  RtdPage(pages::PageContext& context, const pages::PageIdentity& identity);

  core::Task<> ApplyFirmware(int /*release*/) override { co_return; }
  core::Task<> ReadBeforePolling() override { return ReadEEPromFlags(); }
  core::Task<> ManageFirst() override { return ManageContinue(); }
  void Started() override { NerithEnableControls(true); }

  /// What `NerithEnableControls` enables of a channel.
  virtual void EnableSettings(int channel, bool enabled) = 0;
  /// What else the identity tells; fills the lists when that is due.
  virtual void Identified(state::Word identity) = 0;
  /// Says in panel 2 that the module is another.
  virtual const char* WrongModuleText() const = 0;
  /// Shows the serial settings and all that stands behind them.
  virtual core::Task<> ShowConfiguration(std::optional<state::Word> serial) = 0;
  /// What `ResetForm` does to the page's own lists.
  virtual void ResetLists() = 0;
  /// What a commit writes, in this order.
  virtual std::vector<Setting> Configuration() = 0;

  /// Reads a register of a channel; panel 1 tells when that fails.
  core::Task<std::optional<state::Word>> ReadChannel(state::Register source);
  /// The failures of a kind: those channels are visible whose bit, from `first` on, is set.
  void ShowFailures(view::ControlArray<view::Label, kChannels>& labels, unsigned first, const char* text);
  /// 0 none, 1 even, 2 odd; 3 sets the box and selects nothing.
  void ShowParity(unsigned code);
  unsigned ParityCode() const;
  static unsigned IndexOf(const view::ComboBox& list) { return static_cast<unsigned>(list.ListIndex()); }
  /// Serial settings, for the arrangement.
  view::Node SerialFields() const;

  int channels_ = kChannels;  ///< 3 or 4
  bool listsReady_ = false;

 private:
  core::Task<> ReadConfiguration();
  core::Task<> ParityClick();
  core::Task<> WEEPGavenClick();
  core::Task<> WriteConfiguration();
  core::Task<> ResetGavenClick();
  void EnableOptions(bool enabled);
};

}  // namespace tarvo::models
