#pragma once

#include <array>
#include <span>
#include <vector>

#include "pages/baud_list.h"
#include "pages/device_page.h"
#include "view/ar_metor.h"

namespace tarvo::models {

/// Ten digital inputs: counters, two of them long, and two measures that can be pointed at any input.
class Lumet : public pages::DevicePage {
 public:
  explicit Lumet(pages::PageContext& context);

  // Registers.

  static constexpr state::Register kInputStates{40002};
  static constexpr state::Register kMeasureSetup{40018};  ///< low byte for 40016, high byte for 40017
  static constexpr state::Register kFilter{40019};        ///< ms
  static constexpr state::Register kFlags{40020};         ///< high byte the configuration of inputs 9 and 10
  static constexpr state::Register kReset{40022};
  static constexpr state::Register kStoredMeasureSetup{40082};
  static constexpr state::Register kStoredFilter{40083};
  static constexpr state::Register kStoredFlags{40084};
  static constexpr state::Register kStoredAddress{40085};

  static constexpr int kInputs = 10;
  static constexpr int kShortCounters = 8;  ///< of 16 bits; the two others have 32
  static constexpr int kMeasures = 2;

  // Controls: one row an input.

  view::ControlArray<view::ImageBox, kInputs> StatoIN;
  view::ControlArray<view::Label, kInputs> LabelIN;
  view::ControlArray<view::Label, kInputs> TotIN;
  view::ControlArray<view::ARMetor, kInputs> BargLumet;  ///< `BargLumet1` to `BargLumet10`
  view::ControlArray<view::Lamp, kInputs> OverFlowIN;
  view::Label LabelFASTLumet{*this, "LabelFASTLumet", "Fast"};

  // Controls: measures.

  view::ControlArray<view::ComboBox, kMeasures> cbIngresso;
  view::ControlArray<view::ComboBox, kMeasures> cbTipoMisura;
  view::ControlArray<view::TextBox, kMeasures> tbMisura;

  // Controls: flags and settings.

  view::CheckBox CheckLumet2{*this, "CheckLumet2", "Negate Inputs", "40020.0 - Negate Inputs"};
  /// Stands for no register, which is meant.
  view::CheckBox CheckLumet3{*this, "CheckLumet3", "Autoreset Counters", "40009.5 - Autoreset Counters"};
  view::CheckBox CheckLumet4{*this, "CheckLumet4", "Down Counters", "40020.1 - Down Counters"};
  view::CheckBox CheckLumet5{*this, "CheckLumet5", "Delay 12ms ", "40020.2 - Latency Time"};
  view::CheckBox CheckLumet6{*this, "CheckLumet6", "Parity ON/OFF", "40020.3 - Parity ON/OFF"};
  view::OptionButton OptionLumet1{*this, "OptionLumet1", "parity", "Even", "40020.4 - Parity Type"};
  view::OptionButton OptionLumet2{*this, "OptionLumet2", "parity", "Odd", "40020.4 - Parity Type"};
  view::ComboBox cbCombIngressi;
  view::Label FilterLumet{*this, "FilterLumet", "1", "40019 - Input Filter"};
  view::Label AddressLumet{*this, "AddressLumet", "1", "40021(L) - Module Address"};
  view::ComboBox BaudLumet{*this, "BaudLumet", pages::kFiveRates, "40021(H) - Module Baud Rate"};

  void Load() override;
  void CheckFWVersion(int release) override;
  /// Everything that can be edited; the parity options only where parity is on. No flow calls it.
  void LumetEnableControls(bool enabled);
  /// Goes on when that many seconds have gone by; all else runs meanwhile.
  core::Task<> Pause(float seconds);

  pages::FileFormat Files() const override {
    // The message after Load speaks of another model, which is meant.
    return {.word = "Lumet", .updated = "Jorun", .fields = fields_, .toTheEnd = true};
  }
  view::Node Arrangement() const override;

 protected:
  core::Task<> ApplyFirmware(int release) override;
  void Starting() override;
  std::span<state::Word> PollTarget() override;
  core::Task<> ManageFirst() override { return ManageContinue(); }
  core::Task<> ManageContinue() override;
  core::Task<> ShowRegisters() override;
  core::Task<> WriteEEprom() override { return WriteEEpromRegisters(); }
  void Stopped() override;

 private:
  void ManageContinueLumet();
  void PaintFirstStep();
  void PaintSecondStep();
  void ShowTotal(int input, state::Word low, state::Word high);
  void ListTypes(int measure);

  core::Task<> ReadOtherRegisters();
  core::Task<> ReadMeasureType();
  void SetEPRFLGOnForm(state::Word flags);
  void SetMeasureTypeOnForm(state::Word setup);
  state::Word ReadFlagsFromForm() const;
  state::Word SetMeasureType() const;
  core::Task<> WriteEEpromRegisters();
  core::Task<> Store(state::Register image, state::Word value);
  void SayUnwritten(state::Register image);
  std::vector<pages::FileField> MakeFields();

  const std::array<pages::Flag, 4> flags_;
  const std::vector<pages::FileField> fields_;
  int commstep_ = 1;  ///< of the poll, 1 or 2
};

}  // namespace tarvo::models
