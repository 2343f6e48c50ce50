#pragma once

#include <vector>

#include "models/rtd_page.h"

namespace tarvo::models {

/// Four RTD inputs of a later design: units, filter and wiring of each channel, and its resistance. The search does not
/// know it.
class Oswin : public RtdPage {
 public:
  explicit Oswin(pages::PageContext& context);

  // Registers.

  static constexpr state::Register kResistance1{40016};  ///< the first of four, read one by one
  static constexpr state::Register kBaud{40036};         ///< high byte the baud code
  static constexpr state::Register kChannel1{40037};     ///< the first of four

  // Controls: one row a channel.

  view::ControlArray<view::Label, kChannels> labRES_RTD;
  view::ControlArray<view::ComboBox, kChannels> cbFilter;
  view::ControlArray<view::ComboBox, kChannels> cbUnits;
  view::ControlArray<view::CheckBox, kChannels> chkComp;
  view::ControlArray<view::CheckBox, kChannels> chkRejection;

  using DevicePage::CheckFWVersion;
  /// Takes the whole word of register 40001. No flow calls it.
  void CheckFWVersion(state::Word identity);
  core::Task<> Poll() override;

  view::Node Arrangement() const override;

 protected:
  core::Task<> ManageContinue() override;
  void EnableSettings(int channel, bool enabled) override;
  void Identified(state::Word identity) override;
  const char* WrongModuleText() const override { return "This is not a Oswin"; }
  core::Task<> ShowConfiguration(std::optional<state::Word> serial) override;
  std::vector<Setting> Configuration() override;
  void ResetLists() override;

 private:
  void ManageOswin();
  std::string Measure(int channel, state::Word value) const;
  void FillLists();
  void ShowChannel(int channel, state::Word word);

  int firmware_ = 0;  ///< told by the identity; nothing depends on it
};

}  // namespace tarvo::models
