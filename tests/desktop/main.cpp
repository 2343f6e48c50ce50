#include <gtest/gtest.h>

#include <QApplication>
#include <QByteArray>

#include "desktop/style.h"

int main(int count, char** values) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  QApplication application(count, values);
  QApplication::setStyle(new tarvo::desktop::Style);
  QApplication::setQuitOnLastWindowClosed(false);
  testing::InitGoogleTest(&count, values);
  return RUN_ALL_TESTS();
}
