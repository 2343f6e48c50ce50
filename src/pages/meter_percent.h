#pragma once

#include "view/ar_metor.h"

namespace tarvo::pages {

/// Sets the meter to `percent`, rounded, if the real number differs from what it shows.
void ShowPercent(view::ARMetor& meter, double percent);

}  // namespace tarvo::pages
