#include "pages/change_value.h"

#include "state/number_text.h"
#include "view/screen.h"

namespace tarvo::pages {

ChangeValue::ChangeValue(view::Screen& screen, state::SharedState& state)
    : Window(screen, "ChangeValue", "Change Value"), state_(state) {
  OK.OnClick = [this] { return OkClick(); };
  Cancel.OnClick = [this] { return CancelClick(); };
  Text1.OnKey = [this](view::Key key) { return Text1Key(key); };
}

core::Task<std::optional<std::string>> ChangeValue::AskFor(std::int32_t minimum, std::int32_t maximum) {
  state_.ChangeValueMin = minimum;
  state_.ChangeValueMax = maximum;
  co_await GetScreen().ShowModal(*this);
  std::optional<std::string> accepted;
  if (state_.ChangeValueOk == state::kTrue) accepted = state_.ChangeValueResult;
  co_return accepted;
}

void ChangeValue::Load() {
  state_.ChangeValueOk = state::kFalse;
  MinValue.Caption = "Min Value :" + std::to_string(state_.ChangeValueMin);
  MaxValue.Caption = "Max Value :" + std::to_string(state_.ChangeValueMax);
  Text1.Text = "";
}

core::Task<> ChangeValue::OkClick() {
  if (state::IsNumeric(Text1.Text())) {
    const std::int32_t value = state::ToInteger(Text1.Text());
    // A value out of bounds is replaced by the bound and shown: the user accepts that with a second OK.
    if (value > state_.ChangeValueMax) {
      Text1.Text = std::to_string(state_.ChangeValueMax);
      co_return;
    }
    if (value < state_.ChangeValueMin) {
      Text1.Text = std::to_string(state_.ChangeValueMin);
      co_return;
    }
  } else {
    Text1.Text = "";
  }
  if (Text1.Text().empty()) co_return;
  state_.ChangeValueResult = Text1.Text();
  state_.ChangeValueOk = state::kTrue;
  GetScreen().CloseModal(*this);
}

core::Task<> ChangeValue::CancelClick() {
  GetScreen().CloseModal(*this);
  co_return;
}

core::Task<> ChangeValue::Text1Key(view::Key key) {
  return key == view::Key::kEnter ? OkClick() : CancelClick();
}

view::Node ChangeValue::Arrangement() const {
  return view::Column({
      view::Show(Text1),
      view::Row({view::Show(MinValue), view::Space(), view::Show(MaxValue)}),
      view::Row({view::Space(), view::Show(OK), view::Show(Cancel)}),
  });
}

}  // namespace tarvo::pages
