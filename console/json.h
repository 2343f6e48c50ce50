#pragma once

#include <string>
#include <string_view>

#include "view/property.h"

namespace tarvo::console {

/// `text` as a JSON string, quotes included. What is no UTF-8 becomes U+FFFD.
std::string JsonText(std::string_view text);
/// A property's value as the JSON type that it has.
std::string JsonValue(const view::PropertyValue& value);

/// Builds an object member by member, in the order of the calls.
class JsonObject {
 public:
  /// `json` stands as it is given.
  JsonObject& Add(std::string_view key, std::string_view json);
  std::string Text() const { return "{" + members_ + "}"; }

 private:
  std::string members_;
};

/// An array of what `toJson` makes of each member.
template <class Range, class ToJson>
std::string JsonArray(const Range& range, ToJson toJson) {
  std::string members;
  for (const auto& member : range) {
    if (!members.empty()) members += ',';
    members += toJson(member);
  }
  return "[" + members + "]";
}

}  // namespace tarvo::console
