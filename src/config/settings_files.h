#pragma once

#include <functional>
#include <optional>
#include <string>

#include "config/text_files.h"
#include "core/task.h"
#include "pages/page_table.h"
#include "state/shared_state.h"
#include "view/screen.h"

namespace tarvo::config {

/// Open and Save of the file menu: the settings of the current page, in a small text file.
class SettingsFiles {
 public:
  SettingsFiles(view::Screen& screen, state::SharedState& state, pages::PageTable& table, TextFiles& files);

  core::Task<> Open();
  core::Task<> Save();

  /// Asks the user for a path: the screen's file dialog, unless replaced. A fault of it is shown in its own way.
  std::function<core::Task<std::optional<std::string>>(bool save, std::string filter)> AskForPath;

 private:
  core::Task<> Choose(bool save, std::string filter);
  core::Task<bool> TellDialogFault(const core::Fault& fault);

  core::Task<> Load(std::string path);
  core::Task<> Store(std::string path);
  core::Task<bool> LoadInto(pages::DevicePage& page, const std::string& path);
  void StoreFrom(pages::DevicePage& page, const std::string& path);
  void OpenChannel();

  view::Screen& screen_;
  state::SharedState& state_;
  pages::PageTable& table_;
  TextFiles& files_;
  /// The one channel for files. An error leaves it open until the program ends, which is meant.
  bool channelOpen_ = false;
};

}  // namespace tarvo::config
