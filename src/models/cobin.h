#pragma once

#include <array>
#include <span>

#include "pages/baud_list.h"
#include "pages/device_page.h"

namespace tarvo::models {

/// Five digital outputs, a safe state for each, and a watchdog that puts them into it.
class Cobin : public pages::DevicePage {
 public:
  explicit Cobin(pages::PageContext& context);

  // Registers.

  static constexpr state::Register kOutputs{40002};    ///< bits 0 to 4
  static constexpr state::Register kSafeState{40003};  ///< bits 0 to 4
  static constexpr state::Register kSafeTime{40004};   ///< 5 to 250, in the module's unit
  static constexpr state::Register kFlags{40005};
  static constexpr state::Register kAddress{40006};        ///< the page looks at the stored one
  static constexpr state::Register kStoredAddress{40070};  ///< bits 8 to 10 baud code, low byte module address

  static constexpr int kCount = 5;

  // Controls: one row an output.

  view::ControlArray<view::Label, kCount> LabelOUT;
  view::ControlArray<view::ImageBox, kCount> OutCobin;  ///< named "OutCobin1" to "OutCobin5"
  view::ControlArray<view::Label, kCount> LabelOUTsafe;
  view::ControlArray<view::ImageBox, kCount> SafeCobin;  ///< named "SafeCobin1" to "SafeCobin5"

  // Controls: flags.

  view::CheckBox CheckCobin1{*this, "CheckCobin1", "Safe State Set", "40005.7 - Safe state Off/On"};
  view::CheckBox CheckCobin2{*this, "CheckCobin2", "Negate Outputs", "40005.0 - Negate Outputs"};
  view::CheckBox CheckCobin3{*this, "CheckCobin3", "Reset on Tx", "40005.6 - Reset Comm Timer on Rx/Tx"};
  view::CheckBox CheckCobin4{*this, "CheckCobin4", "Delay 12ms ", "40005.2 - Latency Time"};
  view::CheckBox CheckCobin5{*this, "CheckCobin5", "Parity ON/OFF", "40005.3 - Parity ON/OFF"};
  view::OptionButton OptionCobin1{*this, "OptionCobin1", "parity", "Even", "40005.4 - Parity Type"};
  view::OptionButton OptionCobin2{*this, "OptionCobin2", "parity", "Odd", "40005.4 - Parity Type"};

  // Controls: the module's settings, which reach it by Write EEprom.

  view::Label SafetimeCobin{*this, "SafetimeCobin", "5", "40004 - Safe Time"};
  view::Label AddressCobin{*this, "AddressCobin", "1", "40006(L) - Module Address"};
  view::ComboBox BaudCobin{*this, "BaudCobin", pages::kFiveRates, "40006(H) - Module Baud Rate"};

  void Load() override;
  void CheckFWVersion(int release) override;
  /// Enables or disables all that edits.
  void CobinEnableControls(bool enabled);

  pages::FileFormat Files() const override { return {.word = "Cobin", .updated = "Cobin", .fields = fields_}; }
  view::Node Arrangement() const override;

 protected:
  core::Task<> ManageFirst() override { return ManageCobin(); }
  core::Task<> ManageContinue() override { return ManageContinueCobin(); }
  std::span<const pages::ImageWrite> ImageWrites() const override { return images_; }
  core::Task<> ShowRegisters() override;
  void FieldsComing() override { Copy(kOutputs) = state::Word(0); }
  core::Task<> SetupFormFromFile() override;
  void Started() override { SetOutputsEnabled(true); }
  void Stopping() override { SetOutputsEnabled(false); }

 private:
  core::Task<> ManageCobin();
  core::Task<> ManageContinueCobin();
  void ShowPolled();
  void SetOutputsEnabled(bool enabled);

  core::Task<> OutCobinClick(int output);
  core::Task<> SafeCobinClick(int output);
  core::Task<> SetSafeStateFlag();

  const std::array<pages::Flag, 5> flags_;
  const std::array<pages::ImageWrite, 4> images_;
  const std::array<pages::FileField, 4> fields_;
};

}  // namespace tarvo::models
