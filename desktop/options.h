#pragma once

#include <QString>
#include <QStringList>
#include <array>
#include <string>

namespace tarvo::desktop {

/// What the command line asks for.
struct Options {
  QString settings;                    ///< empty for the user's own settings file
  std::array<std::string, 4> devices;  ///< behind COM1 to COM4, empty where not given
  QStringList clicks;                  ///< controls that are clicked in turn once the program has started
  QString screenshot;                  ///< empty for none
  int after = 1000;                    ///< milliseconds from the last click to the screenshot
  QString palette;                     ///< "light", "dark", empty for the desktop's
  QString error;                       ///< what is wrong with it, empty when nothing is
};

/// `arguments` without the program's name and the toolkit's own options.
Options ParseOptions(const QStringList& arguments);

inline constexpr char kUsage[] =
    "usage: tarvo [--settings FILE] [--com1 DEVICE] ... [--com4 DEVICE] [--palette light|dark]\n"
    "             [--click NAME]... [--screenshot FILE [--after MILLISECONDS]]\n"
    "  --settings FILE      the settings file, in place of the user's own\n"
    "  --comN DEVICE        the device behind COM1 to COM4\n"
    "  --palette light|dark the program's own colours, in place of the desktop's\n"
    "  --click NAME         clicks a control once the program has started, the next when it has done its work\n"
    "  --screenshot FILE    saves a picture of the window a while later, and ends\n";

}  // namespace tarvo::desktop
