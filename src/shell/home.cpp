#include "shell/home.h"

#include <string>

#include "shell/version.h"

namespace tarvo::shell {

Home::Home(view::Screen& screen, state::SharedState& state, view::Panel& panel1)
    : Window(screen, "Home", "Home"),
      gear([this](int i) {
        return view::ImageBox(*this, "gear" + std::to_string(i + 1), "", -1, view::ImageBox::Album::kGears);
      }),
      state_(state),
      panel1_(panel1) {
  for (int i = 0; i < kPhases; ++i) gear[static_cast<std::size_t>(i)].Picture = i + 1;
}

void Home::ShowPhase(int phase) {
  Picture1.Picture = gear[static_cast<std::size_t>(phase - 1)].Picture;
}

void Home::Load() {
  Label2.Caption = "Release: " + std::string(Version());
}

core::Task<> Home::Activate() {
  panel1_.Text = "";
  co_return;
}

void Home::KeyDown(view::Key key) {
  if (key == view::Key::kEscape) state_.EscPressed = 1;
}

view::Node Home::Arrangement() const {
  return view::Column({
      view::Space(),
      view::Row({view::Space(), view::Show(Picture1), view::Space()}),
      view::Row({view::Space(), view::Show(Label3), view::Space()}),
      view::Row({view::Space(), view::Show(Label2), view::Space()}),
      view::Space(),
  });
}

}  // namespace tarvo::shell
