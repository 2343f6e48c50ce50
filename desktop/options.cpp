#include "desktop/options.h"

#include <QCommandLineOption>
#include <QCommandLineParser>

namespace tarvo::desktop {

Options ParseOptions(const QStringList& arguments) {
  QCommandLineParser parser;
  const QCommandLineOption settings(QStringLiteral("settings"), {}, QStringLiteral("file"));
  const QCommandLineOption click(QStringLiteral("click"), {}, QStringLiteral("name"));
  const QCommandLineOption screenshot(QStringLiteral("screenshot"), {}, QStringLiteral("file"));
  const QCommandLineOption after(QStringLiteral("after"), {}, QStringLiteral("milliseconds"));
  const QCommandLineOption palette(QStringLiteral("palette"), {}, QStringLiteral("name"));
  parser.addOptions({settings, click, screenshot, after, palette});
  Options options;
  const auto comName = [](std::size_t index) { return QStringLiteral("com%1").arg(index + 1); };
  for (std::size_t i = 0; i < options.devices.size(); ++i) {
    parser.addOption(QCommandLineOption(comName(i), {}, QStringLiteral("device")));
  }

  // The parser takes the first for the program's name.
  if (!parser.parse(QStringList(QStringLiteral("tarvo")) + arguments)) {
    options.error = parser.errorText();
    return options;
  }
  if (!parser.positionalArguments().isEmpty()) {
    options.error = QStringLiteral("nothing is known about \"%1\"").arg(parser.positionalArguments().first());
    return options;
  }
  options.settings = parser.value(settings);
  options.clicks = parser.values(click);
  options.screenshot = parser.value(screenshot);
  for (std::size_t i = 0; i < options.devices.size(); ++i) options.devices[i] = parser.value(comName(i)).toStdString();
  if (parser.isSet(after)) {
    bool number = false;
    options.after = parser.value(after).toInt(&number);
    if (!number || options.after < 0) options.error = QStringLiteral("--after needs a number of milliseconds");
  }
  options.palette = parser.value(palette);
  if (parser.isSet(palette) && options.palette != QLatin1String("light") && options.palette != QLatin1String("dark")) {
    options.error = QStringLiteral("--palette is light or dark");
  }
  return options;
}

}  // namespace tarvo::desktop
