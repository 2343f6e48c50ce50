#include "support/allocation_counter.h"

#include <cstdlib>
#include <new>

#if TARVO_COUNTS_ALLOCATIONS

namespace {

std::size_t g_allocations = 0;

void* CountedAllocation(std::size_t size) {
  ++g_allocations;
  void* memory = std::malloc(size == 0 ? 1 : size);
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}

}  // namespace

void* operator new(std::size_t size) {
  return CountedAllocation(size);
}

void* operator new[](std::size_t size) {
  return CountedAllocation(size);
}

void operator delete(void* memory) noexcept {
  std::free(memory);
}

void operator delete[](void* memory) noexcept {
  std::free(memory);
}

void operator delete(void* memory, std::size_t /*size*/) noexcept {
  std::free(memory);
}

void operator delete[](void* memory, std::size_t /*size*/) noexcept {
  std::free(memory);
}

std::size_t tarvo::test::Allocations() {
  return g_allocations;
}

#endif
