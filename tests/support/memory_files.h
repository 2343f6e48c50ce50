#pragma once

#include <map>
#include <optional>
#include <string>

#include "config/text_files.h"

namespace tarvo::test {

/// Files by path in memory.
class MemoryFiles final : public config::TextFiles {
 public:
  /// What the file at `path` holds.
  std::string& operator[](const std::string& path) { return files_[path]; }
  bool Exists(const std::string& path) const { return files_.contains(path); }
  std::size_t Count() const { return files_.size(); }
  /// What stands at `path`; nothing when there is no such file.
  std::optional<std::string> Content(const std::string& path) const {
    const auto found = files_.find(path);
    return found == files_.end() ? std::nullopt : std::optional(found->second);
  }
  /// Attempts, those that failed included.
  int Reads() const { return reads_; }
  int Writes() const { return writes_; }

  /// The fault of each read or write from now on; nothing ends it.
  std::optional<core::Fault> ReadFault;
  std::optional<core::Fault> WriteFault;

  core::Status Read(const std::string& path, std::string& content) override {
    ++reads_;
    if (ReadFault) return core::Status::Failed(*ReadFault);
    const auto found = files_.find(path);
    if (found == files_.end()) return core::Status::Failed(core::Fault(core::kFileNotFound));
    content = found->second;
    return core::Status::Good();
  }
  core::Status Write(const std::string& path, const std::string& content) override {
    ++writes_;
    if (WriteFault) return core::Status::Failed(*WriteFault);
    files_[path] = content;
    return core::Status::Good();
  }

 private:
  std::map<std::string, std::string> files_;
  int reads_ = 0;
  int writes_ = 0;
};

}  // namespace tarvo::test
