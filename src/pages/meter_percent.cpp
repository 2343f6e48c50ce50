#include "pages/meter_percent.h"

#include "pages/number_text.h"

namespace tarvo::pages {

void ShowPercent(view::ARMetor& meter, double percent) {
  if (percent != meter.Percent()) meter.SetPercent(RoundTiesToEven(percent));
}

}  // namespace tarvo::pages
