#pragma once

#include <cstdint>
#include <functional>
#include <string_view>
#include <vector>

#include "calibration/dlg_cal_form.h"
#include "pages/device_page.h"
#include "view/ar_metor.h"

namespace tarvo::models {

/// What the pages of thermocouple inputs do not have alike.
struct ThermocoupleTexts {
  std::string_view typeList;    ///< name of the lists of types
  std::string_view filterList;  ///< name of the lists of filters
  std::string_view unread;      ///< stands for a value before anything was read
  std::string_view calTip;
  int calibrates;  ///< first release with a calibration
};

/// Four thermocouple inputs with a calibration: what the pages of two generations share. The arrays are named for their
/// page.
class ThermocoupleInputs : public pages::DevicePage {
 public:
  // Registers. Values are signed.

  static constexpr state::Register kFlags{40003};
  static constexpr state::Register kInputType1{40004};  ///< the first of four, position in the list
  static constexpr state::Register kFilter1{40008};     ///< the first of four, position in the list
  static constexpr state::Register kStatus{40012};      ///< high byte overflows and burn-outs; writing 1 resets
  static constexpr state::Register kValue1{40013};      ///< the first of four

  static constexpr int kInputs = 4;

  // Controls: one row an input.

  view::ControlArray<view::Label, 16> Headings;
  view::ControlArray<view::ComboBox, kInputs> InputType;
  view::ControlArray<view::ComboBox, kInputs> Filter;
  view::ControlArray<view::Label, kInputs> Value;
  view::ControlArray<view::ARMetor, kInputs> Barg;
  view::ControlArray<view::Lamp, 8> Overflow;  ///< overflows, then burn-outs
  view::ControlArray<view::Button, kInputs> buttCal;

  void Load() override;
  core::Task<> ReadEEPromFlags() override { return ReadInputType(); }

 protected:
  /// What the module says of its firmware.
  enum class Version : std::int16_t { kUnread = -2, kOtherModule = -1, kTooOld = 0, kCalibrates = 1 };

  ThermocoupleInputs(pages::PageContext& context, const pages::PageIdentity& identity, const ThermocoupleTexts& texts,
                     calibration::DlgCalForm& calibration);

  bool DeedsLocked() const override { return InSession(); }
  core::Task<> ManageFirst() override;
  core::Task<> ManageContinue() override;

  /// Shows what else is stored, for a session and for the search.
  virtual core::Task<> ShowSettings() { co_return; }
  /// Reads the identity and, of the right module, checks its release.
  core::Task<Version> CheckVersion();
  /// `CheckVersion` has run since the page was loaded.
  bool VersionChecked() const { return versionChecked_; }
  void InitFullScaleTC();
  /// For `input` 1 to 4; an unknown type changes nothing.
  void SetFullScaleTC(int input, int type);
  /// What a commit writes of the inputs, behind the flags that `flags` gives.
  std::vector<pages::ImageWrite> InputImages(std::function<state::Word()> flags);
  void EnableInputRows(bool enabled);
  view::Node InputsCard() const;

 private:
  core::Task<> ReadInputType();
  core::Task<> ReadFlagsDirect();
  core::Task<> CalClick(int input);

  const ThermocoupleTexts texts_;
  calibration::DlgCalForm& calibration_;
  bool versionChecked_ = false;
};

}  // namespace tarvo::models
