// The least that a program with a Qt window can cost: the measure for the window's memory and for its start.
#include <QApplication>
#include <QWidget>

int main(int count, char** values) {
  const QApplication application(count, values);
  QWidget window;
  window.resize(900, 700);
  window.show();
  return QApplication::exec();
}
