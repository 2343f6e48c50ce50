#include "console/options.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <vector>

namespace tarvo::console {
namespace {

Options Given(std::initializer_list<const char*> arguments) {
  const std::vector<const char*> list(arguments);
  return ParseOptions(list);
}

TEST(CommandLine, MayBeEmpty) {
  const Options options = Given({});
  EXPECT_EQ(options.error, "");
  EXPECT_FALSE(options.json);
  EXPECT_EQ(options.settings, std::nullopt);
  EXPECT_EQ(options.script, std::nullopt);
  EXPECT_EQ(options.devices[0], "");
}

TEST(CommandLine, TakesEveryOption) {
  const Options options = Given({"--json", "--settings", "my.conf", "--com1", "/dev/ttyUSB0", "--com2", "b", "--com3=c",
                                 "--com4", "d", "bench.txt"});
  EXPECT_EQ(options.error, "");
  EXPECT_TRUE(options.json);
  EXPECT_EQ(options.settings, "my.conf");
  EXPECT_EQ(options.devices, (std::array<std::string, 4>{"/dev/ttyUSB0", "b", "c", "d"}));
  EXPECT_EQ(options.script, "bench.txt");
}

TEST(CommandLine, TakesOptionsBehindTheScript) {
  const Options options = Given({"bench.txt", "--json"});
  EXPECT_EQ(options.script, "bench.txt");
  EXPECT_TRUE(options.json);
}

TEST(CommandLine, TakesAScriptThatLooksLikeAnOption) {
  EXPECT_EQ(Given({"--", "--json"}).script, "--json");
}

TEST(CommandLine, TellsWhatIsWrong) {
  EXPECT_EQ(Given({"--jason"}).error, "unknown option --jason");
  EXPECT_EQ(Given({"-j"}).error, "unknown option -j");
  EXPECT_EQ(Given({"--com5", "x"}).error, "unknown option --com5");
  EXPECT_EQ(Given({"--com0", "x"}).error, "unknown option --com0");
  EXPECT_EQ(Given({"--json=yes"}).error, "unknown option --json=yes");
  EXPECT_EQ(Given({"--com1"}).error, "a value is missing after --com1");
  EXPECT_EQ(Given({"--com1", ""}).error, "a value is missing after --com1");
  EXPECT_EQ(Given({"--settings="}).error, "a value is missing after --settings");
  EXPECT_EQ(Given({"a.txt", "b.txt"}).error, "more than one script: b.txt");
}

}  // namespace
}  // namespace tarvo::console
