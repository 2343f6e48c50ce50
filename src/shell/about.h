#pragma once

#include "view/window.h"

namespace tarvo::shell {

/// `About`: the program's name and version.
class About : public view::Window {
 public:
  explicit About(view::Screen& screen);

  view::Label lblTitle{*this, "lblTitle", "Series Vesk setup tool"};
  view::Label lblVersion{*this, "lblVersion"};
  view::Button cmdOK{*this, "cmdOK", "OK"};

  view::Node Arrangement() const override;

 private:
  core::Task<> OkClick();
};

}  // namespace tarvo::shell
