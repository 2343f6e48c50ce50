#include "desktop/dialogs.h"

#include <QCloseEvent>
#include <QDialog>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QMessageBox>
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
  std::size_t place = 0;
  for (const std::string& caption : box.buttons) {
    const auto answer = [&screen, caption, id = modal.Id()] {
      if (InFront(screen, id)) screen.Answer(caption);
    };
    auto* button = new PushButton(dialog, answer);
    button->setObjectName(ToQt(caption));
    button->setText(ToQt(caption));
    QObject::connect(button, &QPushButton::clicked, button, answer);
    buttons->addWidget(button);
    if (place++ == box.defaultButton) button->setFocus();
  }
  layout->addLayout(buttons);
  dialog->setAccessibleDescription(ToQt(box.text));
  return dialog;
}

/// Why nothing can be saved under `path`; empty when it can.
QString WhyNoSave(const QString& path) {
  const QFileInfo file(path);
  if (!file.dir().exists()) return QStringLiteral("There is no folder %1.").arg(file.path());
  const bool closed = file.exists() ? !file.isWritable() : !QFileInfo(file.path()).isWritable();
  return closed ? QStringLiteral("%1 may not be written.").arg(path) : QString();
}

QDialog* MakeFileDialog(view::Screen& screen, const view::Modal& modal, const view::FileDialog& file, QWidget* parent) {
  auto* dialog = new QFileDialog(parent);
  dialog->setObjectName(file.save ? QStringLiteral("SaveFile") : QStringLiteral("OpenFile"));
  // The desktop's own, where there is a desktop.
  dialog->setOption(QFileDialog::DontUseNativeDialog, QGuiApplication::platformName() == QLatin1String("offscreen"));
  dialog->setAcceptMode(file.save ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
  dialog->setFileMode(file.save ? QFileDialog::AnyFile : QFileDialog::ExistingFile);
  dialog->setNameFilter(NameFilters(file.filter));
  if (file.save) dialog->setDefaultSuffix(QStringLiteral("txt"));
  const auto answer = [&screen, id = modal.Id()](const QString& path) {
    if (InFront(screen, id)) screen.Answer(path.toStdString());
  };
  QObject::connect(dialog, &QFileDialog::fileSelected, dialog, [dialog, answer, save = file.save](const QString& path) {
    const QString why = save ? WhyNoSave(path) : QString();
    if (why.isEmpty()) return answer(path);
    // An error later would shut the files of this run.
    auto* box = new QMessageBox(QMessageBox::Warning, QStringLiteral("Tarvo"), why, QMessageBox::Ok, dialog);
    box->setAttribute(Qt::WA_DeleteOnClose);
    QObject::connect(box, &QMessageBox::finished, dialog, &QDialog::show);
    box->open();
  });
  QObject::connect(dialog, &QFileDialog::rejected, dialog, [answer] { answer(QStringLiteral("Cancel")); });
  return dialog;
}

/// The first control of that kind that can be used; null when there is none.
QWidget* FirstOf(view::Kind kind, const view::Node& arrangement, const Faces& faces) {
  const std::vector<view::Control*> controls = view::ReadingOrder(arrangement);
  const auto found = std::find_if(controls.begin(), controls.end(), [&](const view::Control* control) {
    return control->GetKind() == kind && control->Enabled() && control->Visible();
  });
  return found == controls.end() ? nullptr : faces.Find(**found);
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
  // The text of a field is selected since it was put there.
  for (const view::Kind kind : {view::Kind::kButton, view::Kind::kTextBox}) {
    if (QWidget* first = FirstOf(kind, arrangement, faces)) first->setFocus();
  }
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
