#pragma once

#include <filesystem>
#include <fstream>
#include <string>

namespace tarvo::test {

/// Makes the settings file of a user who has turned the search at start-up off; gives its path.
inline std::string SettingsWithoutSearch(const std::filesystem::path& file) {
  std::ofstream(file) << "AUTOSCAN=FALSE\n";
  return file.string();
}

}  // namespace tarvo::test
