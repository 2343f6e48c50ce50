#pragma once

#include <string_view>

namespace tarvo::shell {

inline constexpr char kTitle[] = "Tarvo";

/// Major, minor and revision: "1.0.0".
std::string_view Version();

}  // namespace tarvo::shell
