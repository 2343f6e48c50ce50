#include "config/settings_files.h"

#include <string_view>
#include <utility>
#include <vector>

#include "config/field_text.h"
#include "pages/device_page.h"

namespace tarvo::config {

namespace {

constexpr char kMustStop[] = "Communication must be stopped";

// Error numbers of the dialog step.
constexpr long kDeviceUnavailable = 68;
constexpr long kDiskNotReady = 71;
constexpr long kCancelled = 32755;

std::string HeaderOf(const pages::DevicePage& page) {
  return "DATAFORMAT 1.0 " + std::string(page.Files().word);
}

}  // namespace

SettingsFiles::SettingsFiles(view::Screen& screen, state::SharedState& state, pages::PageTable& table, TextFiles& files)
    : AskForPath([&screen](bool save, std::string filter) { return screen.AskForFile(save, std::move(filter)); }),
      screen_(screen),
      state_(state),
      table_(table),
      files_(files) {}

core::Task<> SettingsFiles::Open() {
  return Choose(false, "All Files (*.txt) | *.txt");
}

core::Task<> SettingsFiles::Save() {
  return Choose(true, "Text Files (*.txt) | *.txt");
}

core::Task<> SettingsFiles::Choose(bool save, std::string filter) {
  if (state_.StartComm != state::kFalse) {
    co_await screen_.MsgBox(kMustStop, view::Icon::kExclamation);
    co_return;
  }
  std::optional<std::string> path;
  bool again = true;
  while (again) {
    again = false;
    std::optional<core::Fault> fault;
    try {
      path = co_await AskForPath(save, filter);
    } catch (const core::Fault& met) {
      fault = met;
    }
    if (fault) again = co_await TellDialogFault(*fault);
  }
  if (!path || path->empty()) co_return;
  if (save) {
    co_await Store(*path);
  } else {
    co_await Load(*path);
  }
}

/// True when the user wants the step once more.
core::Task<bool> SettingsFiles::TellDialogFault(const core::Fault& fault) {
  const long number = fault.Number();
  if (number == kCancelled) co_return false;
  if (number == kDiskNotReady) {
    std::vector<std::string> buttons = {"OK", "Cancel"};
    const std::string answer =
        co_await screen_.Ask("Insert Disk and click OK", view::Icon::kNone, std::move(buttons), "Tarvo", 1);
    co_return answer == "OK";
  }
  if (number == kDeviceUnavailable) {
    co_await screen_.MsgBox("Path or drive not found", view::Icon::kExclamation);
    co_return false;
  }
  std::string text = "Unexpected Error # " + std::to_string(number) + ": " + fault.what();
  co_await screen_.MsgBox(std::move(text), view::Icon::kNone);
  co_return false;
}

void SettingsFiles::OpenChannel() {
  if (channelOpen_) throw core::Fault(core::kFileAlreadyOpen);
  channelOpen_ = true;
}

core::Task<> SettingsFiles::Load(std::string path) {
  if (state_.StartComm != state::kFalse) co_return;
  pages::DevicePage* page = table_.Current();
  if (page == nullptr || page->Files().word.empty()) co_return;
  std::optional<std::string> fault;
  try {
    const bool right = co_await LoadInto(*page, path);
    if (right) {
      std::string text = "Data correctly loaded! Press 'WRITE EEPROM' to update " + std::string(page->Files().updated);
      co_await screen_.MsgBox(std::move(text), view::Icon::kInformation);
    } else {
      co_await screen_.MsgBox("Error on Data format", view::Icon::kCritical);
    }
    channelOpen_ = false;
  } catch (const core::Fault& met) {
    fault = met.what();
  }
  if (fault) co_await screen_.MsgBox(*fault, view::Icon::kExclamation);
}

/// False when the file's header is not that of the page.
core::Task<bool> SettingsFiles::LoadInto(pages::DevicePage& page, const std::string& path) {
  page.EnsureLoaded();
  OpenChannel();
  std::string content;
  if (const core::Status read = files_.Read(path, content); !read.Ok()) throw read.GetFault();
  FieldReader reader(content);
  if (reader.Next() != HeaderOf(page)) co_return false;
  const pages::FileFormat& format = page.Files();
  const std::size_t count = format.fields.size();
  for (std::size_t i = 1; format.toTheEnd ? !reader.AtEnd() : i <= count; ++i) {
    if (i >= state_.FileFields.size()) throw core::Fault(core::kSubscriptOutOfRange);
    state_.FileFields[i] = reader.Next();
  }
  co_await page.LoadFields();
  co_return true;
}

core::Task<> SettingsFiles::Store(std::string path) {
  if (state_.StartComm != state::kFalse) co_return;
  pages::DevicePage* page = table_.Current();
  if (page == nullptr || page->Files().word.empty()) co_return;
  std::optional<std::string> fault;
  try {
    StoreFrom(*page, path);
    channelOpen_ = false;
  } catch (const core::Fault& met) {
    fault = met.what();
    channelOpen_ = true;
  }
  if (fault) co_await screen_.MsgBox(*fault, view::Icon::kNone);
}

void SettingsFiles::StoreFrom(pages::DevicePage& page, const std::string& path) {
  page.EnsureLoaded();
  // All of it before the file is touched.
  page.ReadAllDataFromForm();
  OpenChannel();
  std::string content = FieldLine(HeaderOf(page));
  for (std::size_t i = 1; i <= page.Files().fields.size(); ++i) content += FieldLine(state_.FileFields[i]);
  if (const core::Status written = files_.Write(path, content); !written.Ok()) throw written.GetFault();
}

}  // namespace tarvo::config
