#pragma once

namespace tarvo::pages {

/// The shell's navigation, as far as a session needs it.
class Navigation {
 public:
  /// Nothing leads away from the page until `EnableNavigation`.
  virtual void DisableNavigation() = 0;
  virtual void EnableNavigation() = 0;

 protected:
  ~Navigation() = default;
};

}  // namespace tarvo::pages
