#include "state/number_text.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <optional>
#include <string>
#include <system_error>

#include "core/fault.h"

namespace tarvo::state {

namespace {

struct Decimal {
  bool negative = false;
  std::string_view whole;
  std::string_view fraction;
};

bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}

std::string_view TakeDigits(std::string_view& text) {
  std::size_t length = 0;
  while (length < text.size() && IsDigit(text[length])) ++length;
  const std::string_view digits = text.substr(0, length);
  text.remove_prefix(length);
  return digits;
}

std::string_view Trim(std::string_view text) {
  const auto isBlank = [](char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; };
  while (!text.empty() && isBlank(text.front())) text.remove_prefix(1);
  while (!text.empty() && isBlank(text.back())) text.remove_suffix(1);
  return text;
}

std::optional<Decimal> Parse(std::string_view text) {
  text = Trim(text);
  Decimal decimal;
  if (!text.empty() && (text.front() == '-' || text.front() == '+')) {
    decimal.negative = text.front() == '-';
    text.remove_prefix(1);
  }
  decimal.whole = TakeDigits(text);
  if (!text.empty() && (text.front() == '.' || text.front() == ',')) {
    text.remove_prefix(1);
    decimal.fraction = TakeDigits(text);
  }
  if (!text.empty() || (decimal.whole.empty() && decimal.fraction.empty())) return std::nullopt;
  return decimal;
}

/// What the digits behind the separator add to the whole number before them.
bool RoundsUp(std::string_view fraction, bool wholeIsOdd) {
  if (fraction.empty() || fraction.front() < '5') return false;
  if (fraction.front() > '5') return true;
  const bool tie = fraction.find_first_not_of('0', 1) == std::string_view::npos;
  return !tie || wholeIsOdd;
}

}  // namespace

bool IsNumeric(std::string_view text) {
  return Parse(text).has_value();
}

std::int32_t ToInteger(std::string_view text) {
  const std::optional<Decimal> decimal = Parse(text);
  if (!decimal) throw core::Fault(core::kTypeMismatch);

  constexpr std::int64_t kBeyond = std::int64_t{std::numeric_limits<std::int32_t>::max()} + 2;
  std::int64_t magnitude = 0;
  for (const char digit : decimal->whole) {
    magnitude = std::min(magnitude * 10 + (digit - '0'), kBeyond);
  }
  if (RoundsUp(decimal->fraction, magnitude % 2 != 0)) ++magnitude;
  const std::int64_t value = decimal->negative ? -magnitude : magnitude;
  if (value > std::numeric_limits<std::int32_t>::max() || value < std::numeric_limits<std::int32_t>::min()) {
    throw core::Fault(core::kOverflow);
  }
  return static_cast<std::int32_t>(value);
}

double ToNumber(std::string_view text) {
  const std::optional<Decimal> decimal = Parse(text);
  if (!decimal) throw core::Fault(core::kTypeMismatch);
  const std::string digits = "0" + std::string(decimal->whole) + "." + std::string(decimal->fraction);
  double number = 0;
  const auto read = std::from_chars(digits.data(), digits.data() + digits.size(), number, std::chars_format::fixed);
  // Too small to tell from 0 it is 0; too large, beyond all bounds.
  const bool tooLarge =
      read.ec == std::errc::result_out_of_range && decimal->whole.find_first_not_of('0') != std::string_view::npos;
  if (tooLarge) number = std::numeric_limits<double>::infinity();
  return decimal->negative ? -number : number;
}

std::string PointToComma(std::string_view text) {
  std::string result(text);
  if (const std::size_t point = result.find('.'); point != std::string::npos) result[point] = ',';
  return result;
}

Word ToWord(std::string_view text) {
  const std::int32_t value = ToInteger(text);
  if (value < -32768 || value > 65535) throw core::Fault(core::kOverflow);
  return Word(static_cast<unsigned>(value) & 0xFFFFU);
}

Word LowWord(std::string_view text) {
  return Word(static_cast<unsigned>(ToInteger(text)) & 0xFFFFU);
}

std::int32_t RoundToInteger(double value) {
  const double nearest = std::nearbyint(value);
  // Not a number is no integer either.
  const bool fits =
      nearest >= std::numeric_limits<std::int32_t>::min() && nearest <= std::numeric_limits<std::int32_t>::max();
  if (!fits) throw core::Fault(core::kOverflow);
  return static_cast<std::int32_t>(nearest);
}

int RoundTiesToEven(double value) {
  return static_cast<int>(std::nearbyint(value));
}

std::string WithDecimals(int value, int decimals) {
  const auto places = static_cast<std::size_t>(decimals);
  std::string digits = std::to_string(std::abs(value));
  if (digits.size() <= places) digits.insert(0, places + 1 - digits.size(), '0');
  if (places > 0) digits.insert(digits.size() - places, 1, '.');
  return value < 0 ? "-" + digits : digits;
}

}  // namespace tarvo::state
