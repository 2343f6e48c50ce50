#pragma once

#include <QProxyStyle>

namespace tarvo::desktop {

/// Fusion with flat, rounded buttons, marks and fields, so that the toolkit's widgets and our own look alike. All
/// colours come from the palette, all sizes from the font.
class Style : public QProxyStyle {
 public:
  Style();

  using QProxyStyle::polish;
  void polish(QPalette& palette) override;
  void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override;
  void drawComplexControl(ComplexControl control, const QStyleOptionComplex* option, QPainter* painter,
                          const QWidget* widget) const override;
  QRect subControlRect(ComplexControl control, const QStyleOptionComplex* option, SubControl part,
                       const QWidget* widget) const override;
  QSize sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& contents,
                         const QWidget* widget) const override;
  int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                QStyleHintReturn* more) const override;
  int pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const override;
};

/// The frame of what takes a value: `ground` within a rounded edge that shows hover and focus.
void PaintField(QPainter& painter, const QRect& place, const QPalette& palette, const QColor& ground, bool hovered,
                bool focused);
/// The room of a field around a line of text.
int FieldHeight(const QFontMetrics& metrics);

}  // namespace tarvo::desktop
