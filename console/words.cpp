#include "console/words.h"

#include <charconv>
#include <cmath>
#include <type_traits>
#include <variant>

namespace tarvo::console {

namespace {

bool IsBlank(char character) {
  return character == ' ' || character == '\t' || character == '\r';
}

/// Takes the quoted text at the start of `rest`, quotes included; false when it does not end.
bool TakeQuoted(std::string_view& rest, std::string& text) {
  for (std::size_t i = 1; i < rest.size(); ++i) {
    if (rest[i] == '"') {
      rest.remove_prefix(i + 1);
      return true;
    }
    // A backslash before anything else is itself: "C:\modules".
    const bool escapes = rest[i] == '\\' && i + 1 < rest.size() && (rest[i + 1] == '"' || rest[i + 1] == '\\');
    text += rest[escapes ? ++i : i];
  }
  return false;
}

std::string_view Trimmed(std::string_view text) {
  while (!text.empty() && IsBlank(text.front())) text.remove_prefix(1);
  while (!text.empty() && IsBlank(text.back())) text.remove_suffix(1);
  return text;
}

/// A decimal number with nothing but blanks around it.
std::optional<double> ParseNumber(std::string_view text) {
  text = Trimmed(text);
  if (text.size() > 1 && text.front() == '+' && text[1] != '-') text.remove_prefix(1);
  double number = 0;
  const auto [end, fault] = std::from_chars(text.data(), text.data() + text.size(), number, std::chars_format::fixed);
  if (fault != std::errc() || end != text.data() + text.size() || !std::isfinite(number)) return std::nullopt;
  return number;
}

template <class T>
bool Compare(const T& left, Relation relation, const T& right) {
  switch (relation) {
    case Relation::kEqual:
      return left == right;
    case Relation::kUnequal:
      return left != right;
    case Relation::kLess:
      return left < right;
    default:
      return left > right;
  }
}

struct Unit {
  std::string_view name;
  double milliseconds;
};
constexpr Unit kUnits[] = {{"ms", 1}, {"s", 1000}, {"m", 60'000}};

}  // namespace

Line Split(std::string_view line) {
  Line split;
  while (true) {
    while (!line.empty() && IsBlank(line.front())) line.remove_prefix(1);
    if (line.empty() || line.front() == '#') return split;
    Word word;
    if (line.front() == '"') {
      word.quoted = true;
      if (!TakeQuoted(line, word.text)) {
        split.error = "a quote is not closed";
        return split;
      }
      if (!line.empty() && !IsBlank(line.front()) && line.front() != '#') {
        split.error = "a blank is missing after \"" + word.text + "\"";
        return split;
      }
    } else {
      while (!line.empty() && !IsBlank(line.front()) && line.front() != '#') {
        if (line.front() == '"') {
          split.error = "a quote stands inside " + word.text;
          return split;
        }
        word.text += line.front();
        line.remove_prefix(1);
      }
    }
    split.words.push_back(std::move(word));
  }
}

std::optional<core::Duration> ParseDuration(std::string_view text) {
  const std::size_t digits = text.find_first_not_of("0123456789.");
  if (digits == 0 || digits == std::string_view::npos) return std::nullopt;
  const std::optional<double> number = ParseNumber(text.substr(0, digits));
  if (!number) return std::nullopt;
  for (const Unit& unit : kUnits) {
    if (text.substr(digits) != unit.name) continue;
    const double nanoseconds = *number * unit.milliseconds * 1e6;
    constexpr std::chrono::hours kYear(24 * 365);
    if (nanoseconds > static_cast<double>(core::Duration(kYear).count())) return std::nullopt;
    return core::Duration(std::llround(nanoseconds));
  }
  return std::nullopt;
}

std::string TextOf(core::Duration duration) {
  const double milliseconds = std::chrono::duration<double, std::milli>(duration).count();
  const Unit* unit = kUnits;
  for (const Unit& larger : kUnits) {
    if (milliseconds >= larger.milliseconds) unit = &larger;
  }
  // At most three decimals, without the zeros at the end.
  char text[32];
  const double rounded = std::round(milliseconds / unit->milliseconds * 1000) / 1000;
  const auto* const end = std::to_chars(std::begin(text), std::end(text), rounded, std::chars_format::fixed).ptr;
  return std::string(static_cast<const char*>(text), end) + std::string(unit->name);
}

std::optional<int> ParseInteger(std::string_view text) {
  int number = 0;
  const auto [end, fault] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (fault != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return number;
}

std::string TextOf(const view::PropertyValue& value) {
  return std::visit(
      [](const auto& held) -> std::string {
        using Held = std::decay_t<decltype(held)>;
        if constexpr (std::is_same_v<Held, bool>) {
          return held ? "true" : "false";
        } else if constexpr (std::is_same_v<Held, std::int64_t>) {
          return std::to_string(held);
        } else if constexpr (std::is_same_v<Held, std::string>) {
          return held;
        } else {
          std::string joined;
          for (const auto& member : held) {
            if (!joined.empty()) joined += ", ";
            if constexpr (std::is_same_v<Held, std::vector<int>>) {
              joined += std::to_string(member);
            } else {
              joined += member;
            }
          }
          return joined;
        }
      },
      value);
}

std::optional<Relation> ParseRelation(std::string_view text) {
  if (text == "=") return Relation::kEqual;
  if (text == "!=") return Relation::kUnequal;
  if (text == "<") return Relation::kLess;
  if (text == ">") return Relation::kGreater;
  if (text == "contains") return Relation::kContains;
  return std::nullopt;
}

bool Holds(const view::PropertyValue& value, Relation relation, std::string_view wanted) {
  const std::string text = TextOf(value);
  if (relation == Relation::kContains) return text.find(wanted) != std::string::npos;
  const std::optional<double> left = ParseNumber(text);
  const std::optional<double> right = ParseNumber(wanted);
  if (left && right) return Compare(*left, relation, *right);
  return Compare(std::string_view(text), relation, wanted);
}

}  // namespace tarvo::console
