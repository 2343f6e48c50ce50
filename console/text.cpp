#include "console/text.h"

#include <cstddef>
#include <cstdint>

namespace tarvo::console {

namespace {

constexpr char32_t kReplacement = 0xFFFD;

struct CodePoint {
  char32_t value = kReplacement;
  std::size_t length = 1;
};

/// The code point at the start of `text`; the replacement, of one byte, where none stands.
CodePoint First(std::string_view text) {
  const auto byteAt = [&](std::size_t i) { return static_cast<std::uint8_t>(text[i]); };
  const std::uint8_t lead = byteAt(0);
  if (lead < 0x80) return {lead, 1};
  const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
  if (lead < 0xC2 || lead > 0xF4 || text.size() < length) return {};
  char32_t value = lead & (0xFFU >> (length + 1));
  for (std::size_t i = 1; i < length; ++i) {
    if ((byteAt(i) & 0xC0) != 0x80) return {};
    value = value << 6 | (byteAt(i) & 0x3FU);
  }
  // Longer forms than needed, halves of pairs, and what lies beyond the last code point.
  constexpr char32_t kLeast[] = {0, 0, 0x80, 0x800, 0x10000};
  if (value < kLeast[length] || (value >= 0xD800 && value < 0xE000) || value > 0x10FFFF) return {};
  return {value, length};
}

}  // namespace

std::u32string Decode(std::string_view text) {
  std::u32string decoded;
  decoded.reserve(text.size());
  while (!text.empty()) {
    const CodePoint first = First(text);
    decoded += first.value;
    text.remove_prefix(first.length);
  }
  return decoded;
}

std::string Encode(std::u32string_view text) {
  std::string encoded;
  const auto put = [&](char32_t byte) { encoded += static_cast<char>(byte); };
  for (const char32_t point : text) {
    if (point < 0x80) {
      put(point);
    } else if (point < 0x800) {
      put(0xC0 | point >> 6);
      put(0x80 | (point & 0x3F));
    } else if (point < 0x10000) {
      put(0xE0 | point >> 12);
      put(0x80 | (point >> 6 & 0x3F));
      put(0x80 | (point & 0x3F));
    } else {
      put(0xF0 | point >> 18);
      put(0x80 | (point >> 12 & 0x3F));
      put(0x80 | (point >> 6 & 0x3F));
      put(0x80 | (point & 0x3F));
    }
  }
  return encoded;
}

std::u32string Printable(std::string_view text) {
  std::u32string printable = Decode(text);
  for (char32_t& point : printable) {
    if (point < 0x20 || (point >= 0x7F && point < 0xA0)) point = U' ';
  }
  return printable;
}

}  // namespace tarvo::console
