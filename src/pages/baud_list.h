#pragma once

#include <array>

#include "state/word.h"
#include "view/control.h"

namespace tarvo::pages {

/// Baud rates and their codes in the communication word, as every firmware has them.
inline constexpr std::array<view::ListRow, 5> kFiveRates = {
    {{"4800", 0}, {"9600", 1}, {"19200", 2}, {"38400", 3}, {"57600", 4}}};
/// The same, with the two slow ones that newer firmware adds.
inline constexpr std::array<view::ListRow, 7> kSevenRates = {
    {{"1200", 6}, {"2400", 7}, {"4800", 0}, {"9600", 1}, {"19200", 2}, {"38400", 3}, {"57600", 4}}};

/// The address word: the address that `address` shows, and the selected baud code in the high byte.
state::Word AddressWord(const view::Label& address, const view::ComboBox& baud);

/// Which bits of an address word are the baud code. Pages differ in it.
inline constexpr unsigned kThreeCodeBits = 0x0700;
inline constexpr unsigned kWholeHighByte = 0xFF00;

/// Shows an address word: its low byte in `address`, and in `baud` the entry whose code stands in the bits of
/// `codeBits`. When no entry has the code, the selection stays.
void ShowAddressWord(state::Word word, view::Label& address, view::ComboBox& baud, unsigned codeBits = kThreeCodeBits);

/// Makes the list the seven rates, or the five. With seven the selected code stays; with five the selected position
/// while it exists, else the selected code.
void ShowRates(view::ComboBox& combo, bool seven);

}  // namespace tarvo::pages
