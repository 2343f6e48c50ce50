#pragma once

#include <cstdint>

#include "state/word.h"

namespace tarvo::state {

// The shifts by which the modules' page joins and parts words. All treat bit 15 (bit 7 of a byte) as a sign that is
// moved by itself: what it becomes is not what a shift of that width would make of it, and that is meant.

inline constexpr unsigned kSignOfWord = 0x8000;

/// The upper half of a 32-bit total; bit 15 stays at bit 15.
constexpr std::int32_t ShiftLeft16(Word word) {
  const std::int32_t shifted = word.And(~kSignOfWord).Unsigned() * 0x10000;
  return word.Has(kSignOfWord) ? shifted | static_cast<std::int32_t>(kSignOfWord) : shifted;
}

/// Eight bits up; bit 15 stays at bit 15.
constexpr std::int32_t ShiftLeft8(Word word) {
  const std::int32_t shifted = word.And(~kSignOfWord).Unsigned() * 0x100;
  return word.Has(kSignOfWord) ? shifted | static_cast<std::int32_t>(kSignOfWord) : shifted;
}

/// Eight bits down: the high byte.
constexpr int ShiftRight8(Word word) {
  const int shifted = (word.Unsigned() >> 8) & 0x7F;
  return word.Has(kSignOfWord) ? shifted | 0x80 : shifted;
}

/// Four bits down, of a byte; bit 7 stays at bit 7.
constexpr int ShiftRight4(Word byte) {
  constexpr unsigned kSignOfByte = 0x80;
  const int shifted = (byte.Unsigned() >> 4) & 0x07;
  return byte.Has(kSignOfByte) ? shifted | 0x80 : shifted;
}

}  // namespace tarvo::state
