#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "core/scheduler.h"

namespace tarvo::bus {

enum class Parity : char { kNone = 'n', kEven = 'e', kOdd = 'o' };

/// Speed and parity of a serial line; always 8 data bits and 1 stop bit.
struct LineSettings {
  int baud = 9600;  ///< 1200, 2400, 4800, 9600, 19200, 38400 or 57600
  Parity parity = Parity::kNone;

  /// From a text of the form "9600,n,8,1"; nothing for any other text or an unknown speed.
  static std::optional<LineSettings> Parse(std::string_view text);

  /// Start bit, 8 data bits, a parity bit if there is one, stop bit.
  int BitsPerCharacter() const { return parity == Parity::kNone ? 10 : 11; }
  /// How long `characters` characters take on this line.
  core::Duration TimeOf(double characters) const;

  friend bool operator==(const LineSettings&, const LineSettings&) = default;
};

}  // namespace tarvo::bus
