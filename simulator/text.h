#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tarvo::simulator {

/// What is wrong with a text of the user's; empty when all is well.
using Complaint = std::string;

std::string Quoted(std::string_view text);

/// The text up to `separator`, which goes from `rest` together with it.
std::string_view CutAt(std::string_view& rest, char separator);

/// A whole number, decimal or after "0x"; nothing for any other text or one out of bounds.
std::optional<unsigned> Number(std::string_view text, unsigned lowest, unsigned highest);

}  // namespace tarvo::simulator
