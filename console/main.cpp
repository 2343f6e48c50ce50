#include <langinfo.h>
#include <sys/stat.h>
#include <unistd.h>

#include <clocale>
#include <cstring>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <span>
#include <string>
#include <string_view>
#include <system_error>

#include "console/console.h"
#include "console/options.h"
#include "platform/com_ports.h"
#include "platform/help_viewer.h"
#include "platform/poll_loop.h"
#include "platform/settings_file.h"
#include "platform/system_files.h"
#include "platform/typed_input.h"
#include "shell/program.h"

namespace tarvo::console {
namespace {

constexpr int kWrongUsage = 2;

int Refuse(const std::string& reason) {
  std::cerr << "tarvo-console: " << reason << "\n";
  return kWrongUsage;
}

std::string ProgramFolder() {
  std::error_code fault;
  const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe", fault);
  return fault ? "." : program.parent_path().string();
}

bool LocaleIsUtf8() {
  std::setlocale(LC_CTYPE, "");
  return std::strcmp(nl_langinfo(CODESET), "UTF-8") == 0;
}

/// Nobody types into a file: it is read line by line, as a script is.
bool StandardInputIsFile() {
  struct stat status = {};
  return fstat(STDIN_FILENO, &status) == 0 && S_ISREG(status.st_mode);
}

int Main(std::span<const char* const> arguments) {
  const Options options = ParseOptions(arguments);
  if (!options.error.empty()) return Refuse(options.error + " (usage: " + std::string(kUsage) + ")");
  if (options.help) {
    std::cout << "usage: " << kUsage
              << "\nReads commands from SCRIPT or standard input; the command \"help\" lists them.\n";
    return 0;
  }
  std::ifstream script;
  if (options.script) {
    script.open(*options.script);
    // A folder opens and then gives nothing.
    if (!script || std::filesystem::is_directory(*options.script)) return Refuse("cannot read " + *options.script);
  }

  platform::PollLoop loop;
  platform::SettingsFile settings(options.settings ? std::filesystem::path(*options.settings)
                                                   : platform::SettingsFile::DefaultPath());
  if (const core::Status loaded = settings.Load(); !loaded.Ok()) {
    std::cerr << "tarvo-console: " << loaded.Description() << "\n";
  }
  platform::ComPorts ports(loop, options.devices, settings);
  const std::string programFolder = ProgramFolder();
  platform::DesktopHelp help(loop, platform::DesktopHelp::ManualOf(programFolder));
  platform::SystemFiles files;
  shell::Program program({loop, ports, settings, help, files, programFolder});
  program.Start();

  Bench bench{program.GetScreen(),
              program.Windows(),
              program.State(),
              [&] { return program.Starting(); },
              [&] { return program.Ended(); },
              [&](const std::function<bool()>& done) { loop.RunUntil(done); },
              Drawing{.utf8 = options.json || LocaleIsUtf8()}};
  Console console(std::move(bench), options.json ? Style::kJson : Style::kPerson, std::cout);
  if (options.script) return console.RunScript(script, *options.script, std::cerr);
  if (StandardInputIsFile()) {
    console.RunFile(std::cin);
    return 0;
  }
  const bool someoneReads = !options.json && isatty(STDIN_FILENO) != 0 && isatty(STDOUT_FILENO) != 0;
  const platform::TypedInput input(
      loop, STDIN_FILENO, Console::kLongestLine, [&](std::string_view line) { console.Arrive(line); },
      [&] { console.EndInput(); });
  console.RunTyped(someoneReads ? "> " : "");
  return 0;
}

}  // namespace
}  // namespace tarvo::console

int main(int count, char** values) {
  try {
    return tarvo::console::Main(
        std::span<const char* const>(values, static_cast<std::size_t>(count)).subspan(count > 0 ? 1 : 0));
  } catch (const std::exception& fault) {
    std::cerr << "tarvo-console: " << fault.what() << "\n";
    return 1;
  }
}
