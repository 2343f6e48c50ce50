#pragma once

#include <array>
#include <span>
#include <string>
#include <vector>

#include "pages/baud_list.h"
#include "pages/device_page.h"
#include "pages/dlg_set_new_value.h"

namespace tarvo::models {

/// Three analog outputs: a new value goes out at once, a default value is kept for the safe time.
class Quenby : public pages::DevicePage {
 public:
  Quenby(pages::PageContext& context, pages::DlgSetNewValue& newValue);

  // Registers. Each of the settings has its EEPROM image `kToImage` further on.

  static constexpr state::Register kAddress{40002};
  static constexpr state::Register kSafeTime{40003};
  static constexpr state::Register kFlags{40004};
  static constexpr state::Register kOutput1{40005};  ///< the first of three, 0 to 10000
  static constexpr state::Register kStatus{40008};   ///< bits 0 and 1 errors; writing 1 resets
  static constexpr state::Register kRelease{40010};
  static constexpr int kToImage = 64;

  static constexpr int kOutputs = 3;

  // Controls: one row an output.

  view::ControlArray<view::Label, kOutputs> txtValRam;
  view::ControlArray<view::TextBox, kOutputs> txtVal;
  view::ControlArray<view::ComboBox, kOutputs> cbStartScale;
  view::ControlArray<view::ComboBox, 1> cbFullScale;  ///< output 1 alone has one

  // Controls: settings.

  view::CheckBox CheckDelay12ms{*this, "CheckDelay12ms", "Answr Delay 12ms",
                                "40068.2  - Communication delay answer 12 ms minimum.    "};
  view::CheckBox checkParity{*this, "checkParity", "Parity ", "40068.3 -  Parity "};
  view::OptionButton OptionEven{*this, "OptionEven", "parity", "Even", "40068.4 - Parity type"};
  view::OptionButton OptionOdd{*this, "OptionOdd", "parity", "Odd", "40068.4 - Parity type"};
  view::CheckBox CheckResetTimer{*this, "CheckResetTimer", "Reset on Write",
                                 "40068.6 - Reset safe timer on write message."};
  view::CheckBox CheckDefaultOutputs{*this, "CheckDefaultOutputs", "Set Default Outputs",
                                     "40068.7 - Set default outputs on safe time elapsed."};
  view::Label labAddress{*this, "labAddress", "1", "ADDRESS - 40066 "};
  view::ComboBox cbBaud{*this, "cbBaud", pages::kSevenRates, "40066- Baud rate "};
  view::Label labTimeout{*this, "labTimeout", "0", "Safe time - 40067"};
  view::ControlArray<view::CheckBox, 2> CheckError;

  void Load() override;
  core::Task<> Activate() override;
  core::Task<> ReadEEPromFlags() override;

  pages::FileFormat Files() const override {
    return {.word = "Quenby", .updated = "Quenby", .fields = fields_, .toTheEnd = true};
  }
  view::Node Arrangement() const override;

 protected:
  core::Task<> ApplyFirmware(int release) override;
  core::Task<> ManageFirst() override { return ManageContinue(); }
  core::Task<> ManageContinue() override;
  std::span<const pages::ImageWrite> ImageWrites() const override { return images_; }
  core::Task<> ShowRegisters() override;

 private:
  /// A list of two entries that stands for a bit of the flags.
  struct Scale {
    view::ComboBox& list;
    unsigned mask;
  };

  void ManageContinueQuenby();
  void ReadFlagsAndSetForm(state::Word flags);
  state::Word ReadFlagsFromForm() const;
  void ShowOutput(int output, state::Word value);

  core::Task<> ScaleChoice(const Scale& scale);
  core::Task<> NewValueClick(int output);
  core::Task<> WriteOutput(int output, state::Word value);
  core::Task<> DefaultKey(int output, view::Key key);
  core::Task<> TestDefault(int output);
  core::Task<std::string> Tested(std::string text);
  std::vector<pages::ImageWrite> MakeImages();
  std::vector<pages::FileField> MakeFields();

  pages::DlgSetNewValue& newValue_;
  const std::array<pages::Flag, 4> flags_;
  const std::array<Scale, 4> scales_;
  const std::vector<pages::ImageWrite> images_;
  const std::vector<pages::FileField> fields_;
};

}  // namespace tarvo::models
