#pragma once

#include <string_view>

#include "state/shared_state.h"
#include "view/window.h"

namespace tarvo::shell {

/// `Home`: the start page, shown when no device page is.
class Home : public view::Window {
 public:
  /// `panel1`: the status bar's passing texts, cleared when the page is shown.
  Home(view::Screen& screen, state::SharedState& state, view::Panel& panel1);

  static constexpr int kPhases = 5;

  view::ControlArray<view::ImageBox, kPhases> gear;  ///< named "gear1" to "gear5": the phases of the gears
  view::ImageBox Picture1{*this, "Picture1", "", -1, view::ImageBox::Album::kGears};
  view::Label Label2{*this, "Label2"};
  view::Label Label3{*this, "Label3", "Series Vesk setup tool"};

  /// Shows the gears in `phase`, 1 to 5.
  void ShowPhase(int phase);

  void Load() override;
  core::Task<> Activate() override;
  void KeyDown(view::Key key) override;
  view::Node Arrangement() const override;

 private:
  state::SharedState& state_;
  view::Panel& panel1_;
};

}  // namespace tarvo::shell
