#pragma once

#include <array>
#include <span>

#include "pages/baud_list.h"
#include "pages/device_page.h"
#include "view/ar_metor.h"

namespace tarvo::models {

/// Five digital inputs, each with a 16-bit counter and an overflow mark.
class Belk : public pages::DevicePage {
 public:
  explicit Belk(pages::PageContext& context);

  // Registers.

  static constexpr state::Register kStatus{40002};    ///< bits 0 to 4 the inputs, bits 8 to 12 the overflows
  static constexpr state::Register kCounter1{40003};  ///< the first of five, 0 to 65535
  static constexpr state::Register kFilter{40008};    ///< 1 to 254
  static constexpr state::Register kFlags{40009};
  static constexpr state::Register kCommunication{40010};  ///< high byte baud code, low byte module address

  static constexpr int kInputs = 5;

  // Controls: one row an input.

  view::ControlArray<view::ImageBox, kInputs> StatoIN;
  view::ControlArray<view::Label, kInputs> LabelIN;
  view::ControlArray<view::Label, kInputs> TotIN;
  view::ControlArray<view::ARMetor, kInputs> BargBelk;  ///< named "BargBelk1" to "BargBelk5"
  view::ControlArray<view::Lamp, kInputs> OverFlowIN;
  view::Label LabelFASTBelk{*this, "LabelFASTBelk", "Fast"};

  // Controls: flags.

  view::CheckBox CheckBelk1{*this, "CheckBelk1", "10KHz Counter", "40009.7 - 10KHz Counter"};
  view::CheckBox CheckBelk2{*this, "CheckBelk2", "Negate Inputs", "40009.0 - Negate Inputs"};
  view::CheckBox CheckBelk3{*this, "CheckBelk3", "Autoreset Counters", "40009.5 - Autoreset Counters"};
  view::CheckBox CheckBelk4{*this, "CheckBelk4", "Down Counters", "40009.1 - Down Counters"};
  view::CheckBox CheckBelk5{*this, "CheckBelk5", "Delay 12ms ", "40009.2 - Delay 12ms"};
  view::CheckBox CheckBelk6{*this, "CheckBelk6", "Parity ON/OFF", "40009.3 - Parity ON/OFF"};
  view::OptionButton OptionBelk1{*this, "OptionBelk1", "parity", "Even", "40009.4 - Parity Type"};
  view::OptionButton OptionBelk2{*this, "OptionBelk2", "parity", "Odd", "40009.4 - Parity Type"};

  // Controls: the module's settings, which reach it by Write EEprom.

  view::Label FilterBelk{*this, "FilterBelk", "1", "40008 - Input Filter"};
  view::Label AddressBelk{*this, "AddressBelk", "1", "40010(L) - Module Address"};
  view::ComboBox BaudBelk{*this, "BaudBelk", pages::kFiveRates, "40010(H) - Module Baud Rate"};

  void Load() override;
  void CheckFWVersion(int release) override;
  /// Enables or disables all that edits.
  void BelkEnableControls(bool enabled);

  pages::FileFormat Files() const override { return {.word = "Belk", .updated = "Belk", .fields = fields_}; }
  view::Node Arrangement() const override;

 protected:
  core::Task<> ApplyFirmware(int release) override;
  core::Task<> ManageFirst() override { return ManageBelk(); }
  core::Task<> ManageContinue() override { return ManageContinueBelk(); }
  std::span<const pages::ImageWrite> ImageWrites() const override { return images_; }
  core::Task<> ShowRegisters() override;
  void FieldsComing() override;
  core::Task<> SetupFormFromFile() override { return ManageBelk(); }

 private:
  core::Task<> ManageBelk();
  core::Task<> ManageContinueBelk();
  void ShowPolled();

  void ShowStatus(state::Word status);
  void ShowCounter(int input, state::Word counter);

  void ShowCommunication(state::Word communication);

  core::Task<> TotINClick(int input);

  const std::array<pages::Flag, 6> flags_;
  const std::array<pages::ImageWrite, 3> images_;
  const std::array<pages::FileField, 3> fields_;
};

}  // namespace tarvo::models
