#include "shell/settings_store.h"

namespace tarvo::shell {

namespace {

constexpr std::string_view kKey = "Software\\Tarvo\\Tarvo";
constexpr std::string_view kAutoScan = "AUTOSCAN";

}  // namespace

core::Task<> SettingsStore::ReadAutoScan() {
  std::optional<std::string> text;
  co_await ReadValue(kAutoScan, text);
  if (text && !text->empty()) state_.AutoScan = *text == "TRUE" ? 1 : 0;
}

core::Task<> SettingsStore::WriteAutoScan(std::int16_t value) {
  const std::string_view text = value != 0 ? "TRUE" : "FALSE";
  // On the first run there is nothing yet to write into, which is nothing to report.
  if (values_.Open() == ValueStore::kMissing) {
    const bool created = co_await CreateKey();
    if (!created) co_return;
  }
  co_await WriteValue(kAutoScan, text);
}

core::Task<bool> SettingsStore::CreateKey() {
  const int code = values_.Create();
  if (code != 0) co_await Report("Error Creating Registry Key Entry:", code);
  co_return code == 0;
}

core::Task<bool> SettingsStore::ReadValue(std::string_view name, std::optional<std::string>& text) {
  const int opened = values_.Open();
  if (opened == ValueStore::kMissing) co_return true;
  if (opened != 0) {
    co_await Report("Error Opening Registry Key Entry:", opened);
    co_return false;
  }
  const int code = values_.Retrieve(name, text);
  if (code != 0) co_await Report("Error Retrieving Registry Key Entry:", code);
  co_return code == 0;
}

core::Task<bool> SettingsStore::WriteValue(std::string_view name, std::string_view text) {
  const int code = values_.Set(name, text);
  if (code != 0) co_await Report("Error Setting Registry Key Entry:", code);
  co_return code == 0;
}

core::Task<> SettingsStore::Report(std::string_view what, int code) {
  std::string text(what);
  text.append("\nKey=").append(kKey).append("\nDLL Returned=").append(std::to_string(code));
  co_await screen_.MsgBox(std::move(text), view::Icon::kExclamation);
}

}  // namespace tarvo::shell
