#include "bus/line_settings.h"

#include <array>
#include <charconv>

namespace tarvo::bus {

namespace {
constexpr std::array kBaudRates = {1200, 2400, 4800, 9600, 19200, 38400, 57600};
}

std::optional<LineSettings> LineSettings::Parse(std::string_view text) {
  LineSettings line;
  int baud = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), baud);
  if (error != std::errc()) return std::nullopt;
  for (const int known : kBaudRates) {
    if (known == baud) line.baud = baud;
  }
  if (line.baud != baud) return std::nullopt;
  const std::string_view rest(end, static_cast<std::size_t>(text.data() + text.size() - end));
  for (const Parity parity : {Parity::kNone, Parity::kEven, Parity::kOdd}) {
    const std::string expected = std::string(",") + static_cast<char>(parity) + ",8,1";
    if (rest == expected) {
      line.parity = parity;
      return line;
    }
  }
  return std::nullopt;
}

core::Duration LineSettings::TimeOf(double characters) const {
  const double seconds = characters * BitsPerCharacter() / baud;
  return std::chrono::duration_cast<core::Duration>(std::chrono::duration<double>(seconds));
}

}  // namespace tarvo::bus
