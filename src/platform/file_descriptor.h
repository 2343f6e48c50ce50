#pragma once

#include <unistd.h>

#include <utility>

namespace tarvo::platform {

/// Owns a descriptor of the system and closes it at its end.
class FileDescriptor {
 public:
  FileDescriptor() = default;
  explicit FileDescriptor(int descriptor) : descriptor_(descriptor) {}
  FileDescriptor(FileDescriptor&& other) noexcept : descriptor_(std::exchange(other.descriptor_, -1)) {}
  FileDescriptor& operator=(FileDescriptor&& other) noexcept {
    std::swap(descriptor_, other.descriptor_);
    return *this;
  }
  ~FileDescriptor() {
    if (descriptor_ >= 0) close(descriptor_);
  }

  bool Valid() const { return descriptor_ >= 0; }
  int Get() const { return descriptor_; }

 private:
  int descriptor_ = -1;
};

}  // namespace tarvo::platform
