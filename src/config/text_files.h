#pragma once

#include <string>

#include "core/fault.h"

namespace tarvo::config {

/// The files of the system, read and written as a whole.
class TextFiles {
 public:
  virtual ~TextFiles() = default;

  /// Faults: "File not found", "Path not found", "Permission denied", "Device unavailable" (anything else).
  virtual core::Status Read(const std::string& path, std::string& content) = 0;
  /// Makes or empties the file, then writes it.
  virtual core::Status Write(const std::string& path, const std::string& content) = 0;
};

}  // namespace tarvo::config
