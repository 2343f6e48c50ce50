#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "state/shared_state.h"
#include "view/property.h"
#include "view/screen.h"

namespace tarvo::console {

/// Where names are looked up: in the modal window that is open, the page, the main window, then the shared values; or
/// in the window that stands before the name.
class Names {
 public:
  Names(const view::Screen& screen, const std::vector<view::Window*>& windows, const state::SharedState& state)
      : screen_(screen), windows_(windows), state_(state) {}

  /// A control by its name ("TotIN(0)", "Belk.TotIN(0)"), or why there is none.
  struct FoundControl {
    view::Control* control = nullptr;
    std::string error;
  };
  FoundControl FindControl(std::string_view name) const;

  view::Window* FindWindow(std::string_view name) const;

  /// What stands behind a name, its property included if one is given: one value, or all properties of a control or
  /// window, or why there is nothing.
  struct Reading {
    std::optional<view::PropertyValue> value;
    std::vector<view::NamedValue> properties;
    std::string error;
    /// The name exists, only not in what stands on the screen now.
    bool mayCome = false;

    bool Ok() const { return error.empty(); }
  };
  Reading Read(std::string_view name) const;

 private:
  view::Control* FindBare(std::string_view name) const;
  std::optional<view::PropertyValue> ReadShared(std::string_view name) const;
  bool InAnyWindow(std::string_view name) const;

  const view::Screen& screen_;
  const std::vector<view::Window*>& windows_;
  const state::SharedState& state_;
};

}  // namespace tarvo::console
