#pragma once

#include <optional>
#include <string_view>

#include "state/shared_state.h"
#include "view/ar_metor.h"
#include "view/hourglass.h"
#include "view/window.h"

namespace tarvo::bus {

/// `frmKeyb`: stands in front while a search runs and catches ESC.
class FrmKeyb : public view::Window {
 public:
  FrmKeyb(view::Screen& screen, state::SharedState& state, std::string_view caption);

  view::Label Label1{*this, "Label1"};
  view::Label Label2{*this, "Label2"};  ///< where the search is now
  view::ARMetor Progress{*this, "Progress"};

  /// Tells that `settings` are tried on COM`port`, as number `step` of `steps`.
  void ShowStep(int port, std::string_view settings, int step, int steps);

  void Load() override;
  core::Task<> Activate() override;
  void Deactivate() override;
  /// Its close box stops the search as ESC does; the window goes when the search has ended.
  core::Task<bool> QueryUnload() override;
  void KeyDown(view::Key key) override;
  view::Node Arrangement() const override;

 private:
  /// What the search is at takes its time: that the wish was heard is told at once.
  void Stop();

  state::SharedState& state_;
  std::optional<view::Hourglass> hourglass_;
};

}  // namespace tarvo::bus
