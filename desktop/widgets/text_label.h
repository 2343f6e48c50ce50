#pragma once

#include <QWidget>

namespace tarvo::desktop {

/// A text that is only shown. Digits are tabular; its room grows with its text and never shrinks, unless it gives way.
class TextLabel : public QWidget {
 public:
  enum class Look { kPlain, kQuiet, kTitle };

  explicit TextLabel(QWidget* parent, Look look = Look::kPlain);

  const QString& Text() const { return text_; }
  void SetText(const QString& text);
  /// Numbers stand at the right edge, as in a table.
  void AlignNumbers() { alignNumbers_ = true; }
  /// Gives way in a narrow place: then the text is cut there, and the tool tip shows it whole. Its room follows its
  /// text.
  void GiveWay(Qt::TextElideMode where = Qt::ElideRight);

  QSize sizeHint() const override;
  QSize minimumSizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;
  void changeEvent(QEvent* event) override;
  bool event(QEvent* event) override;

 private:
  QSize TextSize() const;

  QString text_;
  Look look_;
  bool alignNumbers_ = false;
  bool givesWay_ = false;
  Qt::TextElideMode cut_ = Qt::ElideRight;
  QSize largest_;
};

}  // namespace tarvo::desktop
