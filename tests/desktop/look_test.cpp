#include <QImage>
#include <QSet>
#include <cstdint>

#include "desktop/colours.h"
#include "desktop/style.h"
#include "desktop/widgets/tabular.h"
#include "support/desktop_bench.h"

namespace tarvo::test {
namespace {

using desktop::Role;

/// Gives the program's palette and font back when a test has changed them.
class Look {
 public:
  Look() : palette_(QApplication::palette()), font_(QApplication::font()) {}
  ~Look() {
    QApplication::setPalette(palette_);
    QApplication::setFont(font_);
  }

 private:
  QPalette palette_;
  QFont font_;
};

double Brightness(const QColor& colour) {
  const auto part = [](double value) {
    return value <= 0.03928 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
  };
  return 0.2126 * part(colour.redF()) + 0.7152 * part(colour.greenF()) + 0.0722 * part(colour.blueF());
}

double Contrast(const QColor& one, const QColor& other) {
  const double a = Brightness(one);
  const double b = Brightness(other);
  return (std::max(a, b) + 0.05) / (std::min(a, b) + 0.05);
}

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

class LookBench : public DesktopBench {
 public:
  void TestBody() override {}
};

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

TEST_P(Palettes, TextsStandOutFromTheirGround) {
  const QPalette palette = Palette();
  const QColor card = desktop::CardGround(palette);
  EXPECT_GE(Contrast(palette.color(QPalette::WindowText), card), 7.0);
  EXPECT_GE(Contrast(palette.color(QPalette::WindowText), palette.color(QPalette::Window)), 7.0);
  EXPECT_GE(Contrast(desktop::QuietText(palette), card), 4.5);
  EXPECT_GE(Contrast(palette.color(QPalette::HighlightedText), palette.color(QPalette::Highlight)), 4.5);
  EXPECT_GE(Contrast(palette.color(QPalette::Disabled, QPalette::Text), palette.color(QPalette::Window)), 2.5);
  for (const Role role : {Role::kGood, Role::kFault, Role::kBar}) {
    EXPECT_GE(Contrast(desktop::ToneOf(role, palette), card), 3.0) << static_cast<int>(role);
  }
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

TEST(Colours, TheSystemsNumbersHaveTheirRoles) {
  EXPECT_EQ(desktop::RoleOf(view::kRed), Role::kFault);
  EXPECT_EQ(desktop::RoleOf(view::kDarkRed), Role::kDark);
  EXPECT_EQ(desktop::RoleOf(view::kGreen), Role::kGood);
  EXPECT_EQ(desktop::RoleOf(view::kBarBlue), Role::kBar);
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
