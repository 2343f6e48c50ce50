#pragma once

#include <string>

#include "config/text_files.h"

namespace tarvo::platform {

/// The files of the system.
class SystemFiles : public config::TextFiles {
 public:
  /// Reads plain files only, of at most 1 MiB: whatever else stands there is "Device unavailable".
  core::Status Read(const std::string& path, std::string& content) override;
  core::Status Write(const std::string& path, const std::string& content) override;
};

}  // namespace tarvo::platform
