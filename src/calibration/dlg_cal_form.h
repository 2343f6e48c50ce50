#pragma once

#include <cstdint>
#include <string>

#include "bus/byte_port.h"
#include "bus/modcom/modcom.h"
#include "core/scheduler.h"
#include "core/task.h"
#include "core/wait_list.h"
#include "state/shared_state.h"
#include "view/window.h"

namespace tarvo::calibration {

/// `dlgCalForm`: calibrates one input of a thermocouple module by two points. The module corrects its input by
/// y = m x + q; m is the Span, 10000 for a gain of 1, and q the Zero.
class DlgCalForm : public view::Window {
 public:
  DlgCalForm(view::Screen& screen, state::SharedState& state, bus::PortOpener& ports);

  /// Shows the dialog for `input`, 0 to 3, until it is closed. The page's polling is off meanwhile.
  core::Task<> ShowFor(int input);

  bus::ModCom ModCom1;
  view::Timer timerStartComm{*this, "timerStartComm", 1000};

  // One row a point: the low one, then the high one.

  view::Label Label3{*this, "Label3", "VALUE READ"};
  view::Label Label4{*this, "Label4", "VALUE TO SET"};
  view::ControlArray<view::Button, 2> buttRead;
  view::ControlArray<view::TextBox, 2> tbActualValue;
  view::ControlArray<view::TextBox, 2> tbValueToSet;
  view::Button buttCalibra{*this, "buttCalibra", "&Calculate", "Calculate and transmit  m,q"};

  view::Label Label5{*this, "Label5", "y=mx +q"};
  view::Label Label2{*this, "Label2", "m"};
  view::TextBox tbSpan{*this, "tbSpan"};
  view::Label Label1{*this, "Label1", "q"};
  view::TextBox tbZero{*this, "tbZero"};
  view::Button buttReset{*this, "buttReset", "&Reset", "Reset m,q values ?"};
  view::Button buttSet{*this, "buttSet", "&Set", "Set m,q values ?"};

  view::Panel StatusBar1{*this, "StatusBar1", 1};  ///< named "StatusBar1(1)"
  view::Button OKButton{*this, "OKButton", "&OK"};
  view::Button buttExit{*this, "buttExit", "EXIT"};
  view::Button CancelButton{*this, "CancelButton", "Annulla"};

  /// Span and Zero that go through the two points; `result` is 1 when they were also written.
  struct Line {
    std::int32_t m = 0;
    std::int32_t q = 0;
    std::int16_t result = 0;
  };
  core::Task<Line> Calibrating(double x1, double x2, double y1, double y2);

  void Load() override;
  /// Waits for the end of what is under way on the bus.
  core::Task<bool> QueryUnload() override;
  view::Node Arrangement() const override;

 private:
  class BusWork;

  void LockAll(bool locked);
  void EnableRow(std::size_t row, bool enabled);

  /// Reads both into their fields.
  core::Task<> ReadSpanAndZero();
  /// The measured value as text, empty when it was not read. The next step of the sequence is enabled by it.
  core::Task<std::string> ReadActualValue(std::size_t row);
  /// 1 when the last of the four writes was good, else 0. Throws "Overflow", and writes nothing, for a number that no
  /// register holds.
  core::Task<std::int16_t> WriteSpanAndZero(std::int32_t m, std::int32_t q);

  core::Task<> ReadClick(std::size_t row);
  core::Task<> CalibraClick();
  core::Task<> ResetClick();
  core::Task<> SetClick();
  core::Task<> OkClick();
  /// Enter in a field does what its button does, Escape closes.
  core::Task<> ValueKey(view::Key key);
  core::Task<> LineKey(view::Key key);
  core::Task<> StartCommTick();
  core::Task<> SayCritical(std::string text);

  state::SharedState& state_;
  int input_ = 0;
  int works_ = 0;  ///< bus routines under way
  core::WaitList idle_;
  core::Call tellIdle_;
};

}  // namespace tarvo::calibration
