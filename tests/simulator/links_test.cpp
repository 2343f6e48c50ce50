#include "simulator/links.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>

#include "support/temporary_folder.h"

namespace tarvo::simulator {
namespace {

namespace fs = std::filesystem;

TEST(SimulatorLinks, MakeTheirDirectoryAndGoAtTheEnd) {
  const test::TemporaryFolder directory;
  const fs::path ports = directory.Path() / "deep" / "ports";
  {
    Links links(ports);
    ASSERT_TRUE(links.Make("com1", "/dev/pts/77").Ok());
    ASSERT_TRUE(links.Make("com2", "/dev/pts/78").Ok());
    EXPECT_EQ(fs::read_symlink(ports / "com1"), "/dev/pts/77");
    EXPECT_EQ(fs::read_symlink(ports / "com2"), "/dev/pts/78");
  }
  EXPECT_TRUE(fs::is_empty(ports));
}

TEST(SimulatorLinks, ReplaceOldOnesThatLeadNowhere) {
  const test::TemporaryFolder directory;
  fs::create_symlink("/nowhere", directory.Path() / "com1");
  fs::create_symlink("/nowhere", directory.Path() / ".com1.new");
  const Links unused(directory.Path());
  Links links(directory.Path());
  EXPECT_TRUE(links.Make("com1", "/dev/pts/77").Ok());
  EXPECT_EQ(fs::read_symlink(directory.Path() / "com1"), "/dev/pts/77");
}

TEST(SimulatorLinks, LeaveALinkThatAnotherHasTakenOver) {
  const test::TemporaryFolder directory;
  Links later(directory.Path());
  {
    Links links(directory.Path());
    ASSERT_TRUE(links.Make("com1", "/dev/pts/77").Ok());
    ASSERT_TRUE(later.Make("com1", "/dev/pts/78").Ok());
  }
  EXPECT_EQ(fs::read_symlink(directory.Path() / "com1"), "/dev/pts/78");
}

TEST(SimulatorLinks, GoOneByOneWhenTold) {
  const test::TemporaryFolder directory;
  Links links(directory.Path());
  ASSERT_TRUE(links.Make("com1", "/dev/pts/77").Ok());
  ASSERT_TRUE(links.Make("com2", "/dev/pts/78").Ok());
  links.Remove("com1");
  links.Remove("com3");
  EXPECT_FALSE(fs::is_symlink(directory.Path() / "com1"));
  EXPECT_EQ(fs::read_symlink(directory.Path() / "com2"), "/dev/pts/78");
  ASSERT_TRUE(links.Make("com1", "/dev/pts/79").Ok());
  EXPECT_EQ(fs::read_symlink(directory.Path() / "com1"), "/dev/pts/79");
}

TEST(SimulatorLinks, ReplaceNothingThatIsNoLink) {
  const test::TemporaryFolder directory;
  const fs::path file = directory.Path() / "com1";
  std::ofstream(file) << "precious";
  Links links(directory.Path());
  EXPECT_EQ(links.Make("com1", "/dev/pts/77").Description(), file.string() + ": is there and is no link");
  EXPECT_TRUE(fs::is_regular_file(file));
}

TEST(SimulatorLinks, TellWhenTheDirectoryCannotBeMade) {
  const test::TemporaryFolder directory;
  std::ofstream(directory.Path() / "file") << "x";
  Links links(directory.Path() / "file" / "ports");
  EXPECT_THAT(links.Make("com1", "/dev/pts/77").Description(), ::testing::HasSubstr("Not a directory"));
}

}  // namespace
}  // namespace tarvo::simulator
