#include "platform/system_files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <filesystem>
#include <string_view>

#include "platform/file_descriptor.h"

namespace tarvo::platform {

namespace {

namespace fs = std::filesystem;

constexpr std::size_t kLongestFile = std::size_t{1} << 20;

const char* DescriptionOf(int error, const std::string& path) {
  switch (error) {
    case ENOENT: {
      std::error_code ignored;
      const fs::path folder = fs::path(path).parent_path();
      return folder.empty() || fs::is_directory(folder, ignored) ? core::kFileNotFound : core::kPathNotFound;
    }
    case ENOTDIR:
      return core::kPathNotFound;
    case EACCES:
    case EPERM:
    case EROFS:
    case EISDIR:
      return core::kPermissionDenied;
    default:
      return core::kDeviceUnavailable;
  }
}

core::Status Failed(int error, const std::string& path) {
  return core::Status::Failed(core::Fault(DescriptionOf(error, path), error, path));
}

/// 0 for a plain file, else what speaks against reading or writing it.
int WhyNoPlainFile(const FileDescriptor& file) {
  struct stat status{};
  if (fstat(file.Get(), &status) != 0) return errno;
  if (S_ISDIR(status.st_mode)) return EISDIR;
  return S_ISREG(status.st_mode) ? 0 : ENODEV;
}

}  // namespace

core::Status SystemFiles::Read(const std::string& path, std::string& content) {
  // Not blocking, since a pipe or a device may stand there.
  const FileDescriptor file(open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
  if (!file.Valid()) return Failed(errno, path);
  if (const int error = WhyNoPlainFile(file)) return Failed(error, path);
  std::string read;
  std::array<char, 4096> block{};
  while (true) {
    const ssize_t count = ::read(file.Get(), block.data(), block.size());
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return Failed(errno, path);
    if (count == 0) break;
    read.append(block.data(), static_cast<std::size_t>(count));
    if (read.size() > kLongestFile) return Failed(EFBIG, path);
  }
  content = std::move(read);
  return core::Status::Good();
}

core::Status SystemFiles::Write(const std::string& path, const std::string& content) {
  constexpr mode_t kForAll = 0666;
  const FileDescriptor file(open(path.c_str(), O_WRONLY | O_CREAT | O_NONBLOCK | O_NOCTTY | O_CLOEXEC, kForAll));
  if (!file.Valid()) return Failed(errno, path);
  if (const int error = WhyNoPlainFile(file)) return Failed(error, path);
  if (ftruncate(file.Get(), 0) != 0) return Failed(errno, path);
  std::string_view rest = content;
  while (!rest.empty()) {
    const ssize_t count = ::write(file.Get(), rest.data(), rest.size());
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return Failed(errno, path);
    rest.remove_prefix(static_cast<std::size_t>(count));
  }
  return core::Status::Good();
}

}  // namespace tarvo::platform
