#include "pages/baud_list.h"

#include <span>

#include "state/number_text.h"

namespace tarvo::pages {

state::Word AddressWord(const view::Label& address, const view::ComboBox& baud) {
  return state::ToWord(address.Caption()).Or(static_cast<unsigned>(baud.SelectedCode()) << 8);
}

void ShowAddressWord(state::Word word, view::Label& address, view::ComboBox& baud, unsigned codeBits) {
  address.Caption = std::to_string(word.Low());
  baud.SelectCode(word.And(codeBits).High());
}

void ShowRates(view::ComboBox& combo, bool seven) {
  const int code = combo.SelectedCode();
  const bool selected = combo.ListIndex() >= 0;
  combo.SetRows(seven ? std::span<const view::ListRow>(kSevenRates) : kFiveRates);
  const bool positionStays = !seven && combo.ListIndex() < static_cast<int>(kFiveRates.size());
  if (selected && !positionStays) combo.SelectCode(code);
}

}  // namespace tarvo::pages
