#pragma once

#include <array>
#include <span>
#include <vector>

#include "models/measure_input.h"
#include "pages/baud_list.h"
#include "pages/device_page.h"
#include "view/ar_metor.h"

namespace tarvo::models {

/// One measured input, one analog output, and a PID loop between them.
class Ferrun : public pages::DevicePage {
 public:
  explicit Ferrun(pages::PageContext& context);

  // Registers. Values are signed.

  static constexpr state::Register kInput{40002};   ///< high byte position of the type + 1, low byte that of the filter
  static constexpr state::Register kScale1{40003};  ///< the first of six values
  static constexpr state::Register kSafeTime{40010};
  static constexpr state::Register kFlags{40011};
  static constexpr state::Register kOutput{40019};  ///< 0 to 10000
  static constexpr state::Register kUserValue{40020};
  static constexpr state::Register kMeasured{40021};  ///< 0 to 10000
  static constexpr state::Register kStatus{40022};    ///< writing 1 resets
  static constexpr state::Register kStoredAddress{40073};
  static constexpr state::Register kStoredOutputInit{40083};

  static constexpr int kScales = 6;
  static constexpr int kValues = 14;
  static constexpr int kStatusBits = 8;

  // Controls: the input and its scales, then the terms of the PID loop.

  view::ComboBox comboInputTypeFerrun;
  view::ComboBox comboInputFilterFerrun{*this, "comboInputFilterFerrun", kInputFilters, "40002(L) - Input Filter"};
  view::ControlArray<view::Label, kValues> ValueFerrun;
  view::Label UnitaMisuraFerrun1{*this, "UnitaMisuraFerrun1"};
  view::Label UnitaMisuraFerrun2{*this, "UnitaMisuraFerrun2"};

  // Controls: what is measured and put out.

  view::Label InputTechFerrun{*this, "InputTechFerrun", "0", "40020 - User Defined Input Value"};
  view::Label InputScaledFerrun{*this, "InputScaledFerrun", "0", "40021 - Measured Input Value"};
  view::Label OutputFerrun{*this, "OutputFerrun", "0", "40019 - PID Output"};
  view::ARMetor BargFerrun1{*this, "BargFerrun1"};
  view::ARMetor BargFerrun2{*this, "BargFerrun2"};
  view::ARMetor BargFerrun3{*this, "BargFerrun3"};
  view::ControlArray<view::Lamp, kStatusBits> StatusFerrun;

  // Controls: flags and settings.

  view::CheckBox CheckSquareRoot{*this, "CheckSquareRoot", "Square Root Extr.", "40011.8 - Square Root Extraction"};
  view::CheckBox CheckBurnOUt{*this, "CheckBurnOUt", "Positive Burn Out", "40011.9 - Positive Burn Out"};
  view::CheckBox Check_4_wires{*this, "Check_4_wires", "4 wire PT100", "40011.14 - 4 Wire Reading PT100/NI100"};
  view::CheckBox Check_4_20{*this, "Check_4_20", "Output 4..20mA", "40011.13 - Output 4..20mA"};
  view::CheckBox CheckReload{*this, "CheckReload", "Reload Register", "40011.12 - Reload Register"};
  view::CheckBox CheckResetonTx{*this, "CheckResetonTx", "Reset on Tx", "40011.15 - Reset Comm Timer on Rx/Tx"};
  view::CheckBox CheckDelay{*this, "CheckDelay", "Delay 12ms", "40011.2 - Latency Time"};
  view::CheckBox checkParity{*this, "checkParity", "Parity ON/OFF", "40011.3 - Parity ON/OFF"};
  view::CheckBox CheckAuto{*this, "CheckAuto", "Auto", "40011.10 - PID Auto"};
  view::CheckBox CheckInv{*this, "CheckInv", "Inv.Action", "40011.11 - Inverted Action"};
  view::OptionButton OptionEven{*this, "OptionEven", "parity", "Even", "40011.4 - Parity Type"};
  view::OptionButton OptionOdd{*this, "OptionOdd", "parity", "Odd", "40011.4 - Parity Type"};
  view::Label labAddressFerrun{*this, "labAddressFerrun", "1", "40009(L) - Module Address"};
  view::Label labSafetimeFerrun{*this, "labSafetimeFerrun", "5", "40010 - Safe TIme"};
  view::ComboBox comboBaudFerrun{*this, "comboBaudFerrun", pages::kFiveRates, "40009(H) - Module Baud Rate"};

  void Load() override;
  void CheckFWVersion(int release) override;
  /// The flags word as the page shows it.
  state::Word ReadFlags() const { return FlagsShown(); }
  /// 1 enables all that configures, any other state disables it.
  void FerrunEnableControls(int state);

  pages::FileFormat Files() const override {
    return {.word = "Ferrun", .updated = "Ferrun", .fields = fields_, .copied = true};
  }
  view::Node Arrangement() const override;

 protected:
  core::Task<> ApplyFirmware(int release) override;
  core::Task<> ManageFirst() override { return ManageFerrun1(); }
  core::Task<> ManageSecond() override { return ManageFerrun2(); }
  core::Task<> ManageContinue() override { return ManageContinueFerrun(); }
  std::span<const pages::ImageWrite> ImageWrites() const override { return images_; }
  core::Task<> ShowRegisters() override;
  core::Task<> Committed() override;
  void FieldsComing() override;

 private:
  core::Task<> ManageFerrun1();
  core::Task<> ManageFerrun2();
  core::Task<> ManageContinueFerrun();
  core::Task<> ShowStoredOutputInit();
  /// Type and filter as the page's controls have them.
  state::Word InputWord() const;
  void ShowInput(state::Word input);
  void ShowValue(std::size_t value, state::Word word);
  void ShowMeasured();

  void InputTypeClick();
  core::Task<> ValueClick(std::size_t value);
  core::Task<> OutputClick();
  std::vector<pages::ImageWrite> MakeImages();
  std::vector<pages::FileField> MakeFields();

  MeasureType limits_ = kMeasureTypes.front();  ///< of the type chosen last
  int release_ = 0;                             ///< as the last check had it
  const std::array<pages::Flag, 10> flags_;
  const std::vector<pages::ImageWrite> images_;
  const std::vector<pages::FileField> fields_;
};

}  // namespace tarvo::models
