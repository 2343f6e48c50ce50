#pragma once

#include <array>

#include "core/task.h"
#include "state/shared_state.h"

namespace tarvo::pages {

class DevicePage;

/// The device pages by their numbers, and the routines that go by `NrFinestra`, whichever page is on the screen.
class PageTable {
 public:
  static constexpr int kPages = 13;

  explicit PageTable(state::SharedState& state) : state_(state) {}

  void Add(DevicePage& page);
  /// Null for a number without a page.
  DevicePage* Page(int number) const;
  /// The page that `NrFinestra` names, null when it names none.
  DevicePage* Current() const { return Page(state_.NrFinestra); }

  /// Issues the poll read of the current page and shows its outcome in the page's message label.
  core::Task<> LeggiModulo();
  /// In a session, disables the current page's Start.
  void DeselectStart();
  /// Out of a session, enables the current page's Start.
  void ReselectStart();
  /// Disables every timer of the current page.
  void KillAllTimers();
  /// Shows the gears of the present phase; nothing turns the phase.
  void MuoviIngranaggi();

 private:
  state::SharedState& state_;
  std::array<DevicePage*, kPages> pages_{};
};

}  // namespace tarvo::pages
