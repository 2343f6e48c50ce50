#include "console/json.h"

#include <type_traits>
#include <variant>

#include "console/text.h"

namespace tarvo::console {

namespace {

void AppendEscaped(std::string& json, char point) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  switch (point) {
    case '"':
      json += "\\\"";
      return;
    case '\\':
      json += "\\\\";
      return;
    case '\n':
      json += "\\n";
      return;
    case '\r':
      json += "\\r";
      return;
    case '\t':
      json += "\\t";
      return;
    default:
      break;
  }
  const auto code = static_cast<unsigned char>(point);
  if (code >= 0x20) {
    json += point;
    return;
  }
  json += "\\u00";
  json += kDigits[code >> 4];
  json += kDigits[code & 0xF];
}

}  // namespace

std::string JsonText(std::string_view text) {
  std::string json = "\"";
  for (const char point : Encode(Decode(text))) AppendEscaped(json, point);
  return json + "\"";
}

std::string JsonValue(const view::PropertyValue& value) {
  return std::visit(
      [](const auto& held) -> std::string {
        using Held = std::decay_t<decltype(held)>;
        if constexpr (std::is_same_v<Held, bool>) {
          return held ? "true" : "false";
        } else if constexpr (std::is_same_v<Held, std::int64_t>) {
          return std::to_string(held);
        } else if constexpr (std::is_same_v<Held, std::string>) {
          return JsonText(held);
        } else if constexpr (std::is_same_v<Held, std::vector<std::string>>) {
          return JsonArray(held, JsonText);
        } else {
          return JsonArray(held, [](int number) { return std::to_string(number); });
        }
      },
      value);
}

JsonObject& JsonObject::Add(std::string_view key, std::string_view json) {
  if (!members_.empty()) members_ += ',';
  members_ += JsonText(key);
  members_ += ':';
  members_ += json;
  return *this;
}

}  // namespace tarvo::console
