#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "core/fault.h"

namespace tarvo::platform {

/// The program's settings file, read as a whole and changed one value at a time.
class SettingsFile {
 public:
  explicit SettingsFile(std::filesystem::path path = DefaultPath());

  /// `Tarvo/Tarvo.conf` in the user's configuration folder; empty when the user has none.
  static std::filesystem::path DefaultPath();

  const std::filesystem::path& Path() const { return path_; }

  /// Reads the file anew. A file that is not there is an empty one. One that cannot be read leaves no settings; the
  /// fault's text is a whole sentence that names the file.
  core::Status Load();

  /// The value as of the last `Load` or `Store`.
  std::optional<std::string> Value(std::string_view name) const;

  /// Sets one value in the file as it is now; makes file and folder where needed. Either the whole new file is there
  /// afterwards or the old one. A file that cannot be read is not touched.
  core::Status Store(std::string_view name, std::string_view value);

 private:
  std::filesystem::path path_;
  std::string text_;
};

}  // namespace tarvo::platform
