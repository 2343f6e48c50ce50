#pragma once

#include <array>
#include <span>
#include <vector>

#include "models/thermocouple_inputs.h"
#include "pages/baud_list.h"

namespace tarvo::models {

/// Four thermocouple inputs. In a session all settings are locked.
class Jorun : public ThermocoupleInputs {
 public:
  Jorun(pages::PageContext& context, calibration::DlgCalForm& calibration);

  static constexpr state::Register kAddress{40002};  ///< the page looks at the stored one
  static constexpr state::Register kStoredAddress{40066};

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
  /// Mode 1 enables all that edits, any other disables it.
  void EnableInputs(int mode);

  pages::FileFormat Files() const override { return {.word = "Jorun", .updated = "Jorun", .fields = fields_}; }
  view::Node Arrangement() const override;

 protected:
  core::Task<> ApplyFirmware(int release) override;
  core::Task<> ShowSettings() override { return ShowAddressOf(kStoredAddress, labAddressJorun, cbBaudJorun); }
  std::span<const pages::ImageWrite> ImageWrites() const override { return images_; }
  core::Task<> SetupFormFromFile() override;
  void Starting() override { EnableLabelsComm(false); }
  void Stopping() override { EnableLabelsComm(true); }
  bool ParityLocked() const override { return InSession(); }

 private:
  void EnableLabelsComm(bool enable);
  std::vector<pages::ImageWrite> MakeImages();
  std::vector<pages::FileField> MakeFields();

  const std::array<pages::Flag, 3> flags_;
  const std::vector<pages::ImageWrite> images_;
  const std::vector<pages::FileField> fields_;
};

}  // namespace tarvo::models
