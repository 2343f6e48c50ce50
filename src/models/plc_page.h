#pragma once

#include <array>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "pages/device_page.h"

namespace tarvo::models {

/// Tool tips of the settings towards a PLC.
struct PlcTips {
  std::array<std::string_view, 6> checks;
  std::string_view scaled;
  std::string_view raw;
  std::string_view bitOrder;
};

/// A page of the second generation: in place of a line's settings it tells what the module publishes on its PLC side,
/// the selected registers, raw or scaled, and in which order of bits. `Inputs` is what the page shows beside it; its
/// flags register is `Inputs::kFlags`.
template <class Inputs>
class PlcPage : public Inputs {
 public:
  static constexpr int kChecks = 6;  ///< speed, four inputs, status
  static constexpr int kFirstInput = 1;
  static constexpr int kLastInput = 4;
  static constexpr unsigned kRaw = 0x2000;
  static constexpr unsigned kReversed = 0x4000;

  view::ControlArray<view::CheckBox, kChecks> Check;
  view::OptionButton Option1;  ///< scaled
  view::OptionButton Option2;  ///< raw
  view::CheckBox CheckBitOrder;

 protected:
  template <class... Arguments>
  PlcPage(pages::PageContext& context, const pages::PageIdentity& identity, const PlcTips& tips,
          Arguments&&... arguments)
      : Inputs(context, identity, std::forward<Arguments>(arguments)...),
        Check([&](int i) {
          const auto at = static_cast<std::size_t>(i);
          return view::CheckBox(*this, Named("Check", identity), kCaptions.at(at), tips.checks.at(at), i);
        }),
        Option1(*this, Named("Option", identity) + "1", "scaled", "Scaled ", tips.scaled),
        Option2(*this, Named("Option", identity) + "2", "raw", "Raw", tips.raw),
        CheckBitOrder(*this, Named("Check", identity) + "BitOrder", "Rev. Bit Order", tips.bitOrder),
        flags_({{
            {Check[0], Inputs::kFlags, 0x0002, 0xFFFD},
            {Check[1], Inputs::kFlags, 0x0100, 0xFEFF},
            {Check[2], Inputs::kFlags, 0x0200, 0xFDFF},
            {Check[3], Inputs::kFlags, 0x0400, 0xFBFF},
            {Check[4], Inputs::kFlags, 0x0800, 0xF7FF},
            {Check[5], Inputs::kFlags, 0x1000, 0xEFFF},
            {CheckBitOrder, Inputs::kFlags, kReversed, 0xBFFF},
        }}) {
    this->TieFlags(flags_);
    Option1.Value = true;
    for (int i = 0; i < kChecks; ++i) Check[i].OnPress = [this, i] { return CheckPress(i); };
    CheckBitOrder.OnClick = [this] { return BitOrderClick(); };
  }

  void FlagsShowing(state::Word flags) override { ShowRaw(flags.Has(kRaw)); }

  /// The two options stand in groups of their own.
  void ShowRaw(bool raw) {
    Option1.Value = !raw;
    Option2.Value = raw;
  }

  void EnablePlc(bool enabled) {
    for (view::CheckBox& check : Check) check.Enabled = enabled;
    CheckBitOrder.Enabled = enabled;
  }

  view::Node PlcCards() const {
    std::vector<view::Node> selected;
    selected.reserve(kChecks - 1);
    for (int i = kFirstInput; i < kChecks; ++i) selected.push_back(view::Show(Check[i]));
    return view::Row({
        view::Frame("Options", view::Column({view::Show(Check[0])})),
        view::Frame("PLC Interface Settings",
                    view::Row({
                        view::Frame("Selected Registers", view::Column(std::move(selected))),
                        view::Column({
                            view::Frame("Data", view::Column({view::Show(Option1), view::Show(Option2)})),
                            view::Show(CheckBitOrder),
                        }),
                    })),
    });
  }

 private:
  static constexpr std::array<std::string_view, kChecks> kCaptions = {
      "Speed Up Acquisition", "INPUT #1", "INPUT #2", "INPUT #3", "INPUT #4", "STATUS"};

  static std::string Named(const char* array, const pages::PageIdentity& identity) {
    return array + std::string(identity.model);
  }

  /// The last input that is selected stays so: made clear first, the click turns it on again.
  core::Task<> CheckPress(int check) {
    view::CheckBox& box = Check[check];
    if (check >= kFirstInput && check <= kLastInput) {
      int others = 0;
      for (int i = kFirstInput; i <= kLastInput; ++i) others += i != check ? Check[i].Value() : 0;
      if (others == 0) box.Value = 0;
    }
    return this->ChangeFlag(flags_.at(static_cast<std::size_t>(check)), box.Value() == 0);
  }

  core::Task<> BitOrderClick() { return this->ChangeFlag(flags_.back(), CheckBitOrder.Value() != 0); }

  const std::array<pages::Flag, kChecks + 1> flags_;
};

}  // namespace tarvo::models
