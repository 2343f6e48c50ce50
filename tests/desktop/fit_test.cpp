// What stands where when the window is small or the font is large.

#include <QAbstractButton>
#include <QAction>
#include <QComboBox>
#include <QScrollArea>
#include <QScrollBar>

#include "desktop/widgets/card.h"
#include "desktop/widgets/mark.h"
#include "desktop/widgets/message_line.h"
#include "desktop/widgets/page_list.h"
#include "desktop/widgets/text_label.h"
#include "desktop/widgets/value_box.h"
#include "support/look_bench.h"
#include "support/shell_bench.h"

namespace tarvo::test {
namespace {

constexpr QSize kComfortable(1120, 700);
constexpr QSize kSmallest(1024, 640);

bool ShowsText(const QWidget* widget) {
  return dynamic_cast<const desktop::TextLabel*>(widget) != nullptr ||
         dynamic_cast<const desktop::ValueBox*>(widget) != nullptr ||
         dynamic_cast<const desktop::Mark*>(widget) != nullptr ||
         dynamic_cast<const desktop::PageLabel*>(widget) != nullptr ||
         qobject_cast<const QAbstractButton*>(widget) != nullptr || qobject_cast<const QComboBox*>(widget) != nullptr;
}

class FitBench : public LookBench {
 public:
  explicit FitBench(QSize size) {
    page.Message.Caption = "ERROR! Wrong Comm.";
    for (view::Label& total : page.Tot) total.Caption = "65535";
    page.Baud.ListIndex = 4;
    front.Window()->resize(size);
    Settle();
  }

  QScrollArea* Area() { return Find<QScrollArea>("Page"); }
  bool ScrollsSideways() { return Area()->horizontalScrollBar()->maximum() > 0; }
  /// Where the widget of that name stands in the page.
  QRect Place(const char* name) {
    const QWidget* widget = Find(name);
    return {widget->mapTo(Area()->widget(), QPoint()), widget->size()};
  }
  /// The cards of the page from the first to the last.
  std::vector<const QWidget*> Cards() {
    std::vector<const QWidget*> cards;
    for (const QWidget* widget : Area()->widget()->findChildren<QWidget*>()) {
      if (dynamic_cast<const desktop::Card*>(widget) != nullptr) cards.push_back(widget);
    }
    return cards;
  }
};

class Fonts : public testing::TestWithParam<int> {
 protected:
  Fonts() {
    QFont font = QApplication::font();
    font.setPointSize(GetParam());
    QApplication::setFont(font);
  }

