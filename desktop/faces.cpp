#include "desktop/faces.h"

#include <QSignalBlocker>
#include <QStringList>
#include <utility>

#include "desktop/colours.h"
#include "desktop/text.h"
#include "desktop/widgets/gear.h"
#include "desktop/widgets/mark.h"
#include "desktop/widgets/measure.h"
#include "desktop/widgets/message_line.h"
#include "desktop/widgets/meter_bar.h"
#include "desktop/widgets/native.h"
#include "desktop/widgets/page_list.h"
#include "desktop/widgets/text_label.h"
#include "desktop/widgets/value_box.h"
#include "view/ar_metor.h"

namespace tarvo::desktop {

namespace {

/// What a screen reader says: the control's name, and its state where the look tells one.
void Name(QWidget& widget, const view::Control& control, const QString& state = {}) {
  QString name = ToQt(control.Name());
  if (!state.isEmpty()) name += QStringLiteral(": ") + state;
  if (widget.accessibleName() != name) widget.setAccessibleName(name);
}

QString OnOrOff(bool on) {
  return on ? QStringLiteral("on") : QStringLiteral("off");
}

QString Percent(const view::ARMetor& meter) {
  return QStringLiteral("%1 %").arg(meter.Percent());
}

/// The control's own tool tip; a meter's also tells what its length means.
QString ToolTip(const view::Control& control) {
  QString tip = ToQt(control.ToolTipText());
  if (control.GetKind() != view::Kind::kMeter) return tip;
  if (!tip.isEmpty()) tip += QLatin1Char('\n');
  return tip + Percent(static_cast<const view::ARMetor&>(control));
}

}  // namespace

QWidget* Faces::Make(view::Control& control, QWidget* parent, Setting setting) {
  switch (control.GetKind()) {
    case view::Kind::kLabel:
      return MakeLabel(static_cast<view::Label&>(control), parent, setting);
    case view::Kind::kButton:
      return MakeButton(static_cast<view::Button&>(control), parent, setting);
    case view::Kind::kCheckBox:
      return MakeCheckBox(static_cast<view::CheckBox&>(control), parent);
    case view::Kind::kOptionButton:
      return MakeOption(static_cast<view::OptionButton&>(control), parent);
    case view::Kind::kComboBox:
      return MakeComboBox(static_cast<view::ComboBox&>(control), parent);
    case view::Kind::kTextBox:
      return MakeTextBox(static_cast<view::TextBox&>(control), parent);
    case view::Kind::kImageBox:
      return MakeImageBox(static_cast<view::ImageBox&>(control), parent);
    case view::Kind::kLamp:
      return MakeLamp(static_cast<view::Lamp&>(control), parent);
    case view::Kind::kMeter:
      return MakeMeter(control, parent);
    case view::Kind::kClip:
      return MakeClip(static_cast<view::Clip&>(control), parent);
    case view::Kind::kTimer:
    case view::Kind::kPanel:
    case view::Kind::kMenuItem:
    case view::Kind::kComponent:
      break;
  }
  return nullptr;
}

void Faces::Follow(const view::Control& control, QObject& shower, std::function<void()> refresh) {
  refresh();
  faces_[&control] = Face{&shower, std::move(refresh)};
}

void Faces::Refresh(const view::Control& control) {
  const auto found = faces_.find(&control);
  if (found == faces_.end() || found->second.shower == nullptr) return;
  const QSignalBlocker quiet(found->second.shower);
  found->second.refresh();
}

QWidget* Faces::Find(const view::Control& control) const {
  const auto found = faces_.find(&control);
  return found == faces_.end() ? nullptr : qobject_cast<QWidget*>(found->second.shower.data());
}

void Faces::Bind(view::Control& control, QWidget* widget, std::function<void()> refresh) {
  widget->setObjectName(ToQt(control.Name()));
  // A control that hides leaves its place empty, so that nothing else on the page moves.
  QSizePolicy policy = widget->sizePolicy();
  policy.setRetainSizeWhenHidden(true);
  widget->setSizePolicy(policy);
  const auto all = [&control, widget, own = std::move(refresh)] {
    if (widget->isHidden() == control.Visible()) widget->setVisible(control.Visible());
    if (widget->isEnabled() != control.Enabled()) widget->setEnabled(control.Enabled());
    if (const QString tip = ToolTip(control); widget->toolTip() != tip) widget->setToolTip(tip);
    own();
  };
  const QSignalBlocker quiet(widget);
  Follow(control, *widget, all);
}

template <class Widget>
void Faces::HandIn(view::Control& control, Widget* widget) {
  if (!control.TakesClick()) return;
  widget->TakeClicks([this, &control] { screen_.Click(control); },
                     [this, &control] { screen_.PressKey(&control, view::Key::kEnter); });
}

QWidget* Faces::MakeLabel(view::Label& label, QWidget* parent, Setting setting) {
  if (label.TakesClick()) {
    auto* box = new ValueBox(parent);
    HandIn(label, box);
    Bind(label, box, [&label, box] {
      box->SetText(ToQt(label.Caption()));
      Name(*box, label, box->Text());
    });
    return box;
  }
  if (setting == Setting::kMessage) {
    auto* line = new MessageLine(parent);
    Bind(label, line, [&label, line] {
      line->SetText(ToQt(label.Caption()));
      Name(*line, label, line->Text());
    });
    return line;
  }
  auto* text = new TextLabel(parent, setting == Setting::kNote ? TextLabel::Look::kQuiet : TextLabel::Look::kPlain);
  if (setting == Setting::kTable) text->AlignNumbers();
  Bind(label, text, [&label, text] {
    text->SetText(ToQt(label.Caption()));
    Name(*text, label, text->Text());
  });
  return text;
}

PageLabel* Faces::MakePageLabel(view::Label& label, QWidget* parent, std::function<void()> onRefresh) {
  auto* entry = new PageLabel(parent);
  HandIn(label, entry);
  Bind(label, entry, [&label, entry, after = std::move(onRefresh)] {
    entry->SetText(ToQt(label.Caption()));
    entry->SetSelected(label.BackColor() == view::kHighlight);
    Name(*entry, label, entry->Selected() ? QStringLiteral("selected") : QString());
    after();
  });
  // The list closes up when a family of pages is hidden.
  QSizePolicy policy = entry->sizePolicy();
  policy.setRetainSizeWhenHidden(false);
  entry->setSizePolicy(policy);
  return entry;
}

QWidget* Faces::MakeButton(view::Button& button, QWidget* parent, Setting setting) {
  auto* push = new PushButton(parent, [this, &button] { screen_.PressKey(&button, view::Key::kEnter); });
  if (setting == Setting::kAccent) push->Accent();
  QObject::connect(push, &QPushButton::clicked, push, [this, &button] { screen_.Click(button); });
  Bind(button, push, [&button, push] {
    push->setText(ToQt(button.Caption()));
    Name(*push, button);
  });
  return push;
}

QWidget* Faces::MakeCheckBox(view::CheckBox& box, QWidget* parent) {
  auto* mark = new CheckMark(parent);
  const auto click = [this, &box] {
    screen_.Click(box);
    Refresh(box);
  };
  QObject::connect(mark, &QCheckBox::clicked, mark, click);
  // Only assistive tools toggle the widget past its own click.
  QObject::connect(mark, &QCheckBox::toggled, mark, click);
  Bind(box, mark, [&box, mark] {
    mark->setText(ToQt(box.Caption()));
    mark->setChecked(box.Value() != 0);
    Name(*mark, box, OnOrOff(mark->isChecked()));
  });
  return mark;
}

QWidget* Faces::MakeOption(view::OptionButton& option, QWidget* parent) {
  auto* mark = new OptionMark(parent);
  const auto click = [this, &option] {
    screen_.Click(option);
    Refresh(option);
  };
  QObject::connect(mark, &QRadioButton::clicked, mark, click);
  QObject::connect(mark, &QRadioButton::toggled, mark, click);
  Bind(option, mark, [&option, mark] {
    mark->setText(ToQt(option.Caption()));
    mark->setChecked(option.Value());
    Name(*mark, option, OnOrOff(mark->isChecked()));
  });
  return mark;
}

QWidget* Faces::MakeComboBox(view::ComboBox& combo, QWidget* parent) {
  auto* list = new ListField(parent);
  QObject::connect(list, &QComboBox::activated, list, [this, &combo](int position) {
    screen_.Choose(combo, position);
    // The list has moved by itself; what holds is what the control says.
    Refresh(combo);
  });
  Bind(combo, list, [&combo, list] {
    QStringList texts;
    for (const std::string& text : combo.List()) texts << ToQt(text);
    QStringList shown;
    for (int i = 0; i < list->count(); ++i) shown << list->itemText(i);
    if (texts != shown) {
      list->clear();
      list->addItems(texts);
    }
    if (list->currentIndex() != combo.ListIndex()) list->setCurrentIndex(combo.ListIndex());
    Name(*list, combo, list->currentText());
  });
  return list;
}

QWidget* Faces::MakeTextBox(view::TextBox& field, QWidget* parent) {
  auto* edit = new TextField(parent);
  edit->onKey = [this, &field](view::Key key) { screen_.PressKey(&field, key); };
  edit->onLeave = [this, &field] { screen_.Leave(field); };
  QObject::connect(edit, &QLineEdit::textEdited, edit, [this, &field](const QString& text) {
    screen_.Type(field, text.toStdString());
    Refresh(field);
  });
  Bind(field, edit, [&field, edit] {
    const QString text = ToQt(field.Text());
    if (edit->text() != text) {
      edit->setText(text);
      // The program has put something else there: the next key replaces it.
      edit->selectAll();
    }
    Name(*edit, field);
  });
  return edit;
}

QWidget* Faces::MakeImageBox(view::ImageBox& image, QWidget* parent) {
  auto* mark = new Mark(parent, Mark::Size::kLarge);
  HandIn(image, mark);
  Bind(image, mark, [&image, mark] {
    constexpr int kLitPicture = 2;
    mark->SetRole(image.Picture() == kLitPicture ? Role::kGood : Role::kDark);
    Name(*mark, image, OnOrOff(mark->Lit()));
  });
  return mark;
}

QWidget* Faces::MakeLamp(view::Lamp& lamp, QWidget* parent) {
  auto* mark = new Mark(parent, Mark::Size::kSmall);
  HandIn(lamp, mark);
  Bind(lamp, mark, [&lamp, mark] {
    mark->SetCaption(ToQt(view::WithoutMnemonic(lamp.Caption())));
    mark->SetRole(RoleOf(lamp.BackColor()));
    Name(*mark, lamp, OnOrOff(mark->Lit()));
  });
  return mark;
}

QWidget* Faces::MakeMeter(view::Control& control, QWidget* parent) {
  auto& meter = static_cast<view::ARMetor&>(control);
  auto* bar = new MeterBar(parent);
  Bind(meter, bar, [&meter, bar] {
    bar->SetShare(static_cast<double>(meter.ShapeWidth(1.0F)));
    const Role role = RoleOf(meter.FillColor());
    bar->SetRole(role == Role::kDark ? Role::kBar : role);
    Name(*bar, meter, Percent(meter));
  });
  return bar;
}

QWidget* Faces::MakeClip(view::Clip& clip, QWidget* parent) {
  auto* gear = new Gear(parent);
  Bind(clip, gear, [&clip, gear] {
    gear->SetTurning(clip.Playing());
    Name(*gear, clip, OnOrOff(clip.Playing()));
  });
  return gear;
}

}  // namespace tarvo::desktop
