#include "desktop/dialogs.h"

#include <QCloseEvent>
#include <QDialog>
#include <QFileDialog>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QVBoxLayout>
#include <algorithm>

#include "desktop/faces.h"
#include "desktop/text.h"
#include "desktop/walker.h"
#include "desktop/widgets/box_icon.h"
#include "desktop/widgets/measure.h"
#include "desktop/widgets/native.h"
#include "view/window.h"

namespace tarvo::desktop {

namespace {

bool InFront(const view::Screen& screen, int id) {
  return screen.Front() != nullptr && screen.Front()->Id() == id;
}

/// Escape and the close box ask the screen, which decides.
class Dialog : public QDialog {
 public:
  Dialog(view::Screen& screen, const view::Modal& modal, QWidget* parent)
      : QDialog(parent), screen_(screen), id_(modal.Id()) {}

  void reject() override {
    if (InFront(screen_, id_)) screen_.PressKey(nullptr, view::Key::kEscape);
  }

 protected:
  void closeEvent(QCloseEvent* event) override {
    event->ignore();
    if (InFront(screen_, id_)) screen_.Close();
  }

  void keyPressEvent(QKeyEvent* event) override {
    // Enter belongs to the control that has the focus, never to another one by default.
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) return event->ignore();
    QDialog::keyPressEvent(event);
  }

 private:
  view::Screen& screen_;
  int id_;
};

QDialog* MakeMessageBox(view::Screen& screen, const view::Modal& modal, const view::MessageBox& box, QWidget* parent) {
  auto* dialog = new Dialog(screen, modal, parent);
  dialog->setObjectName(QStringLiteral("MsgBox"));
  dialog->setWindowTitle(ToQt(box.caption));
  auto* layout = new QVBoxLayout(dialog);
  layout->setSizeConstraint(QLayout::SetFixedSize);
  const int margin = Em(*dialog, 1.2);
  layout->setContentsMargins(margin, margin, margin, margin);
  layout->setSpacing(margin);

  auto* told = new QHBoxLayout;
  told->setSpacing(Em(*dialog, 1.0));
  if (box.icon != view::Icon::kNone) {
    told->addWidget(new BoxIcon(dialog, box.icon), 0, Qt::AlignTop);
  }
  auto* text = new QLabel(dialog);
  text->setObjectName(QStringLiteral("text"));
  text->setTextFormat(Qt::PlainText);
  text->setTextInteractionFlags(Qt::TextSelectableByMouse);
  text->setText(ToQt(box.text));
  const int widest = Em(*dialog, 30);
  if (text->sizeHint().width() > widest) {
    text->setWordWrap(true);
    text->setFixedWidth(widest);
  } else {
    text->setMinimumWidth(Em(*dialog, 12));
  }
  told->addWidget(text, 1, Qt::AlignVCenter);
  layout->addLayout(told);

  auto* buttons = new QHBoxLayout;
  buttons->setSpacing(Em(*dialog, 0.5));
  buttons->addStretch(1);
  bool first = true;
  for (const std::string& caption : box.buttons) {
    const auto answer = [&screen, caption, id = modal.Id()] {
      if (InFront(screen, id)) screen.Answer(caption);
    };
    auto* button = new PushButton(dialog, answer);
    button->setObjectName(ToQt(caption));
    button->setText(ToQt(caption));
    QObject::connect(button, &QPushButton::clicked, button, answer);
    buttons->addWidget(button);
    if (first) button->setFocus();
    first = false;
  }
  layout->addLayout(buttons);
  dialog->setAccessibleDescription(ToQt(box.text));
  return dialog;
}

QDialog* MakeFileDialog(view::Screen& screen, const view::Modal& modal, const view::FileDialog& file, QWidget* parent) {
  auto* dialog = new QFileDialog(parent);
  dialog->setObjectName(file.save ? QStringLiteral("SaveFile") : QStringLiteral("OpenFile"));
  dialog->setOption(QFileDialog::DontUseNativeDialog);
  dialog->setAcceptMode(file.save ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
  dialog->setFileMode(file.save ? QFileDialog::AnyFile : QFileDialog::ExistingFile);
  dialog->setNameFilter(NameFilters(file.filter));
  const auto answer = [&screen, id = modal.Id()](const QString& path) {
    if (InFront(screen, id)) screen.Answer(path.toStdString());
  };
  QObject::connect(dialog, &QFileDialog::fileSelected, dialog, answer);
  QObject::connect(dialog, &QFileDialog::rejected, dialog, [answer] { answer(QStringLiteral("Cancel")); });
  return dialog;
}

QDialog* MakeWindowDialog(view::Screen& screen, Faces& faces, const view::Modal& modal, view::Window& window,
                          QWidget* parent) {
  auto* dialog = new Dialog(screen, modal, parent);
  dialog->setObjectName(ToQt(window.Name()));
  dialog->setWindowTitle(ToQt(window.Caption));
  auto* layout = new QVBoxLayout(dialog);
  layout->setSizeConstraint(QLayout::SetFixedSize);
  const int margin = Em(*dialog, 1.0);
  layout->setContentsMargins(margin, margin, margin, margin);

  const view::Node arrangement = window.Arrangement();
  Walker walker(faces);
  QWidget* body = walker.Build(arrangement, dialog);
  body->setMinimumWidth(Em(*dialog, 16));
  layout->addWidget(body);
  walker.OrderTabs(arrangement);

  // A click on a button leaves the focus in the field: what the button refuses is typed anew at once.
  for (PushButton* button : dialog->findChildren<PushButton*>()) button->setFocusPolicy(Qt::TabFocus);
  const std::vector<view::Control*> controls = view::ReadingOrder(arrangement);
  const auto field = std::find_if(controls.begin(), controls.end(), [](const view::Control* control) {
    return control->GetKind() == view::Kind::kTextBox && control->Enabled() && control->Visible();
  });
  // Its text is selected since it was put there.
  if (field != controls.end()) faces.Find(**field)->setFocus();
  return dialog;
}

}  // namespace

QDialog* MakeDialog(view::Screen& screen, Faces& faces, const view::Modal& modal, QWidget* parent) {
  QDialog* dialog = nullptr;
  if (const view::MessageBox* box = modal.AsMessageBox()) {
    dialog = MakeMessageBox(screen, modal, *box, parent);
  } else if (const view::FileDialog* file = modal.AsFileDialog()) {
    dialog = MakeFileDialog(screen, modal, *file, parent);
  } else {
    dialog = MakeWindowDialog(screen, faces, modal, *modal.AsWindow(), parent);
  }
  dialog->setWindowModality(Qt::ApplicationModal);
  return dialog;
}

QString NameFilters(const std::string& filter) {
  const QStringList parts = ToQt(filter).split(QLatin1Char('|'));
  QStringList filters;
  for (qsizetype i = 0; i < parts.size(); i += 2) {
    QString description = parts[i].trimmed();
    const QString patterns = i + 1 < parts.size() ? parts[i + 1].trimmed() : QString();
    if (!patterns.isEmpty() && !description.endsWith(QLatin1Char(')'))) {
      description += QStringLiteral(" (%1)").arg(QString(patterns).replace(QLatin1Char(';'), QLatin1Char(' ')));
    }
    filters << description;
  }
  return filters.join(QStringLiteral(";;"));
}

}  // namespace tarvo::desktop
