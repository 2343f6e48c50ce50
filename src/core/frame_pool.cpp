#include "core/frame_pool.h"

#include <array>
#include <new>

#include "core/sanitizer.h"

namespace tarvo::core {

namespace {

struct FreeFrame {
  FreeFrame* next;
};

constexpr std::size_t kStep = 64;
constexpr std::size_t kLargestPooled = 4096;

std::size_t g_inUse = 0;
std::array<FreeFrame*, kLargestPooled / kStep + 1> g_free{};

std::size_t SizeClass(std::size_t size) {
  return (size + kStep - 1) / kStep;
}

// Under the address sanitizer each frame comes fresh from the heap, so that a use after its end is seen.
constexpr bool kRecycle = TARVO_ADDRESS_SANITIZER == 0;

}  // namespace

void* FramePool::Take(std::size_t size) {
  ++g_inUse;
  if (kRecycle && size <= kLargestPooled) {
    const std::size_t sizeClass = SizeClass(size);
    if (FreeFrame* frame = g_free[sizeClass]) {
      g_free[sizeClass] = frame->next;
      return frame;
    }
    return ::operator new(sizeClass * kStep);
  }
  return ::operator new(size);
}

void FramePool::Give(void* frame, std::size_t size) noexcept {
  --g_inUse;
  if (kRecycle && size <= kLargestPooled) {
    auto* freeFrame = static_cast<FreeFrame*>(frame);
    freeFrame->next = g_free[SizeClass(size)];
    g_free[SizeClass(size)] = freeFrame;
    return;
  }
  ::operator delete(frame);
}

std::size_t FramePool::InUse() {
  return g_inUse;
}

}  // namespace tarvo::core
