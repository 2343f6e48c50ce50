#pragma once

#include <string_view>
#include <vector>

#include "state/word.h"

namespace tarvo::shell {

/// What is done with the page of a module that the search has found.
enum class FoundStep {
  kClick,           ///< the click on its label in the page list
  kShow,            ///< shown, as the click does it, and no more
  kCheckFWVersion,  ///< with the identity's release
  kReadEEPromFlags,
  kSetFound,  ///< the page of RTD inputs takes three or four channels
  kReadOnce,  ///< `ReadEEPromFlags`, unless `pageReadDone` tells that the page has done so
  kEntered,   ///< `pageEntered` tells that the page's module was read
};

/// A module that the search knows.
struct FoundModel {
  int code;               ///< high byte of register 40001
  std::string_view text;  ///< its name in the status bar
  int page;               ///< `NrFinestra` of its page
  std::vector<FoundStep> steps;
};

/// The row of the module with that identity; null for one that the search does not know.
const FoundModel* FindModel(state::Word identity);

}  // namespace tarvo::shell
