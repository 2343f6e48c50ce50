#pragma once

#include <string>
#include <vector>

#include "models/rtd_page.h"

namespace tarvo::models {

/// Four RTD inputs, or the three of a Pellor: the identity tells. Firmware 18 changed the sensor codes and added the
/// view of resistances.
class Nerith : public RtdPage {
 public:
  explicit Nerith(pages::PageContext& context);

  // Registers.

  static constexpr state::Register kSystem{40040};    ///< units, decimal digits, coefficients
  static constexpr state::Register kChannel1{40062};  ///< sensor and dump factor; range and burn-out stand behind it
  static constexpr int kChannelStep = 16;

  static constexpr int kHeadings = 12;

  // Controls: one row a channel.

  view::ControlArray<view::Label, kHeadings> labelGaven;
  view::ControlArray<view::ComboBox, kChannels> cbDumpFactor;
  view::ControlArray<view::Label, kChannels> labRange;
  view::ControlArray<view::ComboBox, kChannels> cbRangePT100;
  view::ControlArray<view::CheckBox, kChannels> chkConv;
  view::ControlArray<view::CheckBox, kChannels> chkBurnedSensor;

  // Controls: settings of the module.

  view::ComboBox cbUnits;
  view::ComboBox cbDecimalNumbers;
  view::CheckBox chkDINCoefficients{*this, "chkDINCoefficients", "DIN Coefficients",
                                    "Use DIN coefficients instead of ANSI coefficients."};

  using DevicePage::CheckFWVersion;
  /// Takes the whole word of register 40001. No flow calls it.
  void CheckFWVersion(state::Word identity);
  /// What the search does before it shows the page of a module that it has found.
  void SetFound(state::Word identity);

  pages::FileFormat Files() const override {
    return {.word = "Nerith", .updated = "Nerith", .fields = fields_, .toTheEnd = true};
  }
  view::Node Arrangement() const override;

 protected:
  core::Task<> ManageContinue() override;
  void EnableSettings(int channel, bool enabled) override;
  void Identified(state::Word identity) override;
  const char* WrongModuleText() const override { return "This is not a Pellor or Nerith"; }
  core::Task<> ShowConfiguration(std::optional<state::Word> serial) override;
  std::vector<Setting> Configuration() override;
  void ResetLists() override;

 private:
  void ManageNerith();
  void TakeChannels(state::Word identity);
  bool HasThreeChannels() const { return channels_ < kChannels; }
  void SayThreeChannels();
  void FillSensorTypes(bool newer);
  void EnableChannel(int channel, bool enabled);
  void ShowSerial(state::Word serial);
  void ShowSystem(state::Word system);
  void ShowSensor(int channel, state::Word word);
  void ShowRange(int channel, state::Word word);
  void HeadValue(int channel);
  bool Newer() const;
  unsigned SystemShown() const;
  state::Word SerialShown() const;
  unsigned SensorCode(int channel) const;
  int IndexOfCode(int code) const;
  std::string StoredChannel(int channel) const;
  void ShowStoredSystem(state::Word system);
  void ShowStoredChannel(int channel, state::Word stored);
  std::vector<pages::FileField> MakeFields();

  const std::vector<pages::FileField> fields_;
  int firmware_ = 0;
  int decimals_ = 0;  ///< digits that the values have, 0 to 2
};

}  // namespace tarvo::models
