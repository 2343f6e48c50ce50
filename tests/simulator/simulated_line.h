#pragma once

#include <gtest/gtest.h>

#include <optional>
#include <span>
#include <utility>
#include <vector>

#include "core/virtual_scheduler.h"
#include "played_module.h"
#include "simulator/line.h"

namespace tarvo::simulator {

/// A line with Belks that stand still, in virtual time, and what has come back over it.
class SimulatedLine : public ::testing::Test {
 protected:
  void Put(const ModuleOptions& options) { modules_.emplace_back(MakeModel("belk"), options, time.Now()); }
  void Put(int address, const char* line) {
    ModuleOptions options = StillWith({});
    options.setting = {address, LineOf(line)};
    Put(options);
  }

  Line& Start() {
    line_.emplace(time, std::exchange(modules_, {}), [this](std::span<const std::uint8_t> bytes) {
      if (got.empty()) firstByte = time.Now() - sentAt;
      got.insert(got.end(), bytes.begin(), bytes.end());
      lastByte = time.Now() - sentAt;
      ++chunks;
    });
    return *line_;
  }

  void Arrive(const test::Bytes& bytes, const char* line = "9600,n,8,1") {
    sentAt = time.Now();
    line_->Arrived(bytes, LineOf(line));
  }
  /// What comes back within a second.
  test::Bytes Exchange(const test::Bytes& request, const char* line = "9600,n,8,1") {
    got.clear();
    Arrive(request, line);
    time.Run(std::chrono::seconds(1));
    return got;
  }

  core::VirtualScheduler time;
  test::Bytes got;
  core::TimePoint sentAt{};
  core::Duration firstByte{};
  core::Duration lastByte{};
  int chunks = 0;

 private:
  std::vector<Module> modules_;
  std::optional<Line> line_;
};

}  // namespace tarvo::simulator
