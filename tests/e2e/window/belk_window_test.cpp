// The window as a program, without a display, on a simulated Belk module.

#include <QImage>
#include <chrono>
#include <sstream>
#include <thread>

#include "e2e/belk_bench.h"

namespace tarvo {
namespace {

using test::ChildProcess;
using test::kNotBelk;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class BelkWindow : public test::BelkBench {
 protected:
  std::unique_ptr<ChildProcess> OpenWindow(const std::vector<std::string>& arguments) const {
    std::vector<std::string> command = {"env",
                                        "QT_QPA_PLATFORM=offscreen",
                                        TARVO_WINDOW,
                                        "--settings",
                                        test::SettingsWithoutSearch(folder / "window-settings"),
                                        "--palette",
                                        "light",
                                        "--com1",
                                        Device()};
    command.insert(command.end(), arguments.begin(), arguments.end());
    return std::make_unique<ChildProcess>(command);
  }

  /// What the window looks like a while after it was opened on the page and those controls were clicked.
  QImage Picture(const std::vector<std::string>& clicks) const {
    const std::string file = (folder / "picture.png").string();
    std::filesystem::remove(file);
    std::vector<std::string> arguments = {"--screenshot", file, "--after", "700"};
    arguments.insert(arguments.end(), {"--click", "labBelk"});
    for (const std::string& name : clicks) arguments.insert(arguments.end(), {"--click", name});
    const auto window = OpenWindow(arguments);
    EXPECT_EQ(window->WaitWithin(), 0);
    EXPECT_THAT(Complaints(*window), IsEmpty());
    QImage picture(QString::fromStdString(file));
    EXPECT_FALSE(picture.isNull());
    return picture;
  }

  /// What the window itself said on its standard error, without the toolkit's remarks.
  static std::vector<std::string> Complaints(const ChildProcess& window) {
    std::vector<std::string> complaints;
    std::istringstream lines(window.Errors());
    for (std::string line; std::getline(lines, line);) {
      if (line.starts_with("tarvo: ")) complaints.push_back(line);
    }
    return complaints;
  }

  /// True when a program comes to hold a device for longer than a moment.
  static bool KeepsOpen(const ChildProcess& program, const std::string& device) {
    constexpr std::chrono::milliseconds kMoment(100);
    const auto over = std::chrono::steady_clock::now() + ChildProcess::kPatience;
    while (std::chrono::steady_clock::now() < over) {
      if (!program.HasOpen(device)) {
        std::this_thread::sleep_for(kMoment / 10);
        continue;
      }
      std::this_thread::sleep_for(kMoment);
      if (program.HasOpen(device)) return true;
    }
    return false;
  }

  /// Dots that are as good as red.
  static int RedDots(const QImage& picture) {
    int dots = 0;
    for (int y = 0; y < picture.height(); ++y) {
      for (int x = 0; x < picture.width(); ++x) {
        const QColor colour = picture.pixelColor(x, y);
        if (colour.red() > 170 && colour.green() < 90 && colour.blue() < 90) ++dots;
      }
    }
    return dots;
  }
};

TEST_F(BelkWindow, HoldsThePortInASession) {
  StartSimulator("belk");
  const auto window = OpenWindow({"--click", "labBelk", "--click", "StartBelk", "--screenshot",
                                  (folder / "picture.png").string(), "--after", "1500"});
  OpenConsole();
  ASSERT_TRUE(KeepsOpen(*window, Device()));
  EXPECT_EQ(Do("click StartBelk"), kNotBelk);
  Do("answer OK");
  EXPECT_EQ(window->WaitWithin(), 0);
  StartSession();
}

TEST_F(BelkWindow, ShowsTheOverflowsOfTheModuleInRed) {
  StartSimulator("belk:40002=0x0000");
  const int without = RedDots(Picture({"StartBelk"}));
  StartSimulator("belk:40002=0x1F00");
  const int with = RedDots(Picture({"StartBelk"}));
  EXPECT_GT(with, without + 5 * 20);
}

TEST_F(BelkWindow, LooksOtherWithASessionThanWithout) {
  StartSimulator("belk:40007=65535");
  const QImage offline = Picture({});
  const QImage online = Picture({"StartBelk"});
  EXPECT_EQ(offline.size(), online.size());
  EXPECT_NE(offline, online);
}

TEST_F(BelkWindow, TellsAClickOnWhatIsNotThere) {
  const auto window =
      OpenWindow({"--click", "Nothing", "--screenshot", (folder / "picture.png").string(), "--after", "10"});
  EXPECT_EQ(window->WaitWithin(), 0);
  EXPECT_THAT(Complaints(*window), ElementsAre("tarvo: click Nothing: there is no control of that name"));
}

TEST_F(BelkWindow, ShowsTheMessageOfABadStartAndCanEnd) {
  StartSimulator("belk:40001=0x0203");
  const QImage plain = Picture({});
  const QImage told = Picture({"StartBelk"});
  EXPECT_NE(plain, told);
}

TEST_F(BelkWindow, TellsASettingsFileThatCannotBeRead) {
  std::filesystem::create_directory(folder / "window-settings");
  const auto window = OpenWindow({"--screenshot", (folder / "picture.png").string(), "--after", "10"});
  EXPECT_EQ(window->WaitWithin(), 0);
  EXPECT_THAT(Complaints(*window), ElementsAre(HasSubstr(test::SettingsWithoutSearch(folder / "window-settings"))));
}

}  // namespace
}  // namespace tarvo
