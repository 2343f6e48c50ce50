#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "state/word.h"

namespace tarvo::state {

/// True for an optional sign and decimal digits with at most one decimal separator, "." or ",", blanks around it left
/// aside.
bool IsNumeric(std::string_view text);

/// The integer nearest to a numeric text, ties to even. Throws the fault "Type mismatch" for a text that is not
/// numeric, "Overflow" for a value that does not fit.
std::int32_t ToInteger(std::string_view text);

/// The real number of a numeric text; throws "Type mismatch" for one that is not.
double ToNumber(std::string_view text);

/// `text` with its first "." turned into ","; a later one stays.
std::string PointToComma(std::string_view text);

/// The word that is sent for a number of a page: a negative value has 65536 added. Throws as `ToInteger` does, and
/// "Overflow" outside -32768 to 65535.
Word ToWord(std::string_view text);

/// The low 16 bits of a numeric text's integer. Throws as `ToInteger` does.
Word LowWord(std::string_view text);

/// `value` with its last `decimals` digits behind a point: -5 and 1 give "-0.5".
std::string WithDecimals(int value, int decimals);

/// Nearest integer, ties to even. Throws "Overflow" for what fits none, and for what is no number.
std::int32_t RoundToInteger(double value);

/// Nearest integer, ties to even, of a value that fits one.
int RoundTiesToEven(double value);

}  // namespace tarvo::state
