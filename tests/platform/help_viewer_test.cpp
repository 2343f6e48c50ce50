#include "platform/help_viewer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cerrno>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <string>
#include <vector>

#include "platform/poll_loop.h"
#include "support/environment_variable.h"
#include "support/temporary_folder.h"

namespace tarvo::platform {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;

/// A loop whose time can be put forward.
class HastyLoop : public PollLoop {
 public:
  core::TimePoint Now() const override { return PollLoop::Now() + ahead; }
  core::Duration ahead{};
};

bool NoChildIsLeft() {
  siginfo_t info{};
  return waitid(P_ALL, 0, &info, WEXITED | WNOHANG | WNOWAIT) != 0 && errno == ECHILD;
}

class DesktopHelpTest : public testing::Test {
 protected:
  DesktopHelpTest() { std::ofstream(manual) << "<p>Read me.</p>"; }

  /// Puts the desktop's opener, a program of that text, into PATH's only folder.
  void PutOpener(const std::string& text) const {
    std::ofstream(bin / "xdg-open") << text;
    fs::permissions(bin / "xdg-open", fs::perms::owner_all);
  }
  void PutScript(const std::string& commands) const { PutOpener("#!/bin/sh\n" + commands + "\n"); }
  /// One that stays until `Release`.
  void PutStayingScript(const std::string& commands) const { PutScript(stay + commands); }
  void Release() const { std::ofstream(folder / "released").flush(); }

  void Open() {
    help.Open([this](const std::string& file) { failures.push_back(file); });
  }
  bool RunUntil(const std::function<bool()>& done) { return loop.RunUntil(done, std::chrono::seconds(30)); }
  /// What the opener's script wrote, once it has ended.
  std::string Told() {
    EXPECT_TRUE(RunUntil(NoChildIsLeft));
    std::ifstream file(told);
    return {std::istreambuf_iterator<char>(file), {}};
  }

