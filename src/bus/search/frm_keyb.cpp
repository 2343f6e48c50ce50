#include "bus/search/frm_keyb.h"

#include <string>

namespace tarvo::bus {

FrmKeyb::FrmKeyb(view::Screen& screen, state::SharedState& state, std::string_view caption)
    : Window(screen, "frmKeyb", caption), state_(state) {
  Label1.Caption = "Searching for a module on the serial ports. Press ESC to stop.";
  Progress.Caption = "";
  Progress.FillColor = view::kBarBlue;
}

void FrmKeyb::ShowStep(int port, std::string_view settings, int step, int steps) {
  Label2.Caption = "COM" + std::to_string(port) + ", " + std::string(settings);
  Progress.SetPercent(100 * (step - 1) / steps);
}

void FrmKeyb::Load() {
  Label2.Caption = "";
  Progress.SetPercent(0);
}

core::Task<> FrmKeyb::Activate() {
  hourglass_.emplace(GetScreen());
  co_return;
}

void FrmKeyb::Deactivate() {
  hourglass_.reset();
}

core::Task<bool> FrmKeyb::QueryUnload() {
  Stop();
  co_return false;
}

void FrmKeyb::KeyDown(view::Key key) {
  if (key == view::Key::kEscape) Stop();
}

void FrmKeyb::Stop() {
  state_.EscPressed = 1;
  Label2.Caption = "Stopping...";
}

view::Node FrmKeyb::Arrangement() const {
  return view::Column({view::Show(Label1), view::Show(Label2), view::Show(Progress)});
}

}  // namespace tarvo::bus
