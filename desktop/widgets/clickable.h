#pragma once

#include <QWidget>
#include <functional>

class QPainter;

namespace tarvo::desktop {

/// A small widget of our own that may take clicks: then it can have the focus, and shows focus and hover.
class Clickable : public QWidget {
 public:
  explicit Clickable(QWidget* parent);

  /// `onClick` for the mouse and Space, `onEnter` for Enter.
  void TakeClicks(std::function<void()> onClick, std::function<void()> onEnter);
  bool TakesClicks() const { return onClick_ != nullptr; }

 protected:
  bool Hovered() const { return onClick_ && isEnabled() && underMouse(); }
  /// The rounded edge that says "here is the keyboard".
  void PaintFocus(QPainter& painter, const QRectF& around, double radius) const;

  void mousePressEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  std::function<void()> onClick_;
  std::function<void()> onEnter_;
  bool pressed_ = false;
};

}  // namespace tarvo::desktop
