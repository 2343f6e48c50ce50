#include "platform/port_holder.h"

#include <sys/stat.h>
#include <sys/types.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <system_error>

namespace tarvo::platform {

namespace {

namespace fs = std::filesystem;

bool IsNumber(const std::string& text) {
  return !text.empty() && std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
}

/// How many descriptors of the process in `process` lead to `device`.
int CountOf(dev_t device, const fs::path& process) {
  int count = 0;
  std::error_code error;
  fs::directory_iterator entry(process / "fd", error);
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

}  // namespace

bool HeldByAnother(int descriptor) {
  struct stat status{};
  if (fstat(descriptor, &status) != 0) return false;
  int count = 0;
  std::error_code error;
  fs::directory_iterator process("/proc", error);
  for (; !error && process != fs::directory_iterator(); process.increment(error)) {
    if (IsNumber(process->path().filename().string())) count += CountOf(status.st_rdev, process->path());
  }
  return count > 1;
}

}  // namespace tarvo::platform
