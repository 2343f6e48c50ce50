#pragma once

#include <cstddef>

#include "core/sanitizer.h"

/// 1 where a test program that links `allocation_counter.cpp` counts its allocations. The address sanitizer needs
/// operator new for itself, and frames are not kept for reuse under it.
#define TARVO_COUNTS_ALLOCATIONS (!TARVO_ADDRESS_SANITIZER)

namespace tarvo::test {

#if TARVO_COUNTS_ALLOCATIONS
/// Calls of operator new since the program began.
std::size_t Allocations();
#endif

}  // namespace tarvo::test
