#include <stdlib.h>
#include <sys/utsname.h>

#include <array>
#include <charconv>
#include <exception>
#include <fstream>
#include <iostream>
#include <string>
#include <string_view>
#include <thread>

#include "bench/sections.h"

namespace tarvo::bench {
namespace {

constexpr char kUsage[] =
    "usage: ./bench/run [--quick] [--seed N] [SECTION]...\n"
    "Measures and prints one table; status 1 when a bar is missed. Sections: latency faults poll console window; all\n"
    "of them when none is named. --quick does a tenth of the work: to see that it works, not to measure.\n";

struct Section {
  std::string_view name;
  void (*measure)(const Options&, Report&);
};

constexpr std::array kSections = {
    Section{"latency", MeasureLatency}, Section{"faults", MeasureFaults}, Section{"poll", MeasurePoll},
    Section{"console", MeasureConsole}, Section{"window", MeasureWindow},
};

constexpr int kWrongUsage = 2;

int Refuse(const std::string& why) {
  std::cerr << "bench: " << why << "\n" << kUsage;
  return kWrongUsage;
}

double LoadOfMachine() {
  double load = 0;
  getloadavg(&load, 1);
  return load;
}

/// What the numbers depend on: "AMD EPYC, 2 processors, Linux 6.1.0".
std::string Machine() {
  std::string processor = "a processor without a name";
  std::ifstream file("/proc/cpuinfo");
  for (std::string line; std::getline(file, line);) {
    if (!line.starts_with("model name")) continue;
    processor = line.substr(line.find(':') + 2);
    break;
  }
  utsname system{};
  uname(&system);
  return processor + ", " + std::to_string(std::thread::hardware_concurrency()) + " processors, " + system.sysname +
         " " + system.release;
}

bool Known(std::string_view name) {
  for (const Section& section : kSections) {
    if (section.name == name) return true;
  }
  return false;
}

int Main(int count, char** values) {
  Options options;
  std::string wanted;
  for (int i = 1; i < count; ++i) {
    const std::string_view argument = values[i];
    if (argument == "--help") {
      std::cout << kUsage;
      return 0;
    }
    if (argument == "--quick") {
      options.quick = true;
    } else if (argument == "--seed" && i + 1 < count) {
      const std::string_view text = values[++i];
      const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), options.seed);
      if (error != std::errc() || end != text.data() + text.size()) return Refuse("--seed needs a number");
    } else if (Known(argument)) {
      wanted += " " + std::string(argument) + " ";
    } else {
      return Refuse("nothing is known about " + std::string(argument));
    }
  }
  const double loadBefore = LoadOfMachine();
  Report report;
  for (const Section& section : kSections) {
    if (wanted.empty() || wanted.find(" " + std::string(section.name) + " ") != std::string::npos) {
      section.measure(options, report);
    }
  }
  std::cout << Machine() << ", load " << Number(loadBefore, 2) << " before and " << Number(LoadOfMachine(), 2)
            << " after\n\n"
            << report.Text();
  return report.AllMet() ? 0 : 1;
}

}  // namespace
}  // namespace tarvo::bench

int main(int count, char** values) {
  try {
    return tarvo::bench::Main(count, values);
  } catch (const std::exception& fault) {
    std::cerr << "bench: " << fault.what() << "\n";
    return 1;
  }
}
