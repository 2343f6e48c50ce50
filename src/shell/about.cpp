#include "shell/about.h"

#include <string>

#include "shell/version.h"
#include "view/screen.h"

namespace tarvo::shell {

About::About(view::Screen& screen) : Window(screen, "About", "About Tarvo") {
  lblVersion.Caption = "Version " + std::string(Version());
  cmdOK.OnClick = [this] { return OkClick(); };
}

core::Task<> About::OkClick() {
  GetScreen().CloseModal(*this);
  co_return;
}

view::Node About::Arrangement() const {
  return view::Column({
      view::Head("Tarvo", "", {}),
      view::Show(lblTitle),
      view::Show(lblVersion),
      view::Row({view::Space(), view::Show(cmdOK)}),
  });
}

}  // namespace tarvo::shell
