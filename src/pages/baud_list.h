#pragma once

#include <array>

#include "view/control.h"

namespace tarvo::pages {

/// Baud rates and their codes in the communication word, as every firmware has them.
inline constexpr std::array<view::ListRow, 5> kFiveRates = {
    {{"4800", 0}, {"9600", 1}, {"19200", 2}, {"38400", 3}, {"57600", 4}}};
/// The same, with the two slow ones that newer firmware adds.
inline constexpr std::array<view::ListRow, 7> kSevenRates = {
    {{"1200", 6}, {"2400", 7}, {"4800", 0}, {"9600", 1}, {"19200", 2}, {"38400", 3}, {"57600", 4}}};

/// Makes the list the seven rates; the selected code stays.
void ShowSevenRates(view::ComboBox& combo);
/// Makes the list the five rates; the selected position stays while it exists, else the selected code.
void ShowFiveRates(view::ComboBox& combo);

}  // namespace tarvo::pages
