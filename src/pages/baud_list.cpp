#include "pages/baud_list.h"

namespace tarvo::pages {

void ShowSevenRates(view::ComboBox& combo) {
  const int code = combo.SelectedCode();
  const bool selected = combo.ListIndex() >= 0;
  combo.SetRows(kSevenRates);
  if (selected) combo.SelectCode(code);
}

void ShowFiveRates(view::ComboBox& combo) {
  const int code = combo.SelectedCode();
  combo.SetRows(kFiveRates);
  if (combo.ListIndex() >= static_cast<int>(kFiveRates.size())) combo.SelectCode(code);
}

}  // namespace tarvo::pages
