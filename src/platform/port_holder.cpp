#include "platform/port_holder.h"

#include <sys/stat.h>
#include <sys/sysmacros.h>

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>
#include <sstream>
#include <string_view>
#include <system_error>

namespace tarvo::platform {

namespace {

namespace fs = std::filesystem;

/// 0 when `text` is no process number.
pid_t ProcessOf(std::string_view text) {
  pid_t process = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), process);
  return error == std::errc() && end == text.data() + text.size() && process > 0 ? process : 0;
}

/// How many descriptors of the process in `folder` lead to `device`.
int CountOf(dev_t device, const fs::path& folder) {
  int count = 0;
  std::error_code error;
  fs::directory_iterator entry(folder / "fd", error);
  // Processes and descriptors come and go meanwhile: whatever cannot be read is not there.
  for (; !error && entry != fs::directory_iterator(); entry.increment(error)) {
    // Only devices are looked at: to look behind a file of a dead network drive could take for ever.
    std::error_code gone;
    if (!fs::read_symlink(entry->path(), gone).string().starts_with("/dev/")) continue;
    struct stat status{};
    if (stat(entry->path().c_str(), &status) == 0 && S_ISCHR(status.st_mode) && status.st_rdev == device) ++count;
  }
  return count;
}

/// Shows each process that has `device` open, with the number of its descriptors, until `show` says that it is enough.
void ForEachHolder(dev_t device, const std::function<bool(pid_t, int)>& show) {
  std::error_code error;
  fs::directory_iterator entry("/proc", error);
  for (; !error && entry != fs::directory_iterator(); entry.increment(error)) {
    const pid_t process = ProcessOf(entry->path().filename().string());
    if (process == 0) continue;
    const int count = CountOf(device, entry->path());
    if (count > 0 && show(process, count)) return;
  }
}

/// The process that holds a lock of a whole file; 0 when none is told.
pid_t LockerOf(const struct stat& file) {
  char place[64];
  std::snprintf(place, sizeof place, "%02x:%02x:%ju", major(file.st_dev), minor(file.st_dev),
                static_cast<std::uintmax_t>(file.st_ino));
  std::ifstream locks("/proc/locks");
  for (std::string line; std::getline(locks, line);) {
    std::istringstream words(line);
    std::string number;
    std::string kind;
    std::string manner;
    std::string access;
    std::string process;
    std::string locked;
    words >> number >> kind >> manner >> access >> process >> locked;
    // Those that only wait for a lock stand with an arrow for their kind.
    if (kind == "FLOCK" && locked == place) return ProcessOf(process);
  }
  return 0;
}

std::string NameOf(pid_t process) {
  std::string name;
  std::getline(std::ifstream("/proc/" + std::to_string(process) + "/comm"), name);
  // A process gives itself any name that it likes.
  std::replace_if(name.begin(), name.end(), [](char c) { return c < ' ' || c > '~'; }, '?');
  return name;
}

}  // namespace

bool HeldByAnother(int descriptor) {
  struct stat status{};
  if (fstat(descriptor, &status) != 0) return false;
  int count = 0;
  ForEachHolder(status.st_rdev, [&](pid_t, int more) {
    count += more;
    return count > 1;
  });
  return count > 1;
}

std::optional<PortHolder> FindHolder(const std::string& device) {
  struct stat status{};
  if (stat(device.c_str(), &status) != 0) return std::nullopt;
  pid_t holder = LockerOf(status);
  if (holder == 0) {
    ForEachHolder(status.st_rdev, [&](pid_t process, int) {
      holder = process;
      return true;
    });
  }
  if (holder == 0) return std::nullopt;
  return PortHolder{holder, NameOf(holder)};
}

}  // namespace tarvo::platform
