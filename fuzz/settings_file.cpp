// The text of a settings file, whatever stands in it: a value that is set is read back, nothing else changes.

#include <algorithm>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "fuzz/input.h"
#include "platform/settings_text.h"

namespace tarvo::platform {
namespace {

using fuzz::Check;

std::vector<std::string_view> LinesOf(std::string_view text) {
  std::vector<std::string_view> lines;
  while (!text.empty()) {
    const std::size_t length = std::min(text.find('\n'), text.size() - 1) + 1;
    lines.push_back(text.substr(0, length));
    text.remove_prefix(length);
  }
  return lines;
}

std::optional<std::string> Found(std::string_view text, std::string_view name) {
  const std::optional<std::string_view> value = FindSetting(text, name);
  if (!value) return std::nullopt;
  Check(value->data() >= text.data() && value->data() + value->size() <= text.data() + text.size(),
        "a value is a part of the text");
  return std::string(*value);
}

void CheckOnlyOneLineChanged(std::string_view before, std::string_view after) {
  std::vector<std::string_view> old = LinesOf(before);
  std::vector<std::string_view> now = LinesOf(after);
  // A last line without its end gets one before the new line.
  Check(now.size() == old.size() || now.size() == old.size() + 1, "no line comes or goes but the one that is set");
  std::size_t changed = 0;
  for (std::size_t i = 0; i < old.size(); ++i) {
    const bool endAdded = now.size() > old.size() && i + 1 == old.size() && now[i].starts_with(old[i]) &&
                          (now[i].substr(old[i].size()) == "\n" || now[i].substr(old[i].size()) == "\r\n");
    if (now[i] != old[i] && !endAdded) ++changed;
  }
  Check(changed <= (now.size() == old.size() ? 1U : 0U), "every other line stays byte for byte");
}

void Try(fuzz::Input input) {
  constexpr std::string_view kNames[] = {"COM1", "COM2", "AUTOSCAN", "", "#", " COM1", "=", "\xEF\xBB\xBF"};
  const int choice = input.Below(16);
  const std::string name(choice < 8 ? kNames[choice] : input.Text(static_cast<std::size_t>(input.Below(8))));
  const std::string value(input.Text(static_cast<std::size_t>(input.Below(16))));
  const std::string text(input.Text(1 << 20));

  IsSettingsText(text);
  std::optional<std::string> others[std::size(kNames)];
  for (std::size_t i = 0; i < std::size(kNames); ++i) others[i] = Found(text, kNames[i]);

  std::string after;
  try {
    after = WithSetting(text, name, value);
  } catch (const std::invalid_argument&) {
    return;
  }
  Check(Found(after, name) == value, "what was set is read back");
  Check(!IsSettingsText(text) || IsSettingsText(after), "a text stays one");
  CheckOnlyOneLineChanged(text, after);
  for (std::size_t i = 0; i < std::size(kNames); ++i) {
    if (kNames[i] != name) Check(Found(after, kNames[i]) == others[i], "other values stay");
  }
  Check(WithSetting(after, name, value) == after, "setting a value twice changes nothing more");
  Check(Found(WithSetting(after, name, "x"), name) == "x", "a value can be set again");
}

}  // namespace
}  // namespace tarvo::platform

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  tarvo::platform::Try(tarvo::fuzz::Input(data, size));
  return 0;
}
