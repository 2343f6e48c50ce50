#include <QAbstractEventDispatcher>
#include <QApplication>
#include <QDialog>
#include <QPainter>
#include <QTimer>
#include <cstring>
#include <exception>
#include <filesystem>
#include <functional>
#include <initializer_list>
#include <iostream>
#include <string>

#include "desktop/colours.h"
#include "desktop/front.h"
#include "desktop/options.h"
#include "desktop/qt_scheduler.h"
#include "desktop/style.h"
#include "desktop/widgets/gear.h"
#include "platform/com_ports.h"
#include "platform/help_viewer.h"
#include "platform/settings_file.h"
#include "platform/system_files.h"
#include "shell/program.h"
#include "view/window.h"

namespace tarvo::desktop {
namespace {

constexpr int kWrongUsage = 2;

/// The window as it is now, with what stands in front of it.
bool SaveScreenshot(const Front& front, const QString& path) {
  if (front.Window() == nullptr) return false;
  for (QWidget* widget : front.Window()->findChildren<QWidget*>()) {
    if (auto* gear = dynamic_cast<Gear*>(widget)) gear->Rewind();
  }
  QPixmap picture = front.Window()->grab();
  if (QDialog* dialog = front.FrontDialog()) {
    const QPixmap over = dialog->grab();
    const QSizeF free = (picture.deviceIndependentSize() - over.deviceIndependentSize()) / 2;
    const QPointF place(free.width(), free.height());
    QPainter painter(&picture);
    painter.drawPixmap(place, over);
    // The edge that the desktop would draw around it.
    painter.setPen(LineTone(dialog->palette()));
    painter.drawRect(QRectF(place, over.deviceIndependentSize()));
  }
  return picture.save(path);
}

view::GestureResult ClickByName(shell::Program& program, const std::string& name) {
  view::Screen& screen = program.GetScreen();
  for (const view::Window* window : std::initializer_list<view::Window*>{screen.FrontWindow(), screen.Main()}) {
    view::Control* control = window == nullptr ? nullptr : window->Find(name);
    if (control != nullptr) return screen.Click(*control);
  }
  view::GestureResult none;
  none.refusal = "there is no control of that name";
  return none;
}

/// True while a click would come too early: the program starts, or works on a module.
bool Busy(shell::Program& program) {
  const view::Screen& screen = program.GetScreen();
  const view::Modal* front = screen.Front();
  // A box of the start-up stands there until somebody answers it.
  if (front != nullptr && front->AsMessageBox() != nullptr) return false;
  return program.Starting() || (front == nullptr && screen.Working());
}

/// Clicks one control after the other, each when the program has done what the one before asked for; then calls `done`.
void ClickInTurn(shell::Program& program, QStringList names, const std::function<void()>& done) {
  if (!Busy(program)) {
    if (names.isEmpty()) return done();
    const std::string name = names.takeFirst().toStdString();
    const std::string refusal = ClickByName(program, name).refusal;
    if (!refusal.empty()) std::cerr << "tarvo: click " << name << ": " << refusal << "\n";
  }
  constexpr int kLookAgain = 20;
  QTimer::singleShot(kLookAgain, QCoreApplication::instance(),
                     [&program, names, done] { ClickInTurn(program, names, done); });
}

/// Saves a picture a while later, and ends.
void TakeScreenshot(const Front& front, const Options& options) {
  if (options.screenshot.isEmpty()) return;
  QTimer::singleShot(options.after, QCoreApplication::instance(), [&front, &options] {
    const bool saved = SaveScreenshot(front, options.screenshot);
    if (!saved) std::cerr << "tarvo: cannot write " << options.screenshot.toStdString() << "\n";
    QCoreApplication::exit(saved ? 0 : 1);
  });
}

int Main(QApplication& application) {
  const Options options = ParseOptions(QApplication::arguments().mid(1));
  if (!options.error.isEmpty()) {
    std::cerr << "tarvo: " << options.error.toStdString() << "\n" << kUsage;
    return kWrongUsage;
  }
  if (options.palette == QLatin1String("light")) QApplication::setPalette(LightPalette());
  if (options.palette == QLatin1String("dark")) QApplication::setPalette(DarkPalette());

  QtScheduler scheduler;
  const std::filesystem::path given(options.settings.toStdString());
  platform::SettingsFile settings(given.empty() ? platform::SettingsFile::DefaultPath() : given);
  if (const core::Status loaded = settings.Load(); !loaded.Ok()) std::cerr << "tarvo: " << loaded.Description() << "\n";
  platform::ComPorts ports(scheduler, options.devices, settings);
  const std::string programFolder = QApplication::applicationDirPath().toStdString();
  platform::DesktopHelp help(scheduler, platform::DesktopHelp::ManualOf(programFolder));
  platform::SystemFiles files;
  shell::Program program({scheduler, ports, settings, help, files, programFolder});
  Front front(program.GetScreen(), [&program] { return program.Ended(); });

  // The program may end in any handler: looked at each time the loop has nothing left to do.
  QObject::connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::aboutToBlock, &application,
                   [&program] {
                     if (program.Ended()) QCoreApplication::exit(0);
                   });
  // A picture shows no moment of a blinking cursor.
  if (!options.screenshot.isEmpty()) QApplication::setCursorFlashTime(0);
  program.Start();
  ClickInTurn(program, options.clicks, [&front, &options] { TakeScreenshot(front, options); });
  return QApplication::exec();
}

}  // namespace
}  // namespace tarvo::desktop

int main(int count, char** values) {
  for (int i = 1; i < count; ++i) {
    if (std::strcmp(values[i], "--help") == 0) {
      std::cout << tarvo::desktop::kUsage;
      return 0;
    }
  }
  try {
    QApplication application(count, values);
    QApplication::setApplicationName(QStringLiteral("Tarvo"));
    QApplication::setStyle(new tarvo::desktop::Style);
    QApplication::setQuitOnLastWindowClosed(false);
    return tarvo::desktop::Main(application);
  } catch (const std::exception& fault) {
    std::cerr << "tarvo: " << fault.what() << "\n";
    return 1;
  }
}
