#pragma once

#include <array>
#include <functional>
#include <span>
#include <vector>

#include "pages/device_page.h"
#include "view/ar_metor.h"

namespace tarvo::models {

/// Four analog inputs, each with two scales and a filter: what the pages of two generations share. The arrays are named
/// for their page, but for the scaled values, which have one name on both.
class AnalogInputs : public pages::DevicePage {
 public:
  // Registers. Values are signed.

  static constexpr state::Register kFlags{40003};
  static constexpr state::Register kFilter1{40004};      ///< the first of four, 0 to 6
  static constexpr state::Register kFullScale1{40008};   ///< the first of four
  static constexpr state::Register kStartScale1{40012};  ///< the first of four, over both poll blocks
  static constexpr state::Register kStatus{40016};       ///< high byte over- and underflows; writing 1 resets
  static constexpr state::Register kScaled1{40017};      ///< the first of four
  static constexpr state::Register kRaw1{40021};         ///< the first of four

  static constexpr int kInputs = 4;
  static constexpr int kHeadings = 7;
  static constexpr int kHeadingLabels = kInputs * kHeadings;
  static constexpr int kValues = 16;

  /// Members of `Value` and `Overflow` that belong to an input.
  struct InputRow {
    int startScale;
    int fullScale;
    int scaled;
    int raw;
    int underflow;
    int overflow;
  };
  static constexpr std::array<InputRow, kInputs> kInputRows = {{
      {0, 1, 2, 3, 0, 1},
      {6, 7, 5, 4, 2, 3},
      {10, 11, 9, 8, 4, 5},
      {14, 15, 13, 12, 6, 7},
  }};

  // Controls: one row an input, as `kInputRows` says.

  view::ControlArray<view::Label, kHeadingLabels> Headings;
  view::ControlArray<view::Label, kValues> Value;
  view::ControlArray<view::Lamp, 8> Overflow;
  view::ControlArray<view::ARMetor, kInputs> Barg;
  view::ControlArray<view::ComboBox, kInputs> Filter;

 protected:
  AnalogInputs(pages::PageContext& context, const pages::PageIdentity& identity);

  core::Task<> ManageFirst() override;
  core::Task<> ManageSecond() override;
  core::Task<> ManageContinue() override;
  core::Task<> ShowRegisters() override;

  /// Shows what else the first block tells.
  virtual core::Task<> ShowSettings() { co_return; }
  /// What a commit writes of the inputs, behind the flags that `flags` gives.
  std::vector<pages::ImageWrite> InputImages(std::function<state::Word()> flags);
  /// Scales and filters.
  void EnableScales(bool enabled);
  view::Node InputsCard() const;

 private:
  void ShowValue(int value, state::Word word);
  void ShowInputs();
  void ShowOverflows(std::span<const int> lampOfBit);
};

}  // namespace tarvo::models
