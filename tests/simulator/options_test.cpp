#include "simulator/options.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "played_module.h"

namespace tarvo::simulator {
namespace {

ParsedOptions Parse(const std::vector<std::string_view>& arguments) {
  return ParseOptions(arguments);
}

/// " belk cobin ..."
std::string KnownModels() {
  std::string known;
  for (const std::string& name : ModelNames()) known += ' ' + name;
  return known;
}

TEST(SimulatorOptions, PlayABelkWithNothingMoreTold) {
  const ParsedOptions parsed = Parse({"--com1", "belk"});
  EXPECT_EQ(parsed.error, "");
  ASSERT_EQ(parsed.options.modules.size(), 1U);
  const ModuleRequest& module = parsed.options.modules[0];
  EXPECT_EQ(module.port, 1);
  EXPECT_EQ(module.model, "belk");
  EXPECT_EQ(module.options.setting, (Setting{1, LineOf("9600,n,8,1")}));
  EXPECT_EQ(module.options.firmware, 3);
  EXPECT_FALSE(module.options.still);
  EXPECT_TRUE(module.options.presets.empty());
  EXPECT_EQ(parsed.options.linkDirectory, "");
}

TEST(SimulatorOptions, TakeAllOfAModule) {
  const ParsedOptions parsed = Parse({"--com4", "belk:addr=255,line=38400o81,fw=0x12,40008=20,40009=0x81"});
  EXPECT_EQ(parsed.error, "");
  ASSERT_EQ(parsed.options.modules.size(), 1U);
  const ModuleOptions& options = parsed.options.modules[0].options;
  EXPECT_EQ(parsed.options.modules[0].port, 4);
  EXPECT_EQ(options.setting, (Setting{255, LineOf("38400,o,8,1")}));
  EXPECT_EQ(options.firmware, 0x12);
  ASSERT_EQ(options.presets.size(), 2U);
  EXPECT_EQ(options.presets[0].reg.Number(), 40008);
  EXPECT_EQ(options.presets[0].value.Unsigned(), 20);
  EXPECT_EQ(options.presets[1].reg.Number(), 40009);
  EXPECT_EQ(options.presets[1].value.Unsigned(), 0x81);
}

TEST(SimulatorOptions, TakeSeveralModulesOnAPort) {
  const ParsedOptions parsed = Parse({"--com1", "belk", "--com2", "belk", "--com1", "belk:addr=2"});
  EXPECT_EQ(parsed.error, "");
  ASSERT_EQ(parsed.options.modules.size(), 3U);
  EXPECT_EQ(parsed.options.modules[2].port, 1);
}

TEST(SimulatorOptions, GiveStillAndSeedToEachModule) {
  const ParsedOptions parsed = Parse({"--com1", "belk", "--seed", "40", "--com2", "belk", "--still"});
  EXPECT_EQ(parsed.error, "");
  ASSERT_EQ(parsed.options.modules.size(), 2U);
  EXPECT_TRUE(parsed.options.modules[0].options.still && parsed.options.modules[1].options.still);
  EXPECT_EQ(parsed.options.modules[0].options.seed, 40U);
  EXPECT_EQ(parsed.options.modules[1].options.seed, 41U) << "two modules do not count alike";
}

TEST(SimulatorOptions, TakeTheDirectoryOfTheLinks) {
  EXPECT_EQ(Parse({"--com1", "belk", "--link", "/tmp/x"}).options.linkDirectory, "/tmp/x");
}

TEST(SimulatorOptions, AskForHelpWhateverElseIsTold) {
  EXPECT_TRUE(Parse({"--help"}).options.help);
  EXPECT_TRUE(Parse({"--com1", "belk", "-h"}).options.help);
}

TEST(SimulatorOptions, TellInTheHelpEachOptionAndModel) {
  const std::string help = HelpText();
  for (const char* word : {"--com1", "--com4", "--link", "--seed", "--still", "addr=", "line=", "fw="}) {
    EXPECT_THAT(help, ::testing::HasSubstr(word));
  }
  EXPECT_THAT(help, ::testing::HasSubstr("\nModels:" + KnownModels() + "\n"));
}

TEST(SimulatorOptions, TellWhatIsWrongInOneLine) {
  struct Row {
    std::vector<std::string_view> arguments;
    std::string error;
  };
  const std::string known = KnownModels();
  const std::vector<Row> rows = {
      {{}, "no module to play, tell one such as: --com1 belk"},
      {{"--link", "/tmp"}, "no module to play, tell one such as: --com1 belk"},
      {{"belk"}, "unknown option 'belk'"},
      {{"--com0", "belk"}, "unknown option '--com0'"},
      {{"--com5", "belk"}, "unknown option '--com5'"},
      {{"--com11", "belk"}, "unknown option '--com11'"},
      {{"--fast"}, "unknown option '--fast'"},
      {{""}, "unknown option ''"},
      {{"--com1"}, "--com1 needs a value"},
      {{"--com1", ""}, "--com1 needs a value"},
      {{"--com1", "belk", "--link"}, "--link needs a value"},
      {{"--com1", "belk", "--seed", "x"}, "'x' is no seed, a whole number"},
      {{"--com1", "belk", "--seed", "-1"}, "'-1' is no seed, a whole number"},
      {{"--com1", "bolk"}, "no model 'bolk', there is:" + known},
      {{"--com1", ":addr=1"}, "no model '', there is:" + known},
      {{"--com1", "belk:addr=0"}, "belk: '0' is no address, 1 to 255"},
      {{"--com1", "belk:addr=256"}, "belk: '256' is no address, 1 to 255"},
      {{"--com1", "belk:addr=1x"}, "belk: '1x' is no address, 1 to 255"},
      {{"--com1", "belk:addr"}, "belk: '' is no address, 1 to 255"},
      {{"--com1", "belk:line=9600"}, "belk: '9600' is no line, such as 9600n81 or 38400e81"},
      {{"--com1", "belk:line=9601n81"}, "belk: '9601n81' is no line, such as 9600n81 or 38400e81"},
      {{"--com1", "belk:line=9600n82"}, "belk: '9600n82' is no line, such as 9600n81 or 38400e81"},
      {{"--com1", "belk:line=9600x81"}, "belk: '9600x81' is no line, such as 9600n81 or 38400e81"},
      {{"--com1", "belk:line=n81"}, "belk: 'n81' is no line, such as 9600n81 or 38400e81"},
      {{"--com1", "belk:fw=256"}, "belk: '256' is no firmware release, 0 to 255"},
      {{"--com1", "belk:fw=0x"}, "belk: '0x' is no firmware release, 0 to 255"},
      {{"--com1", "belk:speed=1"}, "belk: unknown option 'speed'"},
      {{"--com1", "belk:addr=1,,fw=3"}, "belk: unknown option ''"},
      {{"--com1", "belk:40012=1"}, "belk: no register 40012"},
      {{"--com1", "belk:40000=1"}, "belk: unknown option '40000'"},
      {{"--com1", "belk:40008=65536"}, "belk: '65536' is no value for 40008, 0 to 65535"},
      {{"--com1", "belk:40008"}, "belk: '' is no value for 40008, 0 to 65535"},
      {{"--com1", "belk:40010=0x0101"}, "belk: 40010 is told by addr= and line="},
      {{"--com1", "belk", "--com1", "belk"}, "two modules with address 1 on com1"},
  };
  for (const Row& row : rows) EXPECT_EQ(Parse(row.arguments).error, row.error);
}

}  // namespace
}  // namespace tarvo::simulator
