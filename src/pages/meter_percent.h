#pragma once

#include "view/ar_metor.h"

namespace tarvo::pages {

/// Makes the meter an empty blue bar without a text.
void MakeBar(view::ARMetor& meter);

/// Sets the meter to `percent`, rounded, if the real number differs from what it shows.
void ShowPercent(view::ARMetor& meter, double percent);

/// Shows a value of 0 to 10000, 100 percent; what lies beyond stands at the end. False when the meter shows it already.
bool ShowClamped(view::ARMetor& meter, int value);

/// Shows a signed value of which `full` counts are 100 percent: red when it is negative. A value whose percent the
/// meter shows already leaves the colour too.
void ShowSigned(view::ARMetor& meter, int value, int full = 10000);

}  // namespace tarvo::pages
