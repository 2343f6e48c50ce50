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

/// What the user reads of an error of `ReadFile`.
std::string ReasonOf(int error) {
  switch (error) {
    case EISDIR:
      return "it is a folder";
    case ENXIO:
      return "it is not a file";
    case EFBIG:
      return "it is larger than 1 MiB";
    case EILSEQ:
      return "it is damaged (not a text)";
    default:
      return std::generic_category().message(error);
  }
}

/// 0 for a regular file, or the system's error number.
int RefuseOther(const FileDescriptor& file) {
  if (!file.Valid()) return errno;
  struct stat status{};
  if (fstat(file.Get(), &status) != 0) return errno;
  if (S_ISDIR(status.st_mode)) return EISDIR;
  return S_ISREG(status.st_mode) ? 0 : ENXIO;
}

/// Reads the file at `path` into `text`; 0, or the system's error number: ENXIO for what is no file, EFBIG for one too
/// large, EILSEQ for one that no text editor wrote.
int ReadFile(const fs::path& path, std::string& text) {
  // Not blocking, since a pipe or a device may stand where the file should be.
  const FileDescriptor file(open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
  if (const int error = RefuseOther(file)) return error;
  std::string read;
  std::array<char, 4096> block{};
  while (true) {
    const ssize_t count = ::read(file.Get(), block.data(), block.size());
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return errno;
    if (count == 0) break;
    read.append(block.data(), static_cast<std::size_t>(count));
    if (read.size() > kLongestFile) return EFBIG;
  }
  if (!IsSettingsText(read)) return EILSEQ;
  text = std::move(read);
  return 0;
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

/// Puts a new file in the place of the one at `path`; 0, or the system's error number.
int ReplaceFile(const fs::path& path, std::string_view text) {
  // A new file could take the place of one that must not be written: that asks the folder's rights only.
  if (faccessat(AT_FDCWD, path.c_str(), W_OK, AT_EACCESS) != 0) return errno;
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
  Read();
  if (readError_ == 0 || readError_ == kMissing) return core::Status::Good();
  return core::Status::Failed(
      core::Fault("The settings file " + path_.string() + " cannot be read: " + ReasonOf(readError_) + "."));
}

std::optional<std::string> SettingsFile::Value(std::string_view name) const {
  const auto value = FindSetting(text_, name);
  return value ? std::optional<std::string>(*value) : std::nullopt;
}

int SettingsFile::Open() {
  Read();
  const bool damaged = readError_ == EILSEQ || readError_ == EFBIG;
  return damaged ? 0 : readError_;
}

int SettingsFile::Retrieve(std::string_view name, std::optional<std::string>& text) {
  if (readError_ == 0) text = Value(name);
  return readError_;
}

int SettingsFile::Create() {
  if (path_.has_parent_path()) {
    std::error_code error;
    fs::create_directories(path_.parent_path(), error);
    if (error) return error.value();
  }
  // Not truncated: another instance may just have made it.
  const FileDescriptor file(open(path_.c_str(), O_RDONLY | O_CREAT | O_NONBLOCK | O_NOCTTY | O_CLOEXEC, 0666));
  return RefuseOther(file);
}

int SettingsFile::Set(std::string_view name, std::string_view text) {
  // Another instance may have written meanwhile.
  Read();
  if (readError_ != 0) return readError_;
  std::string changed = WithSetting(text_, name, text);
  std::error_code error;
  // Behind a link the file that it leads to is replaced, not the link.
  const fs::path target = fs::canonical(path_, error);
  if (error) return error.value();
  if (const int failed = ReplaceFile(target, changed)) return failed;
  text_ = std::move(changed);
  return 0;
}

void SettingsFile::Read() {
  text_.clear();
  readError_ = ReadFile(path_, text_);
}

}  // namespace tarvo::platform
