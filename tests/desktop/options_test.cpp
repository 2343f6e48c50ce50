#include "desktop/options.h"

namespace tarvo::test {
namespace {

using desktop::Options;
using desktop::ParseOptions;

TEST(DesktopOptions, NothingGivenIsTheUsersOwn) {
  const Options options = ParseOptions({});
  EXPECT_TRUE(options.error.isEmpty());
  EXPECT_TRUE(options.settings.isEmpty());
  EXPECT_TRUE(options.screenshot.isEmpty());
  EXPECT_TRUE(options.palette.isEmpty());
}

TEST(DesktopOptions, TakeTheirValues) {
  const Options options = ParseOptions({"--settings", "/tmp/a.conf", "--com1", "/dev/ttyUSB0", "--com4=/dev/pts/3",
                                        "--screenshot", "/tmp/a.png", "--after", "250", "--palette", "dark", "--click",
                                        "StartBelk", "--click", "TotIN(0)"});
  EXPECT_TRUE(options.error.isEmpty()) << options.error.toStdString();
  EXPECT_EQ(options.settings, "/tmp/a.conf");
  EXPECT_EQ(options.devices[0], "/dev/ttyUSB0");
  EXPECT_EQ(options.devices[1], "");
  EXPECT_EQ(options.devices[3], "/dev/pts/3");
  EXPECT_EQ(options.screenshot, "/tmp/a.png");
  EXPECT_EQ(options.after, 250);
  EXPECT_EQ(options.palette, "dark");
  EXPECT_EQ(options.clicks, QStringList({"StartBelk", "TotIN(0)"}));
}

TEST(DesktopOptions, SayWhatIsWrong) {
  const QStringList rows[] = {{"--com5", "/dev/ttyUSB0"}, {"--com1"},        {"file"},
                              {"--after", "soon"},        {"--after", "-1"}, {"--palette", "pink"}};
  for (const QStringList& row : rows) EXPECT_FALSE(ParseOptions(row).error.isEmpty()) << row.join(' ').toStdString();
}

}  // namespace
}  // namespace tarvo::test
