#pragma once

#include <array>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace tarvo::console {

/// What the command line asks for.
struct Options {
  bool help = false;
  bool json = false;
  std::optional<std::string> settings;
  std::array<std::string, 4> devices;  ///< behind COM1 to COM4, empty where not given
  std::optional<std::string> script;
  std::string error;  ///< what is wrong with it, empty when nothing is
};

/// `arguments` without the program's name.
Options ParseOptions(std::span<const char* const> arguments);

inline constexpr std::string_view kUsage =
    "tarvo-console [--json] [--settings FILE] [--com1 DEVICE] ... [--com4 DEVICE] [SCRIPT]";

}  // namespace tarvo::console
