#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "core/task.h"
#include "shell/services.h"
#include "state/shared_state.h"
#include "view/screen.h"

namespace tarvo::shell {

/// The one switch that outlives the program. What goes wrong with the store is told in a message box each time, and
/// the program goes on.
class SettingsStore {
 public:
  SettingsStore(view::Screen& screen, state::SharedState& state, ValueStore& values)
      : screen_(screen), state_(state), values_(values) {}

  /// Sets `AutoScan` from what is stored; it stays as it is when nothing is.
  core::Task<> ReadAutoScan();
  core::Task<> WriteAutoScan(std::int16_t value);

 private:
  // The three primitives; false when the store said no, which the user has read then.
  core::Task<bool> CreateKey();
  core::Task<bool> ReadValue(std::string_view name, std::optional<std::string>& text);
  core::Task<bool> WriteValue(std::string_view name, std::string_view text);
  core::Task<> Report(std::string_view what, int code);

  view::Screen& screen_;
  state::SharedState& state_;
  ValueStore& values_;
};

}  // namespace tarvo::shell
