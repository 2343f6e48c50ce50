#pragma once

#include <cstdio>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "support/child_process.h"

namespace tarvo::test {

/// What mbpoll, another's Modbus master, read or said.
struct Polled {
  int status = -1;
  std::map<int, int> registers;  // by mbpoll's reference, 1 for 40001
  std::string errors;
};

/// Runs mbpoll once on `device` with what `options` say and, when there are any, values to write.
inline Polled RunMbpoll(const std::string& device, const std::string& options, const std::vector<int>& values = {}) {
  std::vector<std::string> command = {"mbpoll", "-m", "rtu", "-t", "4", "-1", "-o", "0.3"};
  std::istringstream words(options);
  for (std::string word; words >> word;) command.push_back(word);
  command.push_back(device);
  for (const int value : values) command.push_back(std::to_string(value));
  ChildProcess mbpoll(command);
  Polled polled;
  std::istringstream lines(mbpoll.Output());
  for (std::string line; std::getline(lines, line);) {
    int reference = 0;
    int value = 0;
    if (std::sscanf(line.c_str(), "[%d]: %d", &reference, &value) == 2) polled.registers[reference] = value;
  }
  polled.errors = mbpoll.Errors();
  polled.status = mbpoll.WaitWithin();
  return polled;
}

}  // namespace tarvo::test
