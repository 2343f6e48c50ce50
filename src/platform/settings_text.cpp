#include "platform/settings_text.h"

#include <algorithm>
#include <stdexcept>

namespace tarvo::platform {

namespace {

/// What some editors put at the start of a UTF-8 text.
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
constexpr std::string_view kBlanks = " \t\r";

std::string_view Trimmed(std::string_view text) {
  const std::size_t first = text.find_first_not_of(kBlanks);
  if (first == std::string_view::npos) return text.substr(0, 0);
  return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

/// The value behind `name` if `line` (without its line feed) gives it.
std::optional<std::string_view> ValueIn(std::string_view line, std::string_view name) {
  if (Trimmed(line).starts_with('#')) return std::nullopt;
  const std::size_t equals = line.find('=');
  if (equals == std::string_view::npos || Trimmed(line.substr(0, equals)) != name) return std::nullopt;
  return Trimmed(line.substr(equals + 1));
}

bool FitsInLine(std::string_view text) {
  return IsSettingsText(text) && text.find('\n') == std::string_view::npos && Trimmed(text) == text;
}

}  // namespace

bool IsSettingsText(std::string_view text) {
  return std::none_of(text.begin(), text.end(), [](char c) {
    const bool control = static_cast<unsigned char>(c) < ' ' || c == '\x7F';
    return control && c != '\t' && c != '\n' && c != '\r';
  });
}

std::optional<std::string_view> FindSetting(std::string_view text, std::string_view name) {
  std::optional<std::string_view> found;
  std::string_view rest = text;
  if (rest.starts_with(kByteOrderMark)) rest.remove_prefix(kByteOrderMark.size());
  while (!rest.empty()) {
    const std::string_view line = rest.substr(0, rest.find('\n'));
    if (const auto value = ValueIn(line, name)) found = value;
    rest.remove_prefix(std::min(line.size() + 1, rest.size()));
  }
  return found;
}

std::string WithSetting(std::string_view text, std::string_view name, std::string_view value) {
  // A mark at the start of the text is not a part of the first name.
  if (name.empty() || name.starts_with('#') || name.starts_with(kByteOrderMark) ||
      name.find('=') != std::string_view::npos || !FitsInLine(name) || !FitsInLine(value)) {
    throw std::invalid_argument("a settings line cannot hold this name and value");
  }
  std::string result(text);
  if (const auto old = FindSetting(text, name)) {
    const auto place = static_cast<std::size_t>(old->data() - text.data());
    return result.replace(place, old->size(), value);
  }
  const std::string_view lineEnd = text.find("\r\n") == std::string_view::npos ? "\n" : "\r\n";
  if (!result.empty() && result.back() != '\n') result += lineEnd;
  result.append(name).append("=").append(value).append(lineEnd);
  return result;
}

}  // namespace tarvo::platform
