#pragma once

#include <array>

#include "view/control.h"

namespace tarvo::models {

/// The options that the analog pages have alike, bits 1 to 3 of their flags register 40003.
struct AnalogOption {
  const char* caption;
  const char* toolTip;
};
inline constexpr std::array<AnalogOption, 3> kAnalogOptions = {{
    {"Speed Up Acquisition", "40003.1 - Speed Up Acquisition"},
    {"Delay 12ms", "40003.2 - Latency Time"},
    {"Parity ON/OFF", "40003.3 - Parity ON/OFF"},
}};

/// Filter levels: the position is the register's value.
inline constexpr std::array<view::ListRow, 7> kFilterLevels = {{{"0"}, {"1"}, {"2"}, {"3"}, {"4"}, {"5"}, {"6"}}};

/// The options as their field of the settings file has them: a box counts 0 or 1, a selected option -1. Load takes the
/// field by other bits, so that it does not come back as it was: that is meant.
inline int OptionsField(const view::ControlArray<view::CheckBox, 3>& checks, const view::OptionButton& odd) {
  const int selected = odd.Value() ? -1 : 0;
  return checks[0].Value() + 2 * checks[1].Value() + 4 * checks[2].Value() + 8 * selected;
}

}  // namespace tarvo::models
