#pragma once

/// `TARVO_ADDRESS_SANITIZER`: 1 in a build under the address sanitizer.
#if defined(__SANITIZE_ADDRESS__)
#define TARVO_ADDRESS_SANITIZER 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define TARVO_ADDRESS_SANITIZER 1
#endif
#endif

#ifndef TARVO_ADDRESS_SANITIZER
#define TARVO_ADDRESS_SANITIZER 0
#endif
