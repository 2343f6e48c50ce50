#include "desktop/main_window.h"

#include <QAction>
#include <QCloseEvent>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QMenuBar>
#include <QSignalBlocker>
#include <QStackedWidget>
#include <QStatusBar>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>

#include "desktop/text.h"
#include "desktop/walker.h"
#include "desktop/widgets/card.h"
#include "desktop/widgets/measure.h"
#include "desktop/widgets/text_label.h"
#include "view/window.h"

namespace tarvo::desktop {

namespace {

using NodeKind = view::Node::Kind;

/// The main window's arrangement, taken apart: the page list and the page have their places, the rest is the thin bar.
struct Parts {
  const view::Node* pageList = nullptr;
  const view::Node* pagePlace = nullptr;
  std::vector<const view::Node*> bars;
};

bool Holds(const view::Node& node, NodeKind kind) {
  return node.kind == kind || std::any_of(node.children.begin(), node.children.end(),
                                          [&](const view::Node& child) { return Holds(child, kind); });
}

bool ShowsSomething(const view::Node& node) {
  const std::vector<view::Control*> controls = view::ReadingOrder(node);
  return std::any_of(controls.begin(), controls.end(),
                     [](const view::Control* control) { return control->GetKind() != view::Kind::kPanel; });
}

void TakeApart(const view::Node& node, Parts& parts) {
  if (node.kind == NodeKind::kPageList) {
    parts.pageList = &node;
  } else if (node.kind == NodeKind::kPagePlace) {
    parts.pagePlace = &node;
  } else if (Holds(node, NodeKind::kPageList) || Holds(node, NodeKind::kPagePlace)) {
    for (const view::Node& child : node.children) TakeApart(child, parts);
  } else if (ShowsSomething(node)) {
    parts.bars.push_back(&node);
  }
}

}  // namespace

MainWindow::MainWindow(view::Screen& screen, Faces& faces, view::Window& window, std::function<bool()> ended)
    : screen_(screen), faces_(faces), window_(window), ended_(std::move(ended)) {
  setObjectName(ToQt(window.Name()));
  BuildMenu();
  BuildBody();
  BuildStatusBar();
  constexpr QSize kComfortable(1120, 700);
  resize(kComfortable);
  ShowStage();
}

void MainWindow::ShowStage() {
  const QString title = ToQt(window_.Caption);
  if (windowTitle() != title) setWindowTitle(title);
  ShowPage(screen_.Page());
}

void MainWindow::BuildMenu() {
  for (view::Control* control : window_.Controls()) {
    if (control->GetKind() == view::Kind::kMenuItem) AddMenuItem(static_cast<view::MenuItem&>(*control));
  }
}

void MainWindow::AddMenuItem(view::MenuItem& item) {
  const std::vector<view::Control*>& controls = window_.Controls();
  const bool hasItems = std::any_of(controls.begin(), controls.end(), [&](const view::Control* control) {
    return control->GetKind() == view::Kind::kMenuItem && static_cast<const view::MenuItem*>(control)->Menu() == &item;
  });
  QWidget* above = menuBar();
  if (const auto found = menus_.find(item.Menu()); found != menus_.end()) above = found->second;

  QAction* action = nullptr;
  if (hasItems) {
    auto* menu = new QMenu(this);
    menus_[&item] = menu;
    action = menu->menuAction();
    above->addAction(action);
  } else {
    action = new QAction(this);
    above->addAction(action);
    connect(action, &QAction::triggered, action, [this, &item] {
      screen_.Click(item);
      // A checked item unchecks itself; what holds is what the control says.
      faces_.Refresh(item);
    });
  }
  action->setObjectName(ToQt(item.Name()));
  faces_.Follow(item, *action, [&item, action] {
    action->setText(ToQt(item.Caption()));
    action->setEnabled(item.Enabled());
    action->setVisible(item.Visible());
    action->setCheckable(item.Value() != 0);
    action->setChecked(item.Value() != 0);
  });
}

void MainWindow::BuildBody() {
  const view::Node arrangement = window_.Arrangement();
  Parts parts;
  TakeApart(arrangement, parts);

  auto* body = new QWidget(this);
  auto* layout = new QVBoxLayout(body);
  layout->setContentsMargins({});
  layout->setSpacing(0);
  Walker walker(faces_);
  for (const view::Node* node : parts.bars) {
    auto* bar = new QWidget(body);
    auto* inBar = new QHBoxLayout(bar);
    const int side = Em(*this, 0.7);
    inBar->setContentsMargins(side, Em(*this, 0.45), side, Em(*this, 0.45));
    inBar->addWidget(walker.Build(*node, bar));
    layout->addWidget(bar);
  }
  // The menu bar has an edge of its own.
  if (!parts.bars.empty()) layout->addWidget(new Rule(Qt::Horizontal, body));

  auto* row = new QHBoxLayout;
  row->setSpacing(0);
  if (parts.pageList != nullptr) {
    row->addWidget(walker.Build(*parts.pageList, body));
    row->addWidget(new Rule(Qt::Vertical, body));
  }
  pages_ = new QStackedWidget(body);
  pages_->addWidget(new QWidget);
  row->addWidget(pages_, 1);
  layout->addLayout(row, 1);
  layout->addWidget(new Rule(Qt::Horizontal, body));
  setCentralWidget(body);

  QWidget* last = nullptr;
  for (const view::Node* node : parts.bars) last = walker.OrderTabs(*node, last);
  if (parts.pageList != nullptr) walker.OrderTabs(*parts.pageList, last);
}

void MainWindow::BuildStatusBar() {
  bool first = true;
  for (view::Control* control : window_.Controls()) {
    if (control->GetKind() != view::Kind::kPanel) continue;
    auto& panel = static_cast<view::Panel&>(*control);
    auto* text = new TextLabel(statusBar());
    text->GiveWay();
    text->setObjectName(ToQt(panel.Name()));
    if (first) {
      statusBar()->addWidget(text, 1);
    } else {
      statusBar()->addPermanentWidget(text);
    }
    first = false;
    faces_.Follow(panel, *text, [&panel, text] {
      text->SetText(ToQt(panel.Text()));
      text->setToolTip(ToQt(panel.ToolTipText()));
      text->setAccessibleName(ToQt(panel.Name() + ": " + panel.Text()));
    });
  }
  if (first) return;
  const int side = Em(*this, 0.6);
  statusBar()->setContentsMargins(side, 0, side, 0);
}

void MainWindow::ShowPage(view::Window* page) {
  if (page == nullptr) {
    pages_->setCurrentIndex(0);
    return;
  }
  QWidget*& widget = pageWidgets_[page];
  if (widget == nullptr) {
    widget = Walker(faces_).BuildPage(page->Arrangement(), pages_);
    widget->setObjectName(ToQt(page->Name()));
    pages_->addWidget(widget);
  }
  pages_->setCurrentWidget(widget);
}

void MainWindow::closeEvent(QCloseEvent* event) {
  if (ended_()) return QMainWindow::closeEvent(event);
  event->ignore();
  screen_.Close();
}

void MainWindow::keyPressEvent(QKeyEvent* event) {
  if (event->key() != Qt::Key_Escape) return QMainWindow::keyPressEvent(event);
  screen_.PressKey(nullptr, view::Key::kEscape);
}

}  // namespace tarvo::desktop