  test::TemporaryFolder bin;
  test::TemporaryFolder folder;
  fs::path manual = folder / "the manual.html";
  fs::path told = folder / "told";
  std::string stay = "while [ ! -e '" + (folder / "released").string() + "' ]; do /bin/sleep 0.01; done\n";
  test::EnvironmentVariable path{"PATH", bin.Path().string()};
  HastyLoop loop;
  DesktopHelp help{loop, manual};
  std::vector<std::string> failures;
};

TEST_F(DesktopHelpTest, GivesTheManualToTheOpener) {
  PutScript("echo \"$# $1\" > '" + told.string() + "'");
  Open();
  EXPECT_EQ(Told(), "1 " + manual.string() + "\n");
  loop.RunOnce({});
  EXPECT_THAT(failures, IsEmpty());
}

TEST_F(DesktopHelpTest, LeavesTheOpenerNoTerminalAndNoFile) {
  const std::ofstream held(folder / "held");
  PutScript("exec 9> '" + told.string() +
            "'\n"
            "for n in 0 1 2; do file=$(/usr/bin/readlink /proc/$$/fd/$n); echo \"$file\" >&9; done\n"
            "for f in /proc/$$/fd/*; do case $(/usr/bin/readlink $f) in */held) echo held >&9;; esac; done\n"
            "read pid name state parent group session terminal rest < /proc/$$/stat\n"
            "[ $session = $$ ] && echo session >&9\n"
            "[ $terminal = 0 ] && echo no terminal >&9");
  Open();
  EXPECT_EQ(Told(), "/dev/null\n/dev/null\n/dev/null\nsession\nno terminal\n");
}

TEST_F(DesktopHelpTest, DoesNotWaitForTheOpener) {
  PutStayingScript("exit 0");
  Open();
  bool turned = false;
  core::Call call(loop, [&] { turned = true; });
  call.Post();
  EXPECT_TRUE(RunUntil([&] { return turned; }));
  EXPECT_FALSE(NoChildIsLeft());
  Release();
  EXPECT_TRUE(RunUntil(NoChildIsLeft));
  EXPECT_THAT(failures, IsEmpty());
}

TEST_F(DesktopHelpTest, TellsTheFileWhenThereIsNoOpener) {
  Open();
  // Not in the turn of the one who asked.
  EXPECT_THAT(failures, IsEmpty());
  loop.RunOnce({});
  EXPECT_THAT(failures, ElementsAre(manual.string()));
  loop.RunOnce({});
  EXPECT_THAT(failures, ElementsAre(manual.string()));
}

TEST_F(DesktopHelpTest, TellsTheFileWhenTheOpenerCannotBeStarted) {
  for (const char* text : {"", "#!/no/such/shell\n"}) {
    SCOPED_TRACE(text);
    PutOpener(text);
    failures.clear();
    Open();
    loop.RunOnce({});
    EXPECT_THAT(failures, ElementsAre(manual.string()));
  }
  fs::permissions(bin / "xdg-open", fs::perms::owner_read);
  failures.clear();
  Open();
  loop.RunOnce({});
  EXPECT_THAT(failures, ElementsAre(manual.string()));
  EXPECT_TRUE(NoChildIsLeft());
}

TEST_F(DesktopHelpTest, TellsTheFileWhenTheOpenerFails) {
  for (const char* commands : {"exit 3", "kill -9 $$"}) {
    SCOPED_TRACE(commands);
    PutScript(commands);
    failures.clear();
    Open();
    EXPECT_TRUE(RunUntil([this] { return !failures.empty(); }));
    EXPECT_THAT(failures, ElementsAre(manual.string()));
    EXPECT_TRUE(NoChildIsLeft());
  }
}

TEST_F(DesktopHelpTest, TakesAnOpenerThatFailsLateForOneThatHasShownIt) {
  PutStayingScript("exit 1");
  Open();
  loop.RunOnce({});
  loop.ahead = std::chrono::minutes(1);
  Release();
  EXPECT_TRUE(RunUntil(NoChildIsLeft));
  loop.RunOnce({});
  EXPECT_THAT(failures, IsEmpty());
}

TEST_F(DesktopHelpTest, TellsEachOfSeveralOpeners) {
  // Of two the one that comes second fails at once.
  PutScript("/bin/mkdir '" + (folder / "first").string() + "' || exit 1\n" + stay);
  Open();
  Open();
  EXPECT_TRUE(RunUntil([this] { return !failures.empty(); }));
  EXPECT_FALSE(NoChildIsLeft());
  Release();
  EXPECT_TRUE(RunUntil(NoChildIsLeft));
  EXPECT_THAT(failures, ElementsAre(manual.string()));
}

TEST_F(DesktopHelpTest, CanBeOpenedAnewFromWithinAFailure) {
  help.Open([this](const std::string& file) {
    failures.push_back(file);
    Open();
  });
  EXPECT_TRUE(RunUntil([this] { return failures.size() == 2; }));
}

TEST_F(DesktopHelpTest, TellsAnEmptyTextWhenThereIsNoManual) {
  PutScript("echo shown > '" + told.string() + "'");
  fs::remove(manual);
  Open();
  loop.RunOnce({});
  EXPECT_THAT(failures, ElementsAre(""));
  EXPECT_EQ(Told(), "");
}

TEST_F(DesktopHelpTest, MayEndBeforeTheOpenerDoes) {
  PutStayingScript("exit 1");
  bool failed = false;
  {
    DesktopHelp shortLived(loop, manual);
    shortLived.Open([&](const std::string& /*file*/) { failed = true; });
    loop.RunOnce({});
  }
  Release();
  int status = 0;
  EXPECT_GT(wait(&status), 0);
  loop.RunOnce({});
  EXPECT_FALSE(failed);
}

TEST(DesktopHelpFile, StandsBesideTheProgramsFolder) {
  EXPECT_EQ(DesktopHelp::ManualOf("/usr/bin"), "/usr/share/doc/tarvo/manual.html");
  EXPECT_EQ(DesktopHelp::ManualOf("/opt/tarvo/bin/"), "/opt/tarvo/share/doc/tarvo/manual.html");
  EXPECT_EQ(DesktopHelp::ManualOf("."), fs::current_path().parent_path() / "share/doc/tarvo/manual.html");
}

}  // namespace
}  // namespace tarvo::platform
