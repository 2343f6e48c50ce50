#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <span>
#include <string_view>

namespace tarvo::fuzz {

/// What the fuzzer made, taken from the front. At its end there are zeros without end.
class Input {
 public:
  Input(const std::uint8_t* data, std::size_t size) : rest_(data, size) {}

  bool Empty() const { return rest_.empty(); }
  std::uint8_t Byte() {
    const std::span<const std::uint8_t> one = Bytes(1);
    return one.empty() ? std::uint8_t{0} : one.front();
  }
  /// 0 to `limit` - 1; `limit` at most 256.
  int Below(int limit) { return Byte() % limit; }
  /// 0 to 65535.
  int Word() {
    const int high = Byte();
    return high << 8 | Byte();
  }
  /// As many as are there of `count`.
  std::span<const std::uint8_t> Bytes(std::size_t count) {
    const std::span<const std::uint8_t> taken = rest_.first(std::min(count, rest_.size()));
    rest_ = rest_.subspan(taken.size());
    return taken;
  }
  std::string_view Text(std::size_t count) {
    const std::span<const std::uint8_t> bytes = Bytes(count);
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
  }

 private:
  std::span<const std::uint8_t> rest_;
};

/// Ends the run as a find when a promise is broken.
inline void Check(bool kept, const char* promise) {
  if (kept) return;
  std::fprintf(stderr, "broken promise: %s\n", promise);
  std::abort();
}

}  // namespace tarvo::fuzz
