#include "pages/dlg_set_new_value.h"

#include <utility>

#include "state/number_text.h"
#include "view/screen.h"

namespace tarvo::pages {

namespace {

constexpr char kOwnCaption[] = "Set New Value";
constexpr double kLowestRefused = 10001;
constexpr char kHighest[] = "10000";

}  // namespace

DlgSetNewValue::DlgSetNewValue(view::Screen& screen, state::SharedState& state)
    : Window(screen, "dlgSetNewValue", kOwnCaption), state_(state) {
  OK.OnClick = [this] { return OkClick(); };
  Cancel.OnClick = [this] { return CancelClick(); };
  txtValRam.OnKey = [this](view::Key key) { return TxtValRamKey(key); };
}

core::Task<std::optional<std::string>> DlgSetNewValue::AskFor(std::string caption) {
  Caption = caption.empty() ? kOwnCaption : std::move(caption);
  co_await GetScreen().ShowModal(*this);
  std::optional<std::string> accepted;
  if (accepted_) accepted = state_.NewValueText;
  co_return accepted;
}

void DlgSetNewValue::Load() {
  accepted_ = false;
  txtValRam.Text = "";
}

core::Task<> DlgSetNewValue::OkClick() {
  if (!state::IsNumeric(txtValRam.Text())) {
    co_await GetScreen().MsgBox("Value is not numeric !", view::Icon::kExclamation);
    txtValRam.Text = "0";
    co_return;
  }
  txtValRam.Text = state::PointToComma(txtValRam.Text());
  const double value = state::ToNumber(txtValRam.Text());
  if (value < 0) {
    GetScreen().Beep();
    txtValRam.Text = "0";
  } else if (value >= kLowestRefused) {
    GetScreen().Beep();
    txtValRam.Text = kHighest;
  }
  state_.NewValueText = txtValRam.Text();
  accepted_ = true;
  GetScreen().CloseModal(*this);
}

core::Task<> DlgSetNewValue::CancelClick() {
  GetScreen().CloseModal(*this);
  co_return;
}

core::Task<> DlgSetNewValue::TxtValRamKey(view::Key key) {
  return key == view::Key::kEnter ? OkClick() : CancelClick();
}

view::Node DlgSetNewValue::Arrangement() const {
  return view::Column({
      view::Show(txtValRam),
      view::Text("0 to 10000"),
      view::Row({view::Space(), view::Show(OK), view::Show(Cancel)}),
  });
}

}  // namespace tarvo::pages
