#pragma once

#include <array>
#include <span>
#include <string>
#include <vector>

#include "pages/baud_list.h"
#include "pages/device_page.h"
#include "view/ar_metor.h"

namespace tarvo::models {

/// Four analog inputs, each with two scales and a filter.
class Gaven : public pages::DevicePage {
 public:
  explicit Gaven(pages::PageContext& context);

  // Registers. Values are signed.

  static constexpr state::Register kFlags{40003};
  static constexpr state::Register kFilter1{40004};      ///< the first of four, 0 to 6
  static constexpr state::Register kFullScale1{40008};   ///< the first of four
  static constexpr state::Register kStartScale1{40012};  ///< the first of four, over both poll blocks
  static constexpr state::Register kStatus{40016};       ///< high byte over- and underflows; writing 1 resets
  static constexpr state::Register kScaled1{40017};      ///< the first of four
  static constexpr state::Register kRaw1{40021};         ///< the first of four
  static constexpr state::Register kStoredAddress{40066};

  static constexpr int kInputs = 4;
  static constexpr int kHeadings = 7;
  static constexpr int kHeadingLabels = kInputs * kHeadings;

  // Controls: one row an input. `kInputRows` in the source says which member belongs where.

  view::ControlArray<view::Label, kHeadingLabels> labelGaven;
  view::ControlArray<view::Label, 16> ValueGaven;
  view::ControlArray<view::Lamp, 8> OverflowGaven;
  view::ControlArray<view::ARMetor, kInputs> BargGaven;
  view::ControlArray<view::ComboBox, kInputs> FilterGaven;

  // Controls: options and settings.

  view::ControlArray<view::CheckBox, 3> CheckGaven;
  view::OptionButton OptionGaven1{*this, "OptionGaven1", "parity", "Even", "40003.4 - Parity Type"};
  view::OptionButton OptionGaven2{*this, "OptionGaven2", "parity", "Odd", "40003.4 - Parity Type"};
  view::Label Label11{*this, "Label11", "Module Address"};
  view::Label AddressGaven{*this, "AddressGaven", "1", "40002(L) - Module Address"};
  view::Label Label12{*this, "Label12", "Module Baud Rate"};
  view::ComboBox BaudGaven{*this, "BaudGaven", pages::kFiveRates, "40002(H) - Module Baud Rate"};

  void Load() override;
  void Deactivate() override;
  void CheckFWVersion(int release) override;
  /// Mode 1 enables all that edits, any other disables it.
  void GavenEnableControls(int mode);

  pages::FileFormat Files() const override {
    return {.word = "Gaven", .updated = "Gaven", .fields = fields_, .copied = true};
  }
  view::Node Arrangement() const override;

 protected:
  core::Task<> ApplyFirmware(int release) override;
  core::Task<> ManageFirst() override { return ManageGaven1(); }
  core::Task<> ManageSecond() override { return ManageGaven2(); }
  core::Task<> ManageContinue() override { return ManageContinueGaven(); }
  std::span<const pages::ImageWrite> ImageWrites() const override { return images_; }
  core::Task<> ShowRegisters() override;
  void Started() override { Message.Caption = ""; }

 private:
  core::Task<> ManageGaven1();
  core::Task<> ManageGaven2();
  core::Task<> ManageContinueGaven();
  void ShowValue(int label, state::Word value);
  void ShowInputs();
  void ShowOverflows(std::span<const int> lampOfBit);
  std::vector<pages::ImageWrite> MakeImages();
  std::vector<pages::FileField> MakeFields();

  const std::array<pages::Flag, 3> flags_;
  const std::vector<pages::ImageWrite> images_;
  const std::vector<pages::FileField> fields_;
  bool versionChecked_ = false;
};

}  // namespace tarvo::models
