#include <QDialog>
#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>
#include <QWidget>
#include <memory>

#include "desktop/front.h"
#include "desktop/qt_scheduler.h"
#include "desktop/text.h"
#include "desktop/widgets/mark.h"
#include "desktop/widgets/message_line.h"
#include "desktop/widgets/value_box.h"
#include "platform/com_ports.h"
#include "platform/settings_file.h"
#include "shell/program.h"
#include "support/memory_files.h"
#include "support/memory_help.h"
#include "support/memory_values.h"
#include "support/window_hands.h"

namespace tarvo::test {
namespace {

constexpr int kPatience = 15000;

/// The simulator with one module on a pseudo terminal.
class Simulator {
 public:
  explicit Simulator(const QString& module) {
    process_.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process_.start(TARVO_SIM, {"--com1", module, "--still", "--link", folder_.path()});
  }
  ~Simulator() {
    process_.terminate();
    if (!process_.waitForFinished(3000)) process_.kill();
  }
  Simulator(const Simulator&) = delete;
  Simulator& operator=(const Simulator&) = delete;

  std::string Port() const { return QDir(folder_.path()).filePath("com1").toStdString(); }
  bool Ready() {
    return QTest::qWaitFor([this] { return QFileInfo::exists(desktop::ToQt(Port())); }, kPatience);
  }

 private:
  QTemporaryDir folder_;
  QProcess process_;
};

/// The whole program in its window, on one port.
class WholeWindow {
 public:
  explicit WholeWindow(const std::string& port)
      : ports_(scheduler_, {port}, settings_, [] { return std::vector<platform::SerialPort>(); }) {
    values_.Keep("AUTOSCAN", "FALSE");
    program_.Start();
    Click("labBelk");
  }

  template <class Widget = QWidget>
  Widget* Find(const char* name) {
    return FindIn<Widget>(front_, name);
  }
  bool Until(const std::function<bool()>& done) { return QTest::qWaitFor(done, kPatience); }
  bool Appears(const char* name) {
    return Until([&] { return Find(name) != nullptr; });
  }
  bool Message(const char* text) {
    return Until([&] { return Find<desktop::MessageLine>("MessageBelk")->Text() == text; });
  }
  void Click(const char* name) {
    QWidget* widget = Find(name);
    ASSERT_NE(widget, nullptr) << name;
    ClickOn(widget);
  }
  shell::Program& Program() { return program_; }
  desktop::Front& Front() { return front_; }

 private:
  desktop::QtScheduler scheduler_;
  platform::SettingsFile settings_{"/nonexistent/Tarvo.conf"};
  platform::ComPorts ports_;
  test::MemoryValues values_;
  test::MemoryHelp help_;
  test::MemoryFiles files_;
  shell::Program program_{{scheduler_, ports_, values_, help_, files_, "."}};
  desktop::Front front_{program_.GetScreen(), [this] { return program_.Ended(); }};
};

TEST(Session, AWholeSessionByClicksOnObjectNames) {
  Simulator simulator("belk:fw=3,40002=0x0205,40004=17,40008=20,40009=0x20");
  ASSERT_TRUE(simulator.Ready());
  WholeWindow window(simulator.Port());
  ASSERT_TRUE(window.Appears("StartBelk"));
  window.Click("StartBelk");
  ASSERT_TRUE(window.Message("OK"));
  EXPECT_TRUE(window.Until([&] { return window.Find<desktop::ValueBox>("TotIN(1)")->Text() == "17"; }));
  EXPECT_TRUE(window.Find<desktop::Mark>("StatoIN(0)")->Lit());
  EXPECT_FALSE(window.Find<desktop::Mark>("StatoIN(1)")->Lit());
  EXPECT_TRUE(window.Find<desktop::Mark>("OverFlowIN(1)")->Lit());
  EXPECT_FALSE(window.Find("StartBelk")->isEnabled());

  window.Click("OverFlowIN(1)");
  EXPECT_TRUE(window.Until([&] { return !window.Find<desktop::Mark>("OverFlowIN(1)")->Lit(); }));

  window.Click("TotIN(1)");
  ASSERT_TRUE(window.Appears("Text1"));
  QTest::keyClicks(window.Find("Text1"), "4711");
  QTest::keyClick(window.Find("Text1"), Qt::Key_Return);
  EXPECT_TRUE(window.Until([&] { return window.Find<desktop::ValueBox>("TotIN(1)")->Text() == "4711"; }));

  window.Click("StopBelk");
  EXPECT_TRUE(window.Until([&] { return window.Find("StartBelk")->isEnabled(); }));
  window.Front().Window()->close();
  EXPECT_TRUE(window.Until([&] { return window.Program().Ended(); }));
}

TEST(Session, TheWindowStaysLiveWhileAModuleIsSilent) {
  // It answers at another address only.
  Simulator simulator("belk:addr=9");
  ASSERT_TRUE(simulator.Ready());
  WholeWindow window(simulator.Port());
  ASSERT_TRUE(window.Appears("StartBelk"));
  window.Click("StartBelk");
  int ticks = 0;
  QTimer timer;
  QObject::connect(&timer, &QTimer::timeout, [&ticks] { ++ticks; });
  timer.start(10);
  QTest::qWait(200);
  EXPECT_GE(ticks, 10);
  ASSERT_TRUE(window.Appears("OK"));
  EXPECT_EQ(window.Front().FrontDialog()->objectName(), "MsgBox");
  window.Click("OK");
  EXPECT_TRUE(window.Until([&] { return window.Front().FrontDialog() == nullptr; }));
}

}  // namespace
}  // namespace tarvo::test
