#pragma once

#include <string>
#include <string_view>

#include "bus/byte_port.h"
#include "bus/ms_comm.h"
#include "bus/rawlink/plug_and_play.h"
#include "state/shared_state.h"
#include "view/window.h"

namespace tarvo::bus {

/// `frmPlugAndPlay`: walks the first registers of a module by raw exchanges, one at each tick, and shows what they
/// hold. A hidden page: no navigation leads here.
class FrmPlugAndPlay : public view::Window {
 public:
  FrmPlugAndPlay(view::Screen& screen, state::SharedState& state, PortOpener& opener);

  static constexpr int kParameters = 20;

  // The page's controls by number: they stand first.

  view::ControlArray<view::Label, kParameters> Parameter;
  MSComm MSComm1;
  view::Timer TimerRefresh{*this, "TimerRefresh", 1000};

  PlugAndPlay Link;

  /// Shows `text` in control number `number`; throws "Subscript out of range" where there is none.
  void ShowParameter(int number, const std::string& text);

  bool Hidden() const override { return true; }
  void Load() override;
  core::Task<> Activate() override;
  void Deactivate() override;
  void Unload() override { Deactivate(); }
  view::Node Arrangement() const override;

 private:
  core::Task<> TimerRefreshTick();

  state::SharedState& state_;
  int index_ = 0;  ///< of the parameter that the next tick reads
};

}  // namespace tarvo::bus
