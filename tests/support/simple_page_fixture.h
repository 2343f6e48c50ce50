#pragma once

#include <algorithm>
#include <cstdint>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "pages/device_page.h"
#include "support/page_fixture.h"
#include "support/run_task.h"

namespace tarvo::test {

/// A page and its module, for tests that run on several pages and ask for little of each.
struct SimplePage {
  const char* model;
  /// The module, all but zeros: numbers and words.
  std::vector<std::pair<int, int>> registers;
  /// What a session goes on with.
  std::vector<std::string> polls;

  friend std::ostream& operator<<(std::ostream& out, const SimplePage& page) { return out << page.model; }
};

inline const SimplePage& BelkPage() {
  static const SimplePage page = {"Belk", {{40001, 0x0103}, {40008, 10}, {40010, 0x0101}}, {"reads 40002 x9"}};
  return page;
}

inline const SimplePage& CobinPage() {
  static const SimplePage page = {
      "Cobin", {{40001, 0x0203}, {40004, 50}, {40006, 0x0101}, {40070, 0x0101}}, {"reads 40002 x5"}};
  return page;
}

inline const SimplePage& DravoPage() {
  static const SimplePage page = {"Dravo",
                                  {{40001, 0x0303},
                                   {40002, 0x0100},
                                   {40003, 10000},
                                   {40005, 10000},
                                   {40007, 10000},
                                   {40009, 0x0101},
                                   {40073, 0x0101}},
                                  {"reads 40002 x12"}};
  return page;
}

inline const SimplePage& LumetPage() {
  static const SimplePage page = {"Lumet",
                                  {{40001, 0x0A02}, {40018, 0x0101}, {40019, 10}, {40021, 0x0101}, {40085, 0x0101}},
                                  {"reads 40002 x9", "reads 40011 x9"}};
  return page;
}

/// Such a page on the screen, and its module on COM1.
class SimplePageFixture : public PageFixture {
 protected:
  explicit SimplePageFixture(const SimplePage& page) : PageFixture(page.model), polls_(page.polls) {
    for (const auto& [number, word] : page.registers) module[number] = static_cast<std::uint16_t>(word);
    OpenPage();
  }

  /// What the search makes the page do.
  void ReadEEPromFlags() { RunTask(scheduler, dynamic_cast<pages::DevicePage&>(Page()).ReadEEPromFlags()); }
  /// What went over the line since the last call, the polls of a session left out.
  std::vector<std::string> Exchanges() {
    std::vector<std::string> exchanges = module.TakeLog();
    std::erase_if(exchanges, [this](const std::string& exchange) { return std::ranges::count(polls_, exchange) > 0; });
    return exchanges;
  }
  void ExpectOffTheLine() {
    Run(std::chrono::seconds(1));
    EXPECT_EQ(ports.Attempts(), 0);
    EXPECT_THAT(module.TakeLog(), testing::IsEmpty());
    EXPECT_TRUE(TimersRest());
  }

 private:
  std::vector<std::string> polls_;
};

}  // namespace tarvo::test
