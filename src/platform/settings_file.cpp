#include "platform/settings_file.h"

#include <fcntl.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <system_error>
#include <utility>

#include "platform/file_descriptor.h"
#include "platform/settings_text.h"

namespace tarvo::platform {

namespace {

namespace fs = std::filesystem;

constexpr std::size_t kLongestFile = std::size_t{1} << 20;

core::Status Unreadable(const fs::path& path, const std::string& reason) {
  return core::Status::Failed(core::Fault("The settings file " + path.string() + " cannot be read: " + reason + "."));
}

core::Status Unwritable(const fs::path& path, const std::string& reason) {
  return core::Status::Failed(
      core::Fault("The settings file " + path.string() + " cannot be written: " + reason + "."));
}

std::string TextOfError(int error) {
  return std::generic_category().message(error);
}

/// Reads the file at `path` into `text`; a missing one is empty.
core::Status ReadFile(const fs::path& path, std::string& text) {
  // Not blocking, since a pipe or a device may stand where the file should be.
  const FileDescriptor file(open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
  if (!file.Valid()) return errno == ENOENT ? core::Status::Good() : Unreadable(path, TextOfError(errno));
  struct stat status{};
  if (fstat(file.Get(), &status) != 0) return Unreadable(path, TextOfError(errno));
  if (S_ISDIR(status.st_mode)) return Unreadable(path, "it is a folder");
  if (!S_ISREG(status.st_mode)) return Unreadable(path, "it is not a file");
  std::string read;
  std::array<char, 4096> block{};
  while (true) {
    const ssize_t count = ::read(file.Get(), block.data(), block.size());
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return Unreadable(path, TextOfError(errno));
    if (count == 0) break;
    read.append(block.data(), static_cast<std::size_t>(count));
    if (read.size() > kLongestFile) return Unreadable(path, "it is larger than 1 MiB");
  }
  if (!IsSettingsText(read)) return Unreadable(path, "it is damaged (not a text)");
  text = std::move(read);
  return core::Status::Good();
}

/// 0, or the system's error number.
int WriteAll(int descriptor, std::string_view text) {
  while (!text.empty()) {
    const ssize_t count = write(descriptor, text.data(), text.size());
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return errno;
    text.remove_prefix(static_cast<std::size_t>(count));
  }
  return fsync(descriptor) == 0 ? 0 : errno;
}

/// Writes a new file beside `path` and puts it in its place; 0, or the system's error number.
int ReplaceFile(const fs::path& path, std::string_view text) {
  std::string temporary = (path.parent_path() / ".Tarvo.conf.XXXXXX").string();
  const FileDescriptor file(mkostemp(temporary.data(), O_CLOEXEC));
  if (!file.Valid()) return errno;
  int error = WriteAll(file.Get(), text);
  struct stat old{};
  if (error == 0 && stat(path.c_str(), &old) == 0 && fchmod(file.Get(), old.st_mode & 07777) != 0) error = errno;
  if (error == 0 && std::rename(temporary.c_str(), path.c_str()) != 0) error = errno;
  if (error != 0) {
    unlink(temporary.c_str());
    return error;
  }
  // Without this a power cut could still bring the old file back.
  const FileDescriptor folder(open(path.parent_path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (folder.Valid()) fsync(folder.Get());
  return 0;
}

/// The user's configuration folder; empty when there is none.
fs::path ConfigurationFolder() {
  if (const char* folder = getenv("XDG_CONFIG_HOME"); folder != nullptr && fs::path(folder).is_absolute())
    return folder;
  const char* home = getenv("HOME");
  if (home == nullptr || *home == '\0') {
    const passwd* user = getpwuid(getuid());
    home = user == nullptr ? nullptr : user->pw_dir;
  }
  return home == nullptr || *home == '\0' ? fs::path() : fs::path(home) / ".config";
}

}  // namespace

SettingsFile::SettingsFile(fs::path path) : path_(std::move(path)) {}

fs::path SettingsFile::DefaultPath() {
  const fs::path folder = ConfigurationFolder();
  return folder.empty() ? folder : folder / "Tarvo" / "Tarvo.conf";
}

core::Status SettingsFile::Load() {
  text_.clear();
  return path_.empty() ? core::Status::Good() : ReadFile(path_, text_);
}

std::optional<std::string> SettingsFile::Value(std::string_view name) const {
  const auto value = FindSetting(text_, name);
  return value ? std::optional<std::string>(*value) : std::nullopt;
}

core::Status SettingsFile::Store(std::string_view name, std::string_view value) {
  if (path_.empty()) return Unwritable(path_, "this user has no home folder");
  // Another instance may have written meanwhile.
  if (core::Status loaded = Load(); !loaded.Ok()) return loaded;
  std::error_code error;
  // Behind a link the file that it leads to is replaced, not the link.
  fs::path target = fs::weakly_canonical(path_, error);
  if (error) target = path_;
  fs::create_directories(target.parent_path(), error);
  if (error) return Unwritable(path_, error.message());
  std::string text = WithSetting(text_, name, value);
  if (const int failed = ReplaceFile(target, text)) return Unwritable(path_, TextOfError(failed));
  text_ = std::move(text);
  return core::Status::Good();
}

}  // namespace tarvo::platform
