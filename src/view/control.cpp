#include "view/control.h"

#include <algorithm>

#include "core/fault.h"
#include "view/screen.h"
#include "view/window.h"

namespace tarvo::view {

void detail::TellChanged(Control& owner, const void* property) {
  owner.GetWindow().GetScreen().NoteChanged(owner);
  owner.OnSet(property);
}

Control::Control(Window& window, Kind kind, std::string_view name, int index)
    : window_(window), kind_(kind), name_(name) {
  if (index >= 0) name_ += "(" + std::to_string(index) + ")";
  window_.controls_.push_back(this);
}

Control::~Control() {
  window_.GetScreen().Forget(*this);
}

std::vector<NamedValue> Control::Properties() const {
  return {{"Enabled", Enabled()}, {"Visible", Visible()}, {"ToolTipText", ToolTipText()}};
}

namespace {

/// `own` first, then what all controls have.
std::vector<NamedValue> Join(std::vector<NamedValue> own, std::vector<NamedValue> common) {
  own.insert(own.end(), std::make_move_iterator(common.begin()), std::make_move_iterator(common.end()));
  return own;
}

std::int64_t Number(int value) {
  return value;
}

}  // namespace

Label::Label(Window& window, std::string_view name, std::string_view caption, std::string_view toolTip, int index)
    : Control(window, Kind::kLabel, name, index) {
  Caption = caption;
  ToolTipText = toolTip;
}

std::vector<NamedValue> Label::Properties() const {
  return Join({{"Caption", Caption()}, {"BackColor", Number(BackColor)}}, Control::Properties());
}

Button::Button(Window& window, std::string_view name, std::string_view caption, std::string_view toolTip, int index)
    : Control(window, Kind::kButton, name, index) {
  Caption = caption;
  ToolTipText = toolTip;
}

std::vector<NamedValue> Button::Properties() const {
  return Join({{"Caption", Caption()}}, Control::Properties());
}

CheckBox::CheckBox(Window& window, std::string_view name, std::string_view caption, std::string_view toolTip, int index)
    : Control(window, Kind::kCheckBox, name, index) {
  Caption = caption;
  ToolTipText = toolTip;
}

std::vector<NamedValue> CheckBox::Properties() const {
  return Join({{"Caption", Caption()}, {"Value", Number(Value)}, {"BackColor", Number(BackColor)}},
              Control::Properties());
}

void CheckBox::OnSet(const void* property) {
  if (property == &Value && OnChange) OnChange();
}

OptionButton::OptionButton(Window& window, std::string_view name, std::string_view group, std::string_view caption,
                           std::string_view toolTip, int index)
    : Control(window, Kind::kOptionButton, name, index), group_(group) {
  Caption = caption;
  ToolTipText = toolTip;
}

std::vector<NamedValue> OptionButton::Properties() const {
  return Join({{"Caption", Caption()}, {"Value", Value()}}, Control::Properties());
}

void OptionButton::OnSet(const void* property) {
  if (property != &Value || !Value()) return;
  for (Control* control : GetWindow().Controls()) {
    if (control == this || control->GetKind() != Kind::kOptionButton) continue;
    auto* other = static_cast<OptionButton*>(control);
    if (other->group_ == group_) other->Value = false;
  }
}

ComboBox::ComboBox(Window& window, std::string_view name, std::span<const ListRow> rows, std::string_view toolTip,
                   int index)
    : Control(window, Kind::kComboBox, name, index) {
  SetRows(rows);
  ToolTipText = toolTip;
}

std::vector<NamedValue> ComboBox::Properties() const {
  return Join({{"Text", Text()}, {"ListIndex", Number(ListIndex)}, {"List", List()}, {"ItemData", ItemData()}},
              Control::Properties());
}

std::string ComboBox::Text() const {
  const auto position = static_cast<std::size_t>(ListIndex());
  return position < List().size() ? List()[position] : std::string();
}

int ComboBox::SelectedCode() const {
  const auto position = static_cast<std::size_t>(ListIndex());
  return position < ItemData().size() ? ItemData()[position] : 0;
}

bool ComboBox::SelectCode(int code) {
  const auto found = std::find(ItemData().begin(), ItemData().end(), code);
  if (found == ItemData().end()) return false;
  ListIndex = static_cast<int>(found - ItemData().begin());
  return true;
}

void ComboBox::SetRows(std::span<const ListRow> rows) {
  std::vector<std::string> texts;
  std::vector<int> codes;
  for (const ListRow& row : rows) {
    texts.emplace_back(row.text);
    codes.push_back(row.code);
  }
  ItemData = codes;
  List = texts;
}

void ComboBox::AddItem(std::string_view text, int code) {
  std::vector<std::string> texts = List();
  std::vector<int> codes = ItemData();
  texts.emplace_back(text);
  codes.push_back(code);
  ItemData = codes;
  List = texts;
}

void ComboBox::RemoveItem(int position) {
  std::vector<std::string> texts = List();
  std::vector<int> codes = ItemData();
  if (position < 0 || static_cast<std::size_t>(position) >= texts.size()) throw core::Fault(core::kSubscriptOutOfRange);
  texts.erase(texts.begin() + position);
  codes.erase(codes.begin() + position);
  ItemData = codes;
  List = texts;
  if (ListIndex() == position) {
    ListIndex = -1;
  } else if (ListIndex() > position) {
    ListIndex = ListIndex() - 1;
  }
}

void ComboBox::OnSet(const void* property) {
  if (property == &ListIndex && OnSelect) OnSelect();
}

TextBox::TextBox(Window& window, std::string_view name, std::string_view toolTip, int index)
    : Control(window, Kind::kTextBox, name, index) {
  ToolTipText = toolTip;
}

std::vector<NamedValue> TextBox::Properties() const {
  return Join({{"Text", Text()}}, Control::Properties());
}

ImageBox::ImageBox(Window& window, std::string_view name, std::string_view toolTip, int index, Album album)
    : Control(window, Kind::kImageBox, name, index), album_(album) {
  ToolTipText = toolTip;
}

std::vector<NamedValue> ImageBox::Properties() const {
  return Join({{"Picture", Number(Picture)}}, Control::Properties());
}

Lamp::Lamp(Window& window, std::string_view name, std::string_view caption, std::string_view toolTip, int index)
    : Control(window, Kind::kLamp, name, index) {
  Caption = caption;
  ToolTipText = toolTip;
}

std::vector<NamedValue> Lamp::Properties() const {
  return Join({{"Caption", Caption()}, {"BackColor", Number(BackColor)}}, Control::Properties());
}

Timer::Timer(Window& window, std::string_view name, int interval)
    : Control(window, Kind::kTimer, name), tick_(window.GetScheduler(), [this] { Tick(); }) {
  Interval = interval;
  Enabled = false;
}

std::vector<NamedValue> Timer::Properties() const {
  return {{"Interval", Number(Interval)}, {"Enabled", Enabled()}};
}

void Timer::OnSet(const void* property) {
  if (property != &Enabled && property != &Interval) return;
  if (Enabled() && Interval() > 0) {
    tick_.After(core::milliseconds(Interval()));
  } else {
    tick_.Cancel();
  }
}

void Timer::Tick() {
  const core::TimePoint now = GetWindow().GetScheduler().Now();
  const core::Duration period = core::milliseconds(Interval());
  // A tick that comes late does not make up for those that were missed.
  core::TimePoint next = tick_.Due() + period;
  if (next <= now) next = now + period;
  tick_.At(next);
  if (!running_ && OnTimer) GetWindow().Spawn(RunHandler());
}

core::Task<> Timer::RunHandler() {
  struct Running {
    explicit Running(bool& flag) : flag_(flag) { flag_ = true; }
    ~Running() { flag_ = false; }
    bool& flag_;
  };
  const Running running(running_);
  co_await OnTimer();
}

Clip::Clip(Window& window, std::string_view name) : Control(window, Kind::kClip, name) {}

std::vector<NamedValue> Clip::Properties() const {
  return Join({{"FileName", FileName()}, {"Loop", Loop()}, {"Playing", Playing()}}, Control::Properties());
}

Panel::Panel(Window& window, std::string_view name, int index) : Control(window, Kind::kPanel, name, index) {}

std::vector<NamedValue> Panel::Properties() const {
  return Join({{"Text", Text()}}, Control::Properties());
}

MenuItem::MenuItem(Window& window, MenuItem* menu, std::string_view name, std::string_view caption)
    : Control(window, Kind::kMenuItem, name), menu_(menu) {
  Caption = caption;
}

std::vector<NamedValue> MenuItem::Properties() const {
  return Join({{"Caption", Caption()}, {"Value", Number(Value)}}, Control::Properties());
}

std::string WithoutMnemonic(std::string_view caption) {
  std::string text;
  for (std::size_t i = 0; i < caption.size(); ++i) {
    if (caption[i] == '&') {
      // "&&" stands for one "&".
      if (i + 1 < caption.size() && caption[i + 1] == '&') text += caption[i++];
      continue;
    }
    text += caption[i];
  }
  return text;
}

}  // namespace tarvo::view
