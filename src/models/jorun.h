#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "calibration/dlg_cal_form.h"
#include "pages/baud_list.h"
#include "pages/device_page.h"
#include "view/ar_metor.h"

namespace tarvo::models {

/// Four thermocouple inputs. In a session all settings are locked.
class Jorun : public pages::DevicePage {
 public:
  Jorun(pages::PageContext& context, calibration::DlgCalForm& calibration);

  // Registers. Values are signed.

  static constexpr state::Register kAddress{40002};  ///< the page looks at the stored one
  static constexpr state::Register kFlags{40003};
  static constexpr state::Register kInputType1{40004};  ///< the first of four, position in the list
  static constexpr state::Register kFilter1{40008};     ///< the first of four, position in the list
  static constexpr state::Register kStatus{40012};      ///< high byte overflows and burn-outs; writing 1 resets
  static constexpr state::Register kValue1{40013};      ///< the first of four
  static constexpr state::Register kStoredAddress{40066};

  static constexpr int kInputs = 4;

  // Controls: one row an input.

  view::ControlArray<view::Label, 16> labelJorun;
  view::ControlArray<view::ComboBox, kInputs> cbInputTypeJorun;
  view::ControlArray<view::ComboBox, kInputs> cbFilterJorun;
  view::ControlArray<view::Label, kInputs> ValueJorun;
  view::ControlArray<view::ARMetor, kInputs> BargJorun;
  view::ControlArray<view::Lamp, 8> OverflowJorun;  ///< overflows, then burn-outs
  view::ControlArray<view::Button, kInputs> buttCal;

  // Controls: options and settings.

  view::ControlArray<view::CheckBox, 3> CheckJorun;
  view::OptionButton OptionEven{*this, "OptionEven", "parity", "Even", "40003.4 - Parity Type"};
  view::OptionButton OptionOdd{*this, "OptionOdd", "parity", "Odd", "40003.4 - Parity Type"};
  view::Label Label14{*this, "Label14", "Module Address"};
  view::Label labAddressJorun{*this, "labAddressJorun", "1", "40002(L) - Module Address"};
  view::Label Label15{*this, "Label15", "Module Baud Rate"};
  view::ComboBox cbBaudJorun{*this, "cbBaudJorun", pages::kFiveRates, "40002(H) - Module Baud Rate"};

  void Load() override;
  void CheckFWVersion(int release) override;
  core::Task<> ReadEEPromFlags() override { return ReadInputType(); }
  /// Mode 1 enables all that edits, any other disables it.
  void EnableInputs(int mode);

  pages::FileFormat Files() const override { return {.word = "Jorun", .updated = "Jorun", .fields = fields_}; }
  view::Node Arrangement() const override;

 protected:
  core::Task<> ApplyFirmware(int release) override;
  core::Task<> ManageFirst() override { return ManageJorun(); }
  core::Task<> ManageContinue() override { return ManageContinueJorun(); }
  std::span<const pages::ImageWrite> ImageWrites() const override { return images_; }
  core::Task<> SetupFormFromFile() override;
  void Starting() override { EnableLabelsComm(false); }
  void Stopping() override { EnableLabelsComm(true); }
  bool ParityLocked() const override { return InSession(); }

 private:
  /// What the module says of its firmware.
  enum class Version : std::int16_t { kUnread = -2, kOtherModule = -1, kTooOld = 0, kCalibrates = 1 };

  /// Reads the identity and fills the baud list by it.
  core::Task<Version> CheckVersion();
  void InitFullScaleTC();
  /// For `input` 1 to 4; an unknown type changes nothing.
  void SetFullScaleTC(int input, int type);
  core::Task<> ManageJorun();
  core::Task<> ManageContinueJorun();
  core::Task<> ReadInputType();
  core::Task<> ReadFlagsDirect();
  void EnableLabelsComm(bool enable);

  core::Task<> CalClick(int input);
  std::vector<pages::ImageWrite> MakeImages();
  std::vector<pages::FileField> MakeFields();

  calibration::DlgCalForm& calibration_;
  const std::array<pages::Flag, 3> flags_;
  const std::vector<pages::ImageWrite> images_;
  const std::vector<pages::FileField> fields_;
  Version version_ = Version::kTooOld;
  bool versionChecked_ = false;
};

}  // namespace tarvo::models
