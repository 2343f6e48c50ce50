#pragma once

#include "desktop/widgets/clickable.h"

namespace tarvo::desktop {

/// A value that a click edits: framed, with tabular digits at the right edge.
class ValueBox : public Clickable {
 public:
  explicit ValueBox(QWidget* parent);

  const QString& Text() const { return text_; }
  void SetText(const QString& text);

  QSize sizeHint() const override;
  QSize minimumSizeHint() const override { return sizeHint(); }

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  QString text_;
  int widest_ = 0;
};

}  // namespace tarvo::desktop
