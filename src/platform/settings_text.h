#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tarvo::platform {

/// The text of a settings file: lines `NAME=VALUE`; a line that starts with `#` is a comment, and lines of any other
/// form mean nothing. Blanks around name and value do not count. Of several lines with one name the last counts.

/// False for what no text editor writes: control characters other than tabs and line ends.
bool IsSettingsText(std::string_view text);

/// The value behind `name`, a part of `text`; nothing when no line gives it.
std::optional<std::string_view> FindSetting(std::string_view text, std::string_view name);

/// `text` with the value of `name` set, every other line byte for byte as it was; a new line at the end when no line
/// gave it. Throws `std::invalid_argument` for a name or value that such a line cannot hold.
std::string WithSetting(std::string_view text, std::string_view name, std::string_view value);

}  // namespace tarvo::platform
