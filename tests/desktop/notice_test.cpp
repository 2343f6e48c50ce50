#include <map>

#include "support/desktop_bench.h"

namespace tarvo::test {
namespace {

/// Counts what is painted, by the widget's name.
class PaintCounter : public QObject {
 public:
  PaintCounter() { qApp->installEventFilter(this); }
  ~PaintCounter() override { qApp->removeEventFilter(this); }

  int Total() const {
    int total = 0;
    for (const auto& [name, count] : counts_) total += count;
    return total;
  }
  int Of(const char* name) const {
    const auto found = counts_.find(name);
    return found == counts_.end() ? 0 : found->second;
  }
  void Clear() { counts_.clear(); }

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override {
    if (event->type() == QEvent::Paint) ++counts_[watched->objectName().toStdString()];
    return false;
  }

 private:
  std::map<std::string, int> counts_;
};

class Notice : public DesktopBench {
 protected:
  Notice() {
    LetPaint();
    paints.Clear();
  }
  /// A window paints a few milliseconds after it is asked to.
  void LetPaint() {
    Settle();
    QTest::qWait(60);
  }

  PaintCounter paints;
};

TEST_F(Notice, NothingNewCostsNoRepaint) {
  for (int poll = 0; poll < 20; ++poll) {
    for (std::size_t i = 0; i < TestPage::kRows; ++i) {
      page.Tot[i].Caption = "0";
      page.Bar[i].SetPercent(0);
      page.Stato[i].Picture = 1;
      page.Over[i].BackColor = view::kDarkRed;
    }
    page.Message.Caption = "";
    page.Negate.Value = 0;
    Settle();
  }
  LetPaint();
  EXPECT_EQ(paints.Total(), 0);
}

TEST_F(Notice, OnlyWhatChangedIsPainted) {
  page.Tot[1].Caption = "17";
  page.Bar[2].SetPercent(40);
  LetPaint();
  EXPECT_EQ(paints.Of("Tot(1)"), 1);
  EXPECT_EQ(paints.Of("Bar(2)"), 1);
  for (const char* other :
       {"Tot(0)", "Tot(2)", "Bar(1)", "Bar(3)", "Stato(1)", "Over(1)", "Negate", "Start", "labBelk"}) {
    EXPECT_EQ(paints.Of(other), 0) << other;
  }
}

TEST_F(Notice, ManyChangesOfATurnArePaintedOnce) {
  for (int i = 0; i < 100; ++i) page.Tot[0].Caption = std::to_string(i);
  LetPaint();
  EXPECT_EQ(paints.Of("Tot(0)"), 1);
}

TEST_F(Notice, AStageThatBringsNothingNewIsNotPainted) {
  screen.SetMousePointer(view::Screen::Pointer::kHourglass);
  Settle();
  screen.SetMousePointer(view::Screen::Pointer::kDefault);
  LetPaint();
  EXPECT_EQ(paints.Total(), 0);
}

TEST_F(Notice, AGearThatTurnsPaintsNoOtherControl) {
  page.Gears.Playing = true;
  Settle();
  QTest::qWait(300);
  EXPECT_GE(paints.Of("Gears"), 2);
  EXPECT_EQ(paints.Of("Start"), 0);
  EXPECT_EQ(paints.Of("Tot(0)"), 0);
  page.Gears.Playing = false;
  LetPaint();
  paints.Clear();
  QTest::qWait(200);
  EXPECT_EQ(paints.Of("Gears"), 0);
}

}  // namespace
}  // namespace tarvo::test
