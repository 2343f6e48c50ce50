#include "desktop/faces.h"

#include <QSignalBlocker>
#include <QStringList>
#include <utility>

#include "desktop/colours.h"
#include "desktop/text.h"
#include "desktop/widgets/gear.h"
#include "desktop/widgets/gear_group.h"
#include "desktop/widgets/mark.h"
#include "desktop/widgets/measure.h"
#include "desktop/widgets/message_line.h"
#include "desktop/widgets/meter_bar.h"
#include "desktop/widgets/native.h"
#include "desktop/widgets/page_list.h"
#include "desktop/widgets/text_label.h"
#include "desktop/widgets/value_box.h"
#include "view/ar_metor.h"
#include "view/window.h"

namespace tarvo::desktop {

namespace {

/// What a screen reader says: what the control is called, and its state where the look tells one.
void Name(QWidget& widget, const view::Control& control, const QString& called, const QString& state = {}) {
  QString name = called.isEmpty() ? ToQt(control.Name()) : called;
  if (!state.isEmpty()) name += QStringLiteral(", ") + state;
  if (widget.accessibleName() != name) widget.setAccessibleName(name);
}

/// By the title of the place where it stands, and its own caption where that says more.
QString Called(const Title& title, const std::string& caption = {}) {
  QString called = title ? title() : QString();
  const QString own = ToQt(view::WithoutMnemonic(caption)).trimmed();
  if (called.endsWith(own)) return called;
  if (!called.isEmpty()) called += QLatin1Char(' ');
  return called + own;
}

/// A field that has no title is what its window is for.
QString CalledOr(const Title& title, const std::string& otherwise) {
  const QString called = Called(title);
  return called.isEmpty() ? ToQt(otherwise) : called;
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

QWidget* Faces::Make(view::Control& control, QWidget* parent, Setting setting, const Title& title) {
  switch (control.GetKind()) {
    case view::Kind::kLabel:
      return MakeLabel(static_cast<view::Label&>(control), parent, setting, title);
    case view::Kind::kButton:
      return MakeButton(static_cast<view::Button&>(control), parent, setting);
    case view::Kind::kCheckBox:
      return MakeCheckBox(static_cast<view::CheckBox&>(control), parent, title);
    case view::Kind::kOptionButton:
      return MakeOption(static_cast<view::OptionButton&>(control), parent, title);
    case view::Kind::kComboBox:
      return MakeComboBox(static_cast<view::ComboBox&>(control), parent, title);
    case view::Kind::kTextBox:
      return MakeTextBox(static_cast<view::TextBox&>(control), parent, title);
    case view::Kind::kImageBox:
      return MakeImageBox(static_cast<view::ImageBox&>(control), parent, title);
    case view::Kind::kLamp:
      return MakeLamp(static_cast<view::Lamp&>(control), parent, title);
    case view::Kind::kMeter:
      return MakeMeter(control, parent, title);
    case view::Kind::kClip:
      return MakeClip(static_cast<view::Clip&>(control), parent);
    case view::Kind::kPanel:
      return MakePanel(static_cast<view::Panel&>(control), parent);
    case view::Kind::kTimer:
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

QWidget* Faces::MakeLabel(view::Label& label, QWidget* parent, Setting setting, const Title& title) {
  if (label.TakesClick()) {
    auto* box = new ValueBox(parent);
    HandIn(label, box);
    Bind(label, box, [&label, box, title] {
      box->SetText(ToQt(label.Caption()));
      Name(*box, label, Called(title), box->Text());
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
  Bind(label, text, [&label, text, title] {
    text->SetText(ToQt(label.Caption()));
    const QString called = Called(title);
    // The text that names a row is not told twice.
    if (called.isEmpty() || called == text->Text()) {
      Name(*text, label, text->Text());
    } else {
      Name(*text, label, called, text->Text());
    }
  });
  return text;
}

PageLabel* Faces::MakePageLabel(view::Label& label, QWidget* parent, std::function<void()> onRefresh) {
  auto* entry = new PageLabel(parent);
  HandIn(label, entry);
  Bind(label, entry, [&label, entry, after = std::move(onRefresh)] {
    entry->SetText(ToQt(label.Caption()));
    entry->SetSelected(RoleOf(label.BackColor()) == Role::kSelected);
    Name(*entry, label, entry->Text(), entry->Selected() ? QStringLiteral("selected") : QString());
    after();
  });
  // The list closes up when a family of pages is hidden.
  QSizePolicy policy = entry->sizePolicy();
  policy.setRetainSizeWhenHidden(false);
  entry->setSizePolicy(policy);
  return entry;
}

TextLabel* Faces::MakePanel(view::Panel& panel, QWidget* parent) {
  auto* text = new TextLabel(parent);
  text->GiveWay();
  Bind(panel, text, [&panel, text] {
    text->SetText(ToQt(panel.Text()));
    text->setAccessibleName(ToQt(panel.Text().empty() ? panel.Name() : panel.Text()));
  });
  return text;
}

QWidget* Faces::MakeButton(view::Button& button, QWidget* parent, Setting setting) {
  auto* push = new PushButton(parent, [this, &button] { screen_.PressKey(&button, view::Key::kEnter); });
  if (setting == Setting::kAccent) push->Accent();
  QObject::connect(push, &QPushButton::clicked, push, [this, &button] { screen_.Click(button); });
  Bind(button, push, [&button, push] {
    push->setText(ToQt(button.Caption()));
    Name(*push, button, Called({}, button.Caption()));
  });
  return push;
}

QWidget* Faces::MakeCheckBox(view::CheckBox& box, QWidget* parent, const Title& title) {
  auto* mark = new CheckMark(parent);
  const auto click = [this, &box] {
    screen_.Click(box);
    Refresh(box);
  };
  QObject::connect(mark, &QCheckBox::clicked, mark, click);
  // Only assistive tools toggle the widget past its own click.
  QObject::connect(mark, &QCheckBox::toggled, mark, click);
  Bind(box, mark, [&box, mark, title] {
    mark->setText(ToQt(box.Caption()));
    mark->setChecked(box.Value() != 0);
    mark->SetRole(RoleOf(box.BackColor()));
    Name(*mark, box, Called(title, box.Caption()), OnOrOff(mark->isChecked()));
  });
  return mark;
}

QWidget* Faces::MakeOption(view::OptionButton& option, QWidget* parent, const Title& title) {
  auto* mark = new OptionMark(parent);
  const auto click = [this, &option] {
    screen_.Click(option);
    Refresh(option);
  };
  QObject::connect(mark, &QRadioButton::clicked, mark, click);
  QObject::connect(mark, &QRadioButton::toggled, mark, click);
  Bind(option, mark, [&option, mark, title] {
    mark->setText(ToQt(option.Caption()));
    mark->setChecked(option.Value());
    Name(*mark, option, Called(title, option.Caption()), OnOrOff(mark->isChecked()));
  });
  return mark;
}

QWidget* Faces::MakeComboBox(view::ComboBox& combo, QWidget* parent, const Title& title) {
  auto* list = new ListField(parent);
  QObject::connect(list, &QComboBox::activated, list, [this, &combo](int position) {
    screen_.Choose(combo, position);
    // The list has moved by itself; what holds is what the control says.
    Refresh(combo);
  });
  Bind(combo, list, [&combo, list, title] {
    QStringList texts;
    for (const std::string& text : combo.List()) texts << ToQt(text);
    QStringList shown;
    for (int i = 0; i < list->count(); ++i) shown << list->itemText(i);
    if (texts != shown) {
      list->clear();
      list->addItems(texts);
      list->updateGeometry();
    }
    if (list->currentIndex() != combo.ListIndex()) list->setCurrentIndex(combo.ListIndex());
    Name(*list, combo, Called(title), list->currentText());
  });
  return list;
}

QWidget* Faces::MakeTextBox(view::TextBox& field, QWidget* parent, const Title& title) {
  if (field.Locked) {
    auto* value = new TextLabel(parent, TextLabel::Look::kPlain);
    value->AlignNumbers();
    Bind(field, value, [&field, value, title] {
      value->SetText(ToQt(field.Text()));
      Name(*value, field, Called(title), value->Text());
    });
    return value;
  }
  auto* edit = new TextField(parent);
  edit->onKey = [this, &field](view::Key key) { screen_.PressKey(&field, key); };
  edit->onLeave = [this, &field] { screen_.Leave(field); };
  QObject::connect(edit, &QLineEdit::textEdited, edit, [this, &field](const QString& text) {
    screen_.Type(field, text.toStdString());
    Refresh(field);
  });
  Bind(field, edit, [&field, edit, title] {
    const QString text = ToQt(field.Text());
    if (edit->text() != text) {
      edit->setText(text);
      // The program has put something else there: the next key replaces it.
      if (edit->hasFocus()) edit->selectAll();
    }
    Name(*edit, field, CalledOr(title, field.GetWindow().Caption));
  });
  return edit;
}

QWidget* Faces::MakeImageBox(view::ImageBox& image, QWidget* parent, const Title& title) {
  if (image.GetAlbum() == view::ImageBox::Album::kGears) return MakeGears(image, parent);
  auto* mark = new Mark(parent, Mark::Size::kLarge);
  HandIn(image, mark);
  Bind(image, mark, [&image, mark, title] {
    constexpr int kLitPicture = 2;
    mark->SetRole(image.Picture() == kLitPicture ? Role::kGood : Role::kDark);
    Name(*mark, image, Called(title), OnOrOff(mark->Lit()));
  });
  return mark;
}

QWidget* Faces::MakeGears(view::ImageBox& image, QWidget* parent) {
  auto* gears = new GearGroup(parent);
  Bind(image, gears, [&image, gears] {
    gears->SetPhase(image.Picture());
    Name(*gears, image, QStringLiteral("Gears"));
  });
  return gears;
}

QWidget* Faces::MakeLamp(view::Lamp& lamp, QWidget* parent, const Title& title) {
  auto* mark = new Mark(parent, Mark::Size::kSmall);
  HandIn(lamp, mark);
  Bind(lamp, mark, [&lamp, mark, title] {
    mark->SetCaption(ToQt(view::WithoutMnemonic(lamp.Caption())));
    mark->SetRole(RoleOf(lamp.BackColor()));
    Name(*mark, lamp, Called(title, lamp.Caption()), OnOrOff(mark->Lit()));
  });
  return mark;
}

QWidget* Faces::MakeMeter(view::Control& control, QWidget* parent, const Title& title) {
  auto& meter = static_cast<view::ARMetor&>(control);
  auto* bar = new MeterBar(parent);
  Bind(meter, bar, [&meter, bar, title] {
    bar->SetShare(static_cast<double>(meter.ShapeWidth(1.0F)));
    const Role role = RoleOf(meter.FillColor());
    bar->SetRole(role == Role::kDark ? Role::kBar : role);
    Name(*bar, meter, Called(title), Percent(meter));
  });
  return bar;
}

QWidget* Faces::MakeClip(view::Clip& clip, QWidget* parent) {
  auto* gear = new Gear(parent);
  Bind(clip, gear, [&clip, gear] {
    gear->SetTurning(clip.Playing());
    Name(*gear, clip, QStringLiteral("Activity"), OnOrOff(clip.Playing()));
  });
  return gear;
}

}  // namespace tarvo::desktop
