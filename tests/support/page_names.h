#pragma once

#include <string>

namespace tarvo::test {

/// The controls that a test of any page reaches for. What is not told goes by the model: "StartBelk".
struct PageNames {
  std::string model;
  std::string label = "lab" + model;
  std::string menu = "Menu" + model;
  std::string start = "Start" + model;
  std::string stop = "Stop" + model;
  std::string message = "Message" + model;
};

}  // namespace tarvo::test
