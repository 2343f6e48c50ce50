#include <QImage>
#include <QSet>

#include "desktop/colours.h"
#include "desktop/style.h"
#include "desktop/widgets/gear.h"
#include "desktop/widgets/tabular.h"
#include "support/look_bench.h"

namespace tarvo::test {
namespace {

using desktop::Role;

class Palettes : public testing::TestWithParam<bool> {
 protected:
  QPalette Palette() const { return GetParam() ? desktop::DarkPalette() : desktop::LightPalette(); }

  Look look_;
};

INSTANTIATE_TEST_SUITE_P(LightAndDark, Palettes, testing::Values(false, true));

/// The row of pixels through the widget's middle, with the ground that it stands on.
QImage MiddleRow(const QWidget* widget) {
  QWidget* window = widget->window();
  const QPoint left = widget->mapTo(window, QPoint(0, widget->height() / 2));
  return window->grab(QRect(left, QSize(widget->width(), 1))).toImage();
}

QColor Middle(const QWidget* widget, int x) {
  return MiddleRow(widget).pixelColor(x, 0);
}

TEST_P(Palettes, ALitMarkIsFilledAndADarkOneIsARing) {
  QApplication::setPalette(Palette());
  LookBench bench;
  bench.page.Stato[0].Picture = 2;
  bench.page.Over[0].BackColor = view::kRed;
  bench.Settle();
  const QPalette palette = Palette();
  const auto inMiddle = [&](const char* name) {
    QWidget* mark = bench.Find(name);
    return Middle(mark, mark->height() / 2);
  };
  EXPECT_EQ(inMiddle("Stato(0)"), desktop::ToneOf(Role::kGood, palette));
  EXPECT_EQ(inMiddle("Stato(1)"), desktop::CardGround(palette));
  bench.page.Over[1].BackColor = view::kGreen;
  bench.Settle();
  EXPECT_EQ(inMiddle("Over(0)"), desktop::ToneOf(Role::kFault, palette));
  EXPECT_EQ(inMiddle("Over(1)"), desktop::CardGround(palette));
  const QImage ring = MiddleRow(bench.Find("Stato(1)"));
  int drawn = 0;
  for (int x = 0; x < ring.width(); ++x) drawn += ring.pixelColor(x, 0) != desktop::CardGround(palette) ? 1 : 0;
  EXPECT_GE(drawn, 2);
}

TEST_P(Palettes, AMeterIsFilledUpToItsPercent) {
  QApplication::setPalette(Palette());
  LookBench bench;
  bench.page.Bar[0].SetPercent(50);
  bench.page.Bar[1].SetPercent(50);
  bench.page.Bar[1].FillColor = view::kRed;
  bench.Settle();
  QWidget* bar = bench.Find("Bar(0)");
  const int width = bar->width();
  EXPECT_EQ(Middle(bar, width / 2 - 4), desktop::ToneOf(Role::kBar, Palette()));
  EXPECT_NE(Middle(bar, width / 2 + 4), desktop::ToneOf(Role::kBar, Palette()));
  EXPECT_EQ(Middle(bench.Find("Bar(1)"), 4), desktop::ToneOf(Role::kFault, Palette()));
}

TEST_P(Palettes, TheWholeWindowIsPainted) {
  QApplication::setPalette(Palette());
  const LookBench bench;
  const QImage picture = bench.front.Window()->grab().toImage();
  QSet<QRgb> colours;
  for (int y = 0; y < picture.height(); y += 3) {
    for (int x = 0; x < picture.width(); x += 3) colours.insert(picture.pixel(x, y));
  }
  EXPECT_GT(colours.size(), 20);
  EXPECT_EQ(picture.pixelColor(picture.width() - 3, picture.height() / 2), Palette().color(QPalette::Window));
}

/// The highest contrast of a widget's dots to the dot at its left edge.
double DrawnContrast(const QWidget* widget) {
  const QImage picture =
      widget->window()->grab(QRect(widget->mapTo(widget->window(), QPoint()), widget->size())).toImage();
  const QColor ground = picture.pixelColor(3, picture.height() / 2);
  double highest = 1;
  for (int y = 0; y < picture.height(); ++y) {
    for (int x = 3; x < picture.width() - 3; ++x) {
      highest = std::max(highest, Contrast(ground, picture.pixelColor(x, y)));
    }
  }
  return highest;
}

TEST_P(Palettes, ThePageShownReadsWellAlsoWhileTheListIsLocked) {
  QApplication::setPalette(Palette());
  LookBench bench;
  bench.Click("labBelk");
  EXPECT_GE(DrawnContrast(bench.Find("labBelk")), 4.5);
  for (view::Label& label : bench.main.labels) label.Enabled = false;
  bench.Settle();
  EXPECT_GE(DrawnContrast(bench.Find("labBelk")), 4.5);
}

TEST_P(Palettes, WhatIsDisabledIsGreyButReadable) {
  QApplication::setPalette(Palette());
  LookBench bench;
  bench.page.Message.Caption = "OK";
  bench.Settle();
  for (const char* name : {"Firmware", "Message", "Stop", "Over(0)", "Negate", "Even", "labHome"}) {
    view::Control* control = bench.page.Find(name);
    if (control == nullptr) control = bench.main.Find(name);
    ASSERT_NE(control, nullptr) << name;
    const double enabled = DrawnContrast(bench.Find(name));
    control->Enabled = false;
    bench.Settle();
    EXPECT_LT(DrawnContrast(bench.Find(name)), enabled) << name;
    EXPECT_GE(DrawnContrast(bench.Find(name)), 2.5) << name;
  }
}

TEST_P(Palettes, APaletteThatComesLaterLooksAsOneFromTheStart) {
  // Each window stands alone and in front, with the focus at the same place.
  const auto fill = [](LookBench& bench) {
    bench.page.Stato[0].Picture = 2;
    bench.page.Over[0].BackColor = view::kRed;
    bench.page.Bar[0].SetPercent(50);
    bench.page.Negate.Value = 1;
    bench.page.Message.Caption = "ERROR! Wrong Comm.";
    bench.main.labels[2].BackColor = view::kHighlight;
    bench.page.Start.Enabled = false;
    EXPECT_TRUE(QTest::qWaitForWindowActive(bench.front.Window()));
    bench.Find("Stop")->setFocus();
    bench.Settle();
  };
  QImage before;
  QImage after;
  {
    QApplication::setPalette(GetParam() ? desktop::LightPalette() : desktop::DarkPalette());
    LookBench bench;
    fill(bench);
    before = bench.front.Window()->grab().toImage();
    QApplication::setPalette(Palette());
    bench.Settle();
    after = bench.front.Window()->grab().toImage();
  }
  LookBench bench;
  fill(bench);
  EXPECT_NE(after, before);
  EXPECT_EQ(after, bench.front.Window()->grab().toImage());
}

TEST_P(Palettes, TheFocusShowsOnEveryControlThatTabReaches) {
  QApplication::setPalette(Palette());
  LookBench bench;
  bench.page.Negate.Value = 1;
  bench.page.Even.Value = true;
  bench.Settle();
  ASSERT_TRUE(QTest::qWaitForWindowActive(bench.front.Window()));
  for (const char* name : {"Family", "Check", "AutoSearch", "labHome", "Start", "Stop", "Tot(0)", "Over(0)", "Negate",
                           "Fast", "Even", "Odd", "Filter", "Baud", "Entry"}) {
    QWidget* widget = bench.Find(name);
    bench.front.Window()->setFocus();
    bench.Settle();
    const QImage without = widget->grab().toImage();
    widget->setFocus(Qt::TabFocusReason);
    bench.Settle();
    ASSERT_TRUE(widget->hasFocus()) << name;
    const QImage with = widget->grab().toImage();
    int dots = 0;
    for (int y = 0; y < with.height(); ++y) {
      for (int x = 0; x < with.width(); ++x) dots += with.pixel(x, y) != without.pixel(x, y) ? 1 : 0;
    }
    // A ring is longer than the widget is wide.
    EXPECT_GE(dots, widget->width() / 2) << name;
  }
}

TEST_P(Palettes, TheMouseShowsOnWhatItCanClick) {
  QApplication::setPalette(Palette());
  LookBench bench;
  for (const char* name : {"labHome", "Stop", "Tot(0)", "Over(0)", "Negate", "Baud"}) {
    QWidget* widget = bench.Find(name);
    widget->setAttribute(Qt::WA_UnderMouse, false);
    const QImage without = widget->grab().toImage();
    // What the toolkit does when the mouse comes over a widget.
    widget->setAttribute(Qt::WA_UnderMouse, true);
    const QPointF at(widget->height() / 2.0, widget->height() / 2.0);
    QHoverEvent hover(QEvent::HoverEnter, at, widget->mapToGlobal(at), QPointF(-1, -1));
    QCoreApplication::sendEvent(widget, &hover);
    EXPECT_NE(widget->grab().toImage(), without) << name;
    widget->setAttribute(Qt::WA_UnderMouse, false);
  }
}

TEST_P(Palettes, TextsStandOutFromTheirGround) {
  const QPalette palette = Palette();
  const QColor card = desktop::CardGround(palette);
  EXPECT_GE(Contrast(palette.color(QPalette::WindowText), card), 7.0);
  EXPECT_GE(Contrast(palette.color(QPalette::WindowText), palette.color(QPalette::Window)), 7.0);
  EXPECT_GE(Contrast(desktop::QuietText(palette), card), 4.5);
  EXPECT_GE(Contrast(palette.color(QPalette::HighlightedText), palette.color(QPalette::Highlight)), 4.5);
  EXPECT_GE(Contrast(palette.color(QPalette::Disabled, QPalette::Text), palette.color(QPalette::Window)), 2.5);
  for (const Role role : {Role::kGood, Role::kFault, Role::kCaution, Role::kBar, Role::kSelected}) {
    EXPECT_GE(Contrast(desktop::ToneOf(role, palette), card), 3.0) << static_cast<int>(role);
  }
}

TEST_P(Palettes, AGearShowsThatItTurnsAndStandsTheSameWhenRewound) {
  QApplication::setPalette(Palette());
  LookBench bench;
  auto* gear = dynamic_cast<desktop::Gear*>(bench.Find("Gears"));
  ASSERT_NE(gear, nullptr);
  const QImage still = gear->grab().toImage();
  bench.page.Gears.Playing = true;
  bench.Settle();
  const QImage first = gear->grab().toImage();
  EXPECT_EQ(first.pixelColor(gear->width() / 2, gear->height() / 6), Palette().color(QPalette::Highlight));
  EXPECT_NE(first, still);
  EXPECT_TRUE(QTest::qWaitFor([&] { return gear->grab().toImage() != first; }, 2000));
  gear->Rewind();
  EXPECT_EQ(gear->grab().toImage(), first);
}

TEST(Colours, DisabledTextsStayReadableOnAnyDesktop) {
  QPalette palette(QColor(0xef, 0xef, 0xef));
  palette.setColor(QPalette::Disabled, QPalette::Text, QColor(0xbe, 0xbe, 0xbe));
  desktop::Style().polish(palette);
  for (const QPalette::ColorRole role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
    EXPECT_GE(Contrast(palette.color(QPalette::Disabled, role), palette.color(QPalette::Window)), 2.5);
    EXPECT_NE(palette.color(QPalette::Disabled, role), palette.color(QPalette::Active, role));
  }
}

TEST(Colours, DisabledTextsCastNoShadow) {
  EXPECT_EQ(QApplication::style()->styleHint(QStyle::SH_EtchDisabledText), 0);
}

TEST(Colours, TheSystemsNumbersHaveTheirRoles) {
  EXPECT_EQ(desktop::RoleOf(view::kRed), Role::kFault);
  EXPECT_EQ(desktop::RoleOf(view::kDarkRed), Role::kDark);
  EXPECT_EQ(desktop::RoleOf(view::kGreen), Role::kQuiet);
  EXPECT_EQ(desktop::RoleOf(view::kBarBlue), Role::kBar);
  EXPECT_EQ(desktop::RoleOf(view::kHighlight), Role::kSelected);
  EXPECT_EQ(desktop::RoleOf(static_cast<view::Colour>(0x8000000F)), Role::kDark);
}

TEST(Tabular, NumbersEndAtTheSameColumn) {
  LookBench bench;
  bench.page.Tot[0].Caption = "7";
  bench.page.Tot[1].Caption = "18887";
  bench.page.Tot[2].Caption = "18880";
  bench.Settle();
  const auto lastDigit = [&](const char* name) {
    QWidget* value = bench.Find(name);
    const int room = value->fontMetrics().horizontalAdvance('8') + value->fontMetrics().height() / 2;
    return value->grab(QRect(value->width() - room, 0, room, value->height())).toImage();
  };
  EXPECT_EQ(lastDigit("Tot(0)"), lastDigit("Tot(1)"));
  EXPECT_NE(lastDigit("Tot(1)"), lastDigit("Tot(2)"));
}

TEST(Tabular, NumbersAreToldFromTexts) {
  for (const char* number : {"0", "65535", "-12.4", " 20", "17 %", "1,5"})
    EXPECT_TRUE(desktop::IsNumber(number)) << number;
  for (const char* text : {"", "OK", "TC-K", "-", "Input 1", "5 mA"}) EXPECT_FALSE(desktop::IsNumber(text)) << text;
}

TEST(Sizes, FollowTheFont) {
  const Look look;
  QSize small;
  QSize smallMark;
  {
    LookBench bench;
    small = bench.Find("Tot(0)")->sizeHint();
    smallMark = bench.Find("Stato(0)")->sizeHint();
  }
  QFont large = QApplication::font();
  large.setPointSizeF(large.pointSizeF() * 2);
  QApplication::setFont(large);
  LookBench bench;
  EXPECT_NEAR(bench.Find("Tot(0)")->sizeHint().height(), 2 * small.height(), 4);
  EXPECT_NEAR(bench.Find("Tot(0)")->sizeHint().width(), 2 * small.width(), 8);
  EXPECT_NEAR(bench.Find("Stato(0)")->sizeHint().width(), 2 * smallMark.width(), 4);
}

TEST(Alignment, RowsOfATableShareTheirColumns) {
  LookBench bench;
  bench.page.Tot[1].Caption = "65535";
  bench.Settle();
  for (const char* column : {"Stato", "Tot", "Bar", "Over"}) {
    const std::string name(column);
    const QRect first = bench.Find(name + "(0)")->geometry();
    for (int i = 1; i < static_cast<int>(TestPage::kRows); ++i) {
      const QRect other = bench.Find(name + "(" + std::to_string(i) + ")")->geometry();
      EXPECT_EQ(other.left(), first.left()) << name << i;
      EXPECT_EQ(other.width(), first.width()) << name << i;
    }
  }
}

TEST(Alignment, FieldsInAColumnShareTheirColumns) {
  LookBench bench;
  const QRect filter = bench.Find("Filter")->geometry();
  EXPECT_EQ(bench.Find("Baud")->geometry().left(), filter.left());
  EXPECT_EQ(bench.Find("Baud")->geometry().width(), filter.width());
  EXPECT_EQ(bench.Find("Entry")->geometry().right(), filter.right());
}

}  // namespace
}  // namespace tarvo::test
