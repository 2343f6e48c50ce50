#pragma once

#include <QMainWindow>
#include <QPointer>
#include <functional>
#include <map>

#include "desktop/faces.h"
#include "view/arrangement.h"

class QMenu;
class QStackedWidget;

namespace tarvo::desktop {

class PageList;

/// The one frame of the program: menu, thin bar, page list, page, status bar.
class MainWindow : public QMainWindow {
 public:
  /// `ended` is asked when the window is to close: only then it does.
  MainWindow(view::Screen& screen, Faces& faces, view::Window& window, std::function<bool()> ended);

  /// Shows the page that is on the screen, and the window's title.
  void ShowStage();
  /// Gives the focus to a control that can take it, when the one that had it no longer can. To be called when all
  /// changes of a turn are shown.
  void SettleFocus();

 protected:
  void closeEvent(QCloseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  bool focusNextPrevChild(bool next) override;

 private:
  void BuildMenu();
  void AddMenuItem(view::MenuItem& item);
  void BuildBody();
  void BuildStatusBar();
  void ShowPage(view::Window* page);
  /// Who takes the focus over from the one that has lost it; null when nobody has.
  QWidget* NextFocus() const;
  /// The next one in the order of Tab that can take the focus; null when there is none.
  QWidget* UsableAfter(QWidget* widget) const;

  view::Screen& screen_;
  Faces& faces_;
  view::Window& window_;
  std::function<bool()> ended_;
  QStackedWidget* pages_ = nullptr;
  PageList* pageList_ = nullptr;
  QPointer<QWidget> lost_;  ///< had the focus, and was disabled with it
  std::map<const view::Window*, QWidget*> pageWidgets_;
  std::map<const view::MenuItem*, QMenu*> menus_;
};

}  // namespace tarvo::desktop
