#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "core/task.h"
#include "state/shared_state.h"
#include "view/window.h"

namespace tarvo::pages {

/// The dialog for a bounded integer.
class ChangeValue : public view::Window {
 public:
  ChangeValue(view::Screen& screen, state::SharedState& state);

  /// Shows the dialog; gives the text that was accepted, as typed, or nothing.
  core::Task<std::optional<std::string>> AskFor(std::int32_t minimum, std::int32_t maximum);

  view::Label MinValue{*this, "MinValue"};
  view::Label MaxValue{*this, "MaxValue"};
  view::TextBox Text1{*this, "Text1"};
  view::Button OK{*this, "OK", "OK"};
  view::Button Cancel{*this, "Cancel", "Cancel"};

  void Load() override;
  view::Node Arrangement() const override;

 private:
  core::Task<> OkClick();
  core::Task<> CancelClick();
  core::Task<> Text1Key(view::Key key);

  state::SharedState& state_;
};

}  // namespace tarvo::pages
