#pragma once

#include <optional>
#include <string>

#include "core/task.h"
#include "state/shared_state.h"
#include "view/window.h"

namespace tarvo::pages {

/// `dlgSetNewValue`: the dialog for a new value of an analog output, 0 to 10000.
class DlgSetNewValue : public view::Window {
 public:
  DlgSetNewValue(view::Screen& screen, state::SharedState& state);

  /// Shows the dialog under `caption` (empty for its own, "Set New Value"); gives the text that was accepted, or
  /// nothing.
  core::Task<std::optional<std::string>> AskFor(std::string caption);

  view::TextBox txtValRam{*this, "txtValRam"};
  view::Button OK{*this, "OK", "OK"};
  view::Button Cancel{*this, "Cancel", "Cancel"};

  void Load() override;
  view::Node Arrangement() const override;

 private:
  core::Task<> OkClick();
  core::Task<> CancelClick();
  core::Task<> TxtValRamKey(view::Key key);

  state::SharedState& state_;
  bool accepted_ = false;
};

}  // namespace tarvo::pages
