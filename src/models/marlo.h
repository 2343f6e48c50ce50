#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "pages/baud_list.h"
#include "pages/device_page.h"

namespace tarvo::models {

/// Ten digital outputs with a diagnosis of each. Works with the port closed as well as in a session.
class Marlo : public pages::DevicePage {
 public:
  explicit Marlo(pages::PageContext& context);

  // Registers.

  static constexpr state::Register kStatus{40002};
  static constexpr state::Register kOutputs{40003};
  static constexpr state::Register kDiagnostics{40004};  ///< latched; can only be cleared
  static constexpr state::Register kDefaults{40005};
  static constexpr state::Register kOpened{40006};
  static constexpr state::Register kShorted{40007};
  static constexpr state::Register kHot{40008};
  static constexpr state::Register kVoltage{40009};  ///< 0.1 V
  static constexpr state::Register kAddress{40010};  ///< high byte the address, bits 0 and 1 the parity
  static constexpr state::Register kBaud{40011};     ///< bits 8 to 10 the baud code
  static constexpr state::Register kOptions{40012};
  static constexpr state::Register kSafeTime{40013};
  static constexpr state::Register kOpenedMask{40015};
  static constexpr state::Register kThreshold{40016};  ///< low byte threshold in 0.1 V, high byte delay
  static constexpr state::Register kRelease{40023};

  static constexpr int kCount = 10;
  static constexpr int kStatusLamps = 5;
  static constexpr int kLampRows = 6;

  // Controls: outputs and lamps. A row of lamps has one lamp an output.

  view::ControlArray<view::ImageBox, kCount> buttOUTMarlo;
  view::ControlArray<view::Label, kCount> LabelOUT;
  view::ControlArray<view::Lamp, kStatusLamps> shStatus;
  view::ControlArray<view::Lamp, kCount> shDamage;
  view::ControlArray<view::Lamp, kCount> shDefault;
  view::ControlArray<view::Lamp, kCount> shOpen;
  view::ControlArray<view::Lamp, kCount> shShorted;
  view::ControlArray<view::Lamp, kCount> shHot;
  view::ControlArray<view::Lamp, kCount> shOpenedMask;
  view::ControlArray<view::Label, kLampRows> labNum;     ///< `labNum`, `labNum2` to `labNum6`
  view::ControlArray<view::Label, kLampRows> labRow;     ///< what the rows are
  view::ControlArray<view::CheckBox, kCount> checkMask;  ///< stand for no register, which is meant
  view::TextBox txtVoltage{*this, "txtVoltage"};

  // Controls: settings.

  view::ComboBox cbBaudMarlo{*this, "cbBaudMarlo", pages::kSevenRates, " ST_ADDR- COM_CONF1 - 40010 "};
  view::Label labAddressMarlo{*this, "labAddressMarlo", "1", " ST_ADDR- COM_CONF1 - 40010 "};
  view::Label labSafetimeMarlo{*this, "labSafetimeMarlo", "0", "40013 - Safety Timeout"};
  view::CheckBox checkParity{*this, "checkParity", "Parity ON/OFF", "400011.0-1 - Parity "};
  view::OptionButton OptionEven{*this, "OptionEven", "parity", "Even", "40011.0-1 - Parity "};
  view::OptionButton OptionOdd{*this, "OptionOdd", "parity", "Odd", "40011.0-1 - Parity "};
  view::CheckBox CheckResetTimeout{*this, "CheckResetTimeout", "Reset timeout on write", "40012.0 - Reset timeout"};
  view::CheckBox CheckFailLed{*this, "CheckFailLed", "Fail led voltage drived  ", "40012.1 - Fail Led setup"};
  view::ComboBox ComboFailLed;
  view::TextBox txtValTreshold{*this, "txtValTreshold", "register 40016 l.s.b."};
  view::TextBox txtDelay{*this, "txtDelay", "register 40016 m.s.b."};

  /// A row of lamps that a click changes.
  struct ClickRow {
    state::Register target;
    unsigned mask;  ///< of the bits that a click keeps
    bool setsToo;   ///< a click on a lamp that is clear sets it
  };

  void Load() override;
  core::Task<> Activate() override;
  void Deactivate() override;
  using DevicePage::CheckFWVersion;
  /// Reads the firmware release and shows it, on a port that it opens if it is closed.
  core::Task<> CheckFWVersion();
  core::Task<> CheckFoundFirmware(int release) override;
  core::Task<> ReadEEPromFlags() override;
  /// Everything that a commit writes, and the masks.
  void MarloEnableControls(bool enabled);

  pages::FileFormat Files() const override {
    return {.word = "Marlo", .updated = "Marlo", .fields = fields_, .toTheEnd = true};
  }
  view::Node Arrangement() const override;

 protected:
  core::Task<> ApplyFirmware(int release) override;
  core::Task<> ManageFirst() override { return ManageContinue(); }
  core::Task<> ManageContinue() override;
  core::Task<> ShowRegisters() override;
  core::Task<> WriteEEprom() override;
  void Started() override { MarloEnableControls(true); }

 private:
  void ManageMarlo();
  void PaintOutputs(state::Word outputs);
  void PaintBits(state::Register source, state::Word bits);
  void PaintStatus(state::Word status);
  void ShowVoltage(state::Word voltage);
  void ShowParity(unsigned code);
  view::ControlArray<view::Lamp, kCount>* RowOf(state::Register source);

  core::Task<> OutputClick(int output);
  core::Task<> Toggle(int output);
  core::Task<> LampClick(const ClickRow& row, int lamp);
  core::Task<> ChangeLamp(const ClickRow& row, int lamp);
  void BindNumber(view::TextBox& text, const char* complaint);
  core::Task<> NumberKey(view::TextBox& text, const char* complaint, view::Key key);
  core::Task<> Normalise(view::TextBox& text, const char* complaint);
  core::Task<> MaskClick(int output);
  core::Task<> WEEPMarloClick();
  std::optional<std::int32_t> ThresholdAndDelay() const;
  core::Task<> WriteFlags(std::optional<std::int32_t> threshold);
  core::Task<> ReadFlags();
  core::Task<> WriteStored(state::Register target, std::int32_t value);

  unsigned ParityCode() const;
  state::Word OptionsShown() const;
  void ShowOptions(state::Word options);
  bool NumbersTyped() const;
  std::string StoredThreshold(const std::string& last) const;
  std::vector<pages::FileField> MakeFields();

  const std::vector<pages::FileField> fields_;
  bool pageRead_ = false;  ///< the settings shown are the module's
  /// The low bits of 40011 as they were read. They go to the file; a commit writes 0 there, which is meant.
  int lowConf_ = 0;
};

}  // namespace tarvo::models
