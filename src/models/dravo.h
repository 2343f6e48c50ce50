#pragma once

#include <array>
#include <span>
#include <vector>

#include "models/measure_input.h"
#include "pages/baud_list.h"
#include "pages/device_page.h"
#include "view/ar_metor.h"

namespace tarvo::models {

/// One measured input with a user's scale.
class Dravo : public pages::DevicePage {
 public:
  explicit Dravo(pages::PageContext& context);

  // Registers. Values are signed.

  static constexpr state::Register kInput{40002};   ///< high byte position of the type + 1, low byte that of the filter
  static constexpr state::Register kScale1{40003};  ///< the first of six values
  static constexpr state::Register kAddress{40009};  ///< the page looks at the stored one
  static constexpr state::Register kFlags{40010};
  static constexpr state::Register kUserValue{40011};
  static constexpr state::Register kMeasured{40012};  ///< 0 to 10000
  static constexpr state::Register kStatus{40013};    ///< writing 1 resets
  static constexpr state::Register kStoredAddress{40073};

  static constexpr int kScales = 6;
  static constexpr int kStatusBits = 6;

  // Controls: the input and its scales.

  view::ComboBox InputTypeDravo;
  view::ComboBox InputFilterDravo{*this, "InputFilterDravo", kInputFilters, "40002(L) - Input Filter"};
  view::ControlArray<view::Label, kScales> ValueDravo;
  view::Label UnitaMisuraDravo1{*this, "UnitaMisuraDravo1"};
  view::Label UnitaMisuraDravo2{*this, "UnitaMisuraDravo2"};

  // Controls: what is measured.

  view::Label InputTechDravo{*this, "InputTechDravo", "0", "40011 - User Defined Input Value"};
  view::Label InputScaledDravo{*this, "InputScaledDravo", "0", "40012 - Measured Input Value"};
  view::ARMetor BargDravo1{*this, "BargDravo1"};
  view::ARMetor BargDravo2{*this, "BargDravo2"};
  view::ControlArray<view::Lamp, kStatusBits> StatusDravo;

  // Controls: flags and settings.

  view::CheckBox CheckDravo1{*this, "CheckDravo1", "Square Root Extr.", "40010.8 - Route Square Extraction"};
  view::CheckBox CheckDravo2{*this, "CheckDravo2", "Positive Burn Out", "40010.9 - Positive Burn Out"};
  view::CheckBox CheckDravo3{*this, "CheckDravo3", "4 wire PT100", "40010.14 - 4 Wire Reading PT100/NI100"};
  view::CheckBox CheckDravo4{*this, "CheckDravo4", "Parity ON/OFF", "40010.3 - Parity ON/OFF"};
  view::CheckBox CheckDravo5{*this, "CheckDravo5", "Delay 12ms", "40010.2 - Latency Time"};
  view::OptionButton OptionDravo1{*this, "OptionDravo1", "parity", "Even", "40010.4 - Parity Type"};
  view::OptionButton OptionDravo2{*this, "OptionDravo2", "parity", "Odd", "40010.4 - Parity Type"};
  view::Label AddressDravo{*this, "AddressDravo", "1", "40009(L) - Module Address"};
  view::ComboBox BaudDravo{*this, "BaudDravo", pages::kFiveRates, "40009(H) - Module Baud Rate"};

  void Load() override;
  void CheckFWVersion(int release) override;
  /// The flags word as the page shows it.
  state::Word ReadEPRFLGFromForm() const { return FlagsShown(); }

  pages::FileFormat Files() const override { return {.word = "Dravo", .updated = "Dravo", .fields = fields_}; }
  view::Node Arrangement() const override;

 protected:
  core::Task<> ManageFirst() override { return ManageDravo(); }
  core::Task<> ManageContinue() override { return ManageContinueDravo(); }
  std::span<const pages::ImageWrite> ImageWrites() const override { return images_; }
  core::Task<> ShowRegisters() override;
  core::Task<> SetupFormFromFile() override;

 private:
  core::Task<> ManageDravo();
  core::Task<> ManageContinueDravo();
  /// Type and filter as the page's controls have them.
  state::Word InputWord() const;
  void ShowInput(state::Word input);
  void ShowScale(int value, state::Word word);
  void ShowMeasured(state::Word userValue, state::Word measured);
  void ShowStatus(state::Word status);

  void InputTypeChange();
  core::Task<> ValueClick(std::size_t value);
  std::vector<pages::ImageWrite> MakeImages();
  std::vector<pages::FileField> MakeFields();

  MeasureType limits_ = kMeasureTypes.front();  ///< of the type chosen last
  const std::array<pages::Flag, 5> flags_;
  const std::vector<pages::ImageWrite> images_;
  const std::vector<pages::FileField> fields_;
};

}  // namespace tarvo::models
