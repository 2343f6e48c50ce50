#include <QAbstractEventDispatcher>
#include <QApplication>
#include <QDialog>
#include <QIcon>
#include <QPainter>
#include <QTimer>
#include <cstring>
#include <exception>
#include <filesystem>
#include <iostream>
#include <string>

#include "desktop/colours.h"
#include "desktop/front.h"
#include "desktop/options.h"
#include "desktop/qt_scheduler.h"
#include "desktop/style.h"
#include "platform/com_ports.h"
#include "platform/settings_file.h"
#include "shell/program.h"
#include "view/window.h"

namespace tarvo::desktop {
namespace {

constexpr int kWrongUsage = 2;

/// The window as it is now, with what stands in front of it.
bool SaveScreenshot(const Front& front, const QString& path) {
  if (front.Window() == nullptr) return false;
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

/// Clicks what the command line names, when the start-up has ended.
void ClickWhenStarted(shell::Program& program, const QStringList& names) {
  if (program.Starting()) {
    constexpr int kLookAgain = 20;
    QTimer::singleShot(kLookAgain, QCoreApplication::instance(),
                       [&program, &names] { ClickWhenStarted(program, names); });
    return;
  }
  for (const QString& name : names) {
    const view::Window* page = program.GetScreen().FrontWindow();
    view::Control* control = page == nullptr ? nullptr : page->Find(name.toStdString());
    std::string refusal = "there is no control of that name";
    if (control != nullptr) refusal = program.GetScreen().Click(*control).refusal;
    if (!refusal.empty()) std::cerr << "tarvo: click " << name.toStdString() << ": " << refusal << "\n";
  }
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
  shell::Program program({scheduler, ports, programFolder});
  Front front(program.GetScreen(), [&program] { return program.Ended(); });

  // The program may end in any handler: looked at each time the loop has nothing left to do.
  QObject::connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::aboutToBlock, &application,
                   [&program] {
                     if (program.Ended()) QCoreApplication::exit(0);
                   });
  if (!options.screenshot.isEmpty()) {
    QTimer::singleShot(options.after, &application, [&front, &options] {
      const bool saved = SaveScreenshot(front, options.screenshot);
      if (!saved) std::cerr << "tarvo: cannot write " << options.screenshot.toStdString() << "\n";
      QCoreApplication::exit(saved ? 0 : 1);
    });
  }
  program.Start();
  ClickWhenStarted(program, options.clicks);
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
    QApplication::setWindowIcon(QIcon(QStringLiteral(":/tarvo.svg")));
    QApplication::setQuitOnLastWindowClosed(false);
    return tarvo::desktop::Main(application);
  } catch (const std::exception& fault) {
    std::cerr << "tarvo: " << fault.what() << "\n";
    return 1;
  }
}
