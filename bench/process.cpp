#include "bench/process.h"

#include <unistd.h>

#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string>

namespace tarvo::bench {

namespace {

std::string FileOf(pid_t process, const char* name) {
  std::ifstream file("/proc/" + std::to_string(process) + "/" + name);
  std::ostringstream text;
  text << file.rdbuf();
  if (!file) throw std::runtime_error("a process that is measured has ended");
  return text.str();
}

}  // namespace

double ProcessorTimeOf(pid_t process) {
  const std::string text = FileOf(process, "stat");
  // The second field is the name, in brackets; it may hold anything, brackets too.
  std::istringstream fields(text.substr(text.rfind(')') + 1));
  constexpr int kFieldsBeforeTimes = 11;
  std::string skipped;
  for (int i = 0; i < kFieldsBeforeTimes; ++i) fields >> skipped;
  double user = 0;
  double system = 0;
  if (!(fields >> user >> system)) throw std::runtime_error("/proc tells no processor time");
  return (user + system) / static_cast<double>(sysconf(_SC_CLK_TCK));
}

double ResidentOf(pid_t process) {
  std::istringstream fields(FileOf(process, "statm"));
  double size = 0;
  double resident = 0;
  if (!(fields >> size >> resident)) throw std::runtime_error("/proc tells no memory");
  constexpr double kMegabyte = 1024.0 * 1024.0;
  return resident * static_cast<double>(sysconf(_SC_PAGESIZE)) / kMegabyte;
}

}  // namespace tarvo::bench
