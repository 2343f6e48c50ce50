#include "pages/meter_percent.h"

#include <algorithm>
#include <cstdlib>

#include "state/number_text.h"

namespace tarvo::pages {

void MakeBar(view::ARMetor& meter) {
  meter.Caption = "";
  meter.FillColor = view::kBarBlue;
  meter.SetPercent(0);
}

void ShowPercent(view::ARMetor& meter, double percent) {
  if (percent != meter.Percent()) meter.SetPercent(state::RoundTiesToEven(percent));
}

bool ShowClamped(view::ARMetor& meter, int value) {
  constexpr int kFull = 10000;
  const double percent = value * 100.0 / kFull;
  if (percent == meter.Percent()) return false;
  meter.SetPercent(state::RoundTiesToEven(std::clamp(percent, 0.0, 100.0)));
  return true;
}

void ShowSigned(view::ARMetor& meter, int value, int full) {
  const int magnitude = std::abs(value);
  const double percent = magnitude * 100.0 / full;
  if (percent == meter.Percent()) return;
  meter.FillColor = value < 0 ? view::kRed : view::kBarBlue;
  meter.SetPercent(magnitude > full ? 100 : state::RoundTiesToEven(percent));
}

}  // namespace tarvo::pages
