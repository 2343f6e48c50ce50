#pragma once

#include <array>
#include <span>
#include <vector>

#include "models/analog_inputs.h"
#include "pages/baud_list.h"

namespace tarvo::models {

/// Four analog inputs, each with two scales and a filter.
class Gaven : public AnalogInputs {
 public:
  explicit Gaven(pages::PageContext& context);

  static constexpr state::Register kStoredAddress{40066};

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
  core::Task<> ShowSettings() override { return ShowAddressOf(kStoredAddress, AddressGaven, BaudGaven); }
  std::span<const pages::ImageWrite> ImageWrites() const override { return images_; }
  void Started() override { Message.Caption = ""; }

 private:
  std::vector<pages::ImageWrite> MakeImages();
  std::vector<pages::FileField> MakeFields();

  const std::array<pages::Flag, 3> flags_;
  const std::vector<pages::ImageWrite> images_;
  const std::vector<pages::FileField> fields_;
  bool versionChecked_ = false;
};

}  // namespace tarvo::models
