#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "core/fault.h"
#include "shell/services.h"

namespace tarvo::platform {

/// The program's settings file, read as a whole and changed one value at a time. What cannot be read is not touched.
class SettingsFile : public shell::ValueStore {
 public:
  explicit SettingsFile(std::filesystem::path path = DefaultPath());

  /// `Tarvo/Tarvo.conf` in the user's configuration folder; empty, a file that is always missing, when the user has
  /// none.
  static std::filesystem::path DefaultPath();

  const std::filesystem::path& Path() const { return path_; }

  /// Reads the file anew. A file that is not there is an empty one. One that cannot be read leaves no settings; the
  /// fault's text is a whole sentence that names the file.
  core::Status Load();

  /// The value as the file was last read or written.
  std::optional<std::string> Value(std::string_view name) const;

  /// Reads the file anew. A damaged one can be opened; `Retrieve` and `Set` tell the damage: EILSEQ for a file that is
  /// no text, EFBIG for one that is too large.
  int Open() override;
  int Retrieve(std::string_view name, std::optional<std::string>& text) override;
  /// Makes its folder too, where needed.
  int Create() override;
  /// Changes the file as it is now. Either the whole new file is there afterwards or the old one; EACCES for a file or
  /// folder that may not be written.
  int Set(std::string_view name, std::string_view text) override;

 private:
  void Read();

  std::filesystem::path path_;
  std::string text_;
  int readError_ = kMissing;
};

}  // namespace tarvo::platform
