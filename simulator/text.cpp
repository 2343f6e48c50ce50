#include "simulator/text.h"

#include <charconv>
#include <system_error>

namespace tarvo::simulator {

std::string Quoted(std::string_view text) {
  return '\'' + std::string(text) + '\'';
}

std::string_view CutAt(std::string_view& rest, char separator) {
  const std::size_t at = rest.find(separator);
  const std::string_view head = rest.substr(0, at);
  rest = at == std::string_view::npos ? std::string_view() : rest.substr(at + 1);
  return head;
}

std::optional<unsigned> Number(std::string_view text, unsigned lowest, unsigned highest) {
  int base = 10;
  if (text.starts_with("0x") || text.starts_with("0X")) {
    base = 16;
    text.remove_prefix(2);
  }
  unsigned value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value, base);
  if (error != std::errc() || end != text.data() + text.size() || value < lowest || value > highest)
    return std::nullopt;
  return value;
}

}  // namespace tarvo::simulator
