#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "simulator/module.h"

namespace tarvo::simulator {

inline constexpr int kPorts = 4;

/// A module that the command line asks for.
struct ModuleRequest {
  int port = 1;  ///< 1 to 4
  std::string model;
  ModuleOptions options;
};

/// What the command line tells.
struct Options {
  std::vector<ModuleRequest> modules;
  std::string linkDirectory;  ///< empty: no links
  bool help = false;
};

/// The command line read: options, or in `error` one line on what is wrong with it.
struct ParsedOptions {
  Options options;
  std::string error;
};

/// `arguments` without the program's name.
ParsedOptions ParseOptions(std::span<const std::string_view> arguments);

/// What `--help` prints.
std::string HelpText();

}  // namespace tarvo::simulator
