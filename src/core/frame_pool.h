#pragma once

#include <cstddef>

namespace tarvo::core {

/// Memory of coroutine frames, kept for reuse, so that a session that polls for hours allocates nothing.
class FramePool {
 public:
  static void* Take(std::size_t size);
  static void Give(void* frame, std::size_t size) noexcept;

  /// Frames in use now: 0 when every task has ended, which is what the tests look at.
  static std::size_t InUse();
};

}  // namespace tarvo::core
