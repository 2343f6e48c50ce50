#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "core/fault.h"

namespace tarvo::simulator {

/// The links with fixed names that lead to the ports. Its end removes those that still do.
class Links {
 public:
  /// `directory` is made when the first link is.
  explicit Links(std::filesystem::path directory) : directory_(std::move(directory)) {}
  Links(const Links&) = delete;
  Links& operator=(const Links&) = delete;
  ~Links();

  /// Makes the link `name`, in the place of an old one. A fault when the directory cannot be made or written, or when
  /// something that is no link has the name.
  core::Status Make(const std::string& name, const std::string& target);
  /// Takes the link `name` away, if it still leads where it was made to.
  void Remove(const std::string& name);

 private:
  struct Made {
    std::filesystem::path path;
    std::filesystem::path target;
  };

  static void TakeAway(const Made& link);

  std::filesystem::path directory_;
  std::vector<Made> made_;
};

}  // namespace tarvo::simulator
