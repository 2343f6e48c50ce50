#pragma once

#include <QColor>
#include <QFont>
#include <QPalette>
#include <algorithm>
#include <cmath>

#include "support/desktop_bench.h"

namespace tarvo::test {

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

inline double Brightness(const QColor& colour) {
  const auto part = [](double value) {
    return value <= 0.03928 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
  };
  return 0.2126 * part(colour.redF()) + 0.7152 * part(colour.greenF()) + 0.0722 * part(colour.blueF());
}

inline double Contrast(const QColor& one, const QColor& other) {
  const double a = Brightness(one);
  const double b = Brightness(other);
  return (std::max(a, b) + 0.05) / (std::min(a, b) + 0.05);
}

/// A window for tests that make more than one, or one after they have changed palette or font.
class LookBench : public DesktopBench {
 public:
  void TestBody() override {}
};

}  // namespace tarvo::test