 private:
  Look look_;
};

INSTANTIATE_TEST_SUITE_P(FromEightToEighteenPoints, Fonts, testing::Values(8, 9, 11, 14, 18));

/// Expects every text in `ground` to have its room; gives how many there are.
int ExpectNoTextIsCut(const QWidget* ground) {
  int texts = 0;
  for (const QWidget* widget : ground->findChildren<QWidget*>()) {
    if (!widget->isVisible() || !ShowsText(widget)) continue;
    ++texts;
    const std::string name = (widget->objectName() + " " + widget->accessibleName()).toStdString();
    EXPECT_GE(widget->width(), widget->sizeHint().width()) << name;
    EXPECT_GE(widget->height(), widget->sizeHint().height()) << name;
  }
  return texts;
}

TEST_P(Fonts, NoTextIsCut) {
  for (const QSize size : {kComfortable, kSmallest}) {
    FitBench bench(size);
    EXPECT_GT(ExpectNoTextIsCut(bench.front.Window()->centralWidget()), 30);
  }
}

TEST_P(Fonts, TheStartPageIsWholeAndInTheMiddle) {
  for (const QSize size : {kComfortable, kSmallest}) {
    ShellBench bench;
    bench.front.Window()->resize(size);
    bench.Settle();
    const auto* area = bench.Find<QScrollArea>("Home");
    EXPECT_GE(ExpectNoTextIsCut(area->widget()), 2);
    EXPECT_LE(area->widget()->height(), area->viewport()->height());
    const auto middle = [&](const char* name) {
      const QWidget* widget = bench.Find(name);
      return widget->mapTo(area, widget->rect().center());
    };
    EXPECT_GE(bench.Find("Picture1")->height(), 6 * bench.Find("Label2")->height());
    for (const char* name : {"Picture1", "Label2", "Label3"}) {
      EXPECT_NEAR(middle(name).x(), area->viewport()->width() / 2, 2) << name;
    }
    EXPECT_GT(middle("Label3").y(), middle("Picture1").y());
    EXPECT_GT(middle("Label2").y(), middle("Label3").y());
  }
}

TEST_P(Fonts, NoTextOfTheLineSettingsIsCut) {
  for (const QSize size : {kComfortable, kSmallest}) {
    ShellBench bench;
    bench.Tap("LabPCSetup");
    bench.Part<view::Label>("DeviceCOM1").Caption = "/dev/ttyUSB0 - FT232R USB UART";
    bench.front.Window()->resize(size);
    bench.Settle();
    const auto* area = bench.Find<QScrollArea>("PCsetup");
    EXPECT_GE(ExpectNoTextIsCut(area->widget()), 18);
    EXPECT_EQ(area->horizontalScrollBar()->maximum(), 0);
  }
}

TEST_P(Fonts, NoTextOfTheShellsDialogsIsCut) {
  ShellBench bench;
  bench.module.Address = 9;
  bench.Find<QAction>("frmAbout")->trigger();
  bench.Settle();
  EXPECT_GE(ExpectNoTextIsCut(bench.front.FrontDialog()), 4);
  bench.Key(Qt::Key_Return);
  bench.Tap("buttCheckDevice");
  EXPECT_EQ(bench.front.FrontDialog()->objectName(), "frmKeyb");
  EXPECT_GE(ExpectNoTextIsCut(bench.front.FrontDialog()), 2);
  EXPECT_LE(bench.front.FrontDialog()->width(), kSmallest.width());
}

TEST(Fit, TheThreeCardsOfTheLineSettingsStandSideBySide) {
  ShellBench bench;
  bench.Tap("LabPCSetup");
  bench.front.Window()->resize(kSmallest);
  bench.Settle();
  std::vector<const QWidget*> cards;
  for (const QWidget* widget : bench.Find<QScrollArea>("PCsetup")->widget()->findChildren<QWidget*>()) {
    if (dynamic_cast<const desktop::Card*>(widget) != nullptr) cards.push_back(widget);
  }
  ASSERT_EQ(cards.size(), 3U);
  EXPECT_EQ(cards[0]->geometry().top(), cards[2]->geometry().top());
  EXPECT_EQ(cards[0]->height(), cards[2]->height());
  EXPECT_GT(cards[1]->x(), cards[0]->geometry().right());
  EXPECT_GT(cards[2]->x(), cards[1]->geometry().right());
}

TEST_P(Fonts, NoPageScrollsSideways) {
  for (const QSize size : {kComfortable, kSmallest}) {
    FitBench bench(size);
    EXPECT_FALSE(bench.ScrollsSideways()) << size.width();
  }
}

TEST(Fit, CardsOfALineAreEquallyHighAndFillTheWidth) {
  FitBench bench(kComfortable);
  const std::vector<const QWidget*> cards = bench.Cards();
  ASSERT_EQ(cards.size(), 3U);
  EXPECT_EQ(cards[1]->y(), cards[2]->y());
  EXPECT_EQ(cards[1]->height(), cards[2]->height());
  const auto right = [&](const QWidget* card) {
    return card->mapTo(bench.Area()->widget(), QPoint(card->width(), 0)).x();
  };
  EXPECT_EQ(right(cards[2]), right(cards[0]));
}

TEST(Fit, CardsGoUnderOneAnotherWhereTheyFindNoRoomBeside) {
  FitBench bench(QSize(440, 700));
  const std::vector<const QWidget*> cards = bench.Cards();
  ASSERT_EQ(cards.size(), 3U);
  EXPECT_EQ(cards[1]->x(), cards[2]->x());
  EXPECT_GT(cards[2]->y(), cards[1]->geometry().bottom());
  EXPECT_EQ(cards[1]->width(), cards[2]->width());
  // What no longer fits below is reached by scrolling down.
  const QRect entry = bench.Place("Entry");
  EXPECT_LE(entry.bottom(), bench.Area()->widget()->height());
}

TEST(Fit, TheHeadIsOneLineInAComfortableWindow) {
  FitBench bench(kComfortable);
  EXPECT_EQ(bench.Place("Message").center().y(), bench.Place("Firmware").center().y());
  EXPECT_NEAR(bench.Place("Message").center().y(), bench.Place("Start").center().y(), 1);
}

TEST(Fit, InANarrowPlaceTheMessageStaysBesideTheTitleAndTheRestGoesBelow) {
  FitBench bench(QSize(700, 640));
  EXPECT_NEAR(bench.Place("Message").center().y(), bench.Place("Start").center().y(), 1);
  EXPECT_GT(bench.Place("Firmware").top(), bench.Place("Start").bottom());
  EXPECT_GT(bench.Place("Start").left(), bench.Place("Message").right());
}

TEST(Fit, AMessageMovesNothingElse) {
  FitBench bench(kSmallest);
  bench.page.Message.Caption = "OK";
  bench.Settle();
  const QRect start = bench.Place("Start");
  const QRect firmware = bench.Place("Firmware");
  const QRect total = bench.Place("Tot(0)");
  bench.page.Message.Caption = "ERROR! Wrong Comm.";
  bench.Settle();
  EXPECT_EQ(bench.Place("Start"), start);
  EXPECT_EQ(bench.Place("Firmware"), firmware);
  EXPECT_EQ(bench.Place("Tot(0)"), total);
}

TEST(Fit, ThePageListIsAsWideAsItsLabels) {
  LookBench bench;
  QWidget* label = bench.Find("labHome");
  const int before = label->width();
  bench.main.labels[0].Caption = "A page of a rather long name";
  bench.Settle();
  EXPECT_GT(label->width(), before);
  EXPECT_GE(label->width(), label->sizeHint().width());
}

}  // namespace
}  // namespace tarvo::test
