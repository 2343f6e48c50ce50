#pragma once

#include <QDialog>
#include <QTest>
#include <QWidget>
#include <string>

#include "desktop/front.h"
#include "desktop/text.h"

namespace tarvo::test {

/// What has that name in the dialog in front, else in the window; null when nothing has.
template <class Widget = QWidget>
Widget* FindIn(const desktop::Front& front, const std::string& name) {
  const QString wanted = desktop::ToQt(name);
  if (QDialog* inFront = front.FrontDialog()) {
    if (auto* found = inFront->template findChild<Widget*>(wanted)) return found;
  }
  return front.Window()->template findChild<Widget*>(wanted);
}

/// A click near the left edge, where a box or an option has its mark.
inline void ClickOn(QWidget* widget) {
  QTest::mouseClick(widget, Qt::LeftButton, Qt::NoModifier, QPoint(widget->height() / 2, widget->height() / 2));
}

}  // namespace tarvo::test
