#pragma once

#include <QMainWindow>
#include <functional>
#include <map>

#include "desktop/faces.h"
#include "view/arrangement.h"

class QHBoxLayout;
class QMenu;
class QStackedWidget;

namespace tarvo::desktop {

/// The one frame of the program: menu, thin bar, page list, page, status bar.
class MainWindow : public QMainWindow {
 public:
  /// `ended` is asked when the window is to close: only then it does.
  MainWindow(view::Screen& screen, Faces& faces, view::Window& window, std::function<bool()> ended);

  /// Shows the page that is on the screen, and the window's title.
  void ShowStage();

 protected:
  void closeEvent(QCloseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  void BuildMenu();
  void AddMenuItem(view::MenuItem& item);
  void BuildBody();
  void BuildStatusBar();
  void ShowPage(view::Window* page);

  view::Screen& screen_;
  Faces& faces_;
  view::Window& window_;
  std::function<bool()> ended_;
  QStackedWidget* pages_ = nullptr;
  std::map<const view::Window*, QWidget*> pageWidgets_;
  std::map<const view::MenuItem*, QMenu*> menus_;
};

}  // namespace tarvo::desktop
