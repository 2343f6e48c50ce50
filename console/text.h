#pragma once

#include <string>
#include <string_view>

namespace tarvo::console {

/// The code points of a UTF-8 text; each byte that is no part of one becomes U+FFFD.
std::u32string Decode(std::string_view text);
std::string Encode(std::u32string_view text);

/// For a terminal: like `Decode`, with a blank for each control character, so that no text moves the cursor.
std::u32string Printable(std::string_view text);

}  // namespace tarvo::console
