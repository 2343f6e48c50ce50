#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/scheduler.h"
#include "view/property.h"

namespace tarvo::console {

/// A word of a command line; one that stood in quotes is a text, whatever it looks like.
struct Word {
  std::string text;
  bool quoted = false;

  friend bool operator==(const Word&, const Word&) = default;
};

/// The words of a line, its comment left out, or what is wrong with its quotes.
struct Line {
  std::vector<Word> words;
  std::string error;
};
Line Split(std::string_view line);

/// "300ms", "5s", "1.5s", "2m"; nothing for any other text, or for more than a year.
std::optional<core::Duration> ParseDuration(std::string_view text);
/// Reads like what `ParseDuration` takes: "300ms", "1.5s", "2m".
std::string TextOf(core::Duration duration);

/// A whole number, with nothing around it.
std::optional<int> ParseInteger(std::string_view text);

/// A value as a person reads it: texts without quotes, lists with commas.
std::string TextOf(const view::PropertyValue& value);

/// What `until` can ask of a value.
enum class Relation { kEqual, kUnequal, kLess, kGreater, kContains };
std::optional<Relation> ParseRelation(std::string_view text);
/// As numbers when both sides are numbers, else as texts.
bool Holds(const view::PropertyValue& value, Relation relation, std::string_view wanted);

}  // namespace tarvo::console
