#include "console/options.h"

#include <utility>

namespace tarvo::console {

namespace {

/// Where the value of an option goes; null for an option that takes none or is not known.
std::string* PlaceOf(std::string_view option, Options& options) {
  if (option == "--settings") return &options.settings.emplace();
  if (option.size() == 6 && option.starts_with("--com") && option[5] >= '1' && option[5] <= '4') {
    return &options.devices[static_cast<std::size_t>(option[5] - '1')];
  }
  return nullptr;
}

}  // namespace

Options ParseOptions(std::span<const char* const> arguments) {
  Options options;
  bool onlyScript = false;
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    const std::string_view argument = arguments[i];
    if (onlyScript || !argument.starts_with('-')) {
      if (options.script) {
        options.error = "more than one script: " + std::string(argument);
        return options;
      }
      options.script = argument;
    } else if (argument == "--") {
      onlyScript = true;
    } else if (argument == "--json") {
      options.json = true;
    } else if (argument == "--help") {
      options.help = true;
    } else {
      const std::size_t equals = argument.find('=');
      const std::string option(argument.substr(0, equals));
      std::string* place = PlaceOf(option, options);
      if (place == nullptr) {
        options.error = "unknown option " + std::string(argument);
        return options;
      }
      if (equals != std::string_view::npos) {
        *place = argument.substr(equals + 1);
      } else if (i + 1 < arguments.size()) {
        *place = arguments[++i];
      }
      if (place->empty()) {
        options.error = "a value is missing after " + option;
        return options;
      }
    }
  }
  return options;
}

}  // namespace tarvo::console
