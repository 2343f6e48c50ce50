#include "desktop/main_window.h"

#include <QAction>
#include <QCloseEvent>
#include <QHBoxLayout>
#include <QIcon>
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
#include "desktop/widgets/page_list.h"
#include "desktop/widgets/status_line.h"
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

bool TakesFocus(const QWidget* widget) {
  return widget != nullptr && widget->isEnabled() && !widget->isHidden() && widget->focusPolicy() != Qt::NoFocus;
}

}  // namespace

MainWindow::MainWindow(view::Screen& screen, Faces& faces, view::Window& window, std::function<bool()> ended)
    : screen_(screen), faces_(faces), window_(window), ended_(std::move(ended)) {
  setObjectName(ToQt(window.Name()));
  setWindowIcon(QIcon(QStringLiteral(":/tarvo.svg")));
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
    pageList_ = static_cast<PageList*>(walker.Build(*parts.pageList, body));
    row->addWidget(pageList_);
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
  auto* ground = new QWidget(statusBar());
  auto* line = new StatusLine(ground);
  line->setSpacing(Em(*this, 1.5));
  for (view::Control* control : window_.Controls()) {
    if (control->GetKind() != view::Kind::kPanel) continue;
    TextLabel* text = faces_.MakePanel(static_cast<view::Panel&>(*control), ground);
    // A passing text begins with what matters; what follows tells a line, which ends with it too.
    if (line->count() > 0) text->GiveWay(Qt::ElideMiddle);
    line->addWidget(text);
  }
  statusBar()->addWidget(ground, 1);
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
  if (pages_->currentWidget() == widget) return;
  const bool inList = pageList_ != nullptr && pageList_->isAncestorOf(focusWidget());
  pages_->setCurrentWidget(widget);
  // The keyboard goes on from the page shown, also when something else than the list has led to it.
  if (inList && pageList_->Stop() != nullptr) pageList_->Stop()->setFocus(Qt::OtherFocusReason);
}

void MainWindow::SettleFocus() {
  // Behind something modal nobody needs it, and while a page works on its module nearly all is locked.
  if (screen_.Front() != nullptr || screen_.Working()) return;
  if (lost_ == nullptr && TakesFocus(focusWidget())) return;
  QWidget* next = NextFocus();
  lost_ = nullptr;
  if (pageList_ != nullptr && (next == nullptr || pageList_->isAncestorOf(next))) next = pageList_->Stop();
  if (next != nullptr) next->setFocus(Qt::OtherFocusReason);
}

QWidget* MainWindow::NextFocus() const {
  if (lost_ == nullptr) return nullptr;
  if (TakesFocus(lost_)) return lost_;
  if (TakesFocus(focusWidget())) return focusWidget();
  return UsableAfter(lost_);
}

QWidget* MainWindow::UsableAfter(QWidget* widget) const {
  for (QWidget* next = widget->nextInFocusChain(); next != widget; next = next->nextInFocusChain()) {
    const bool stops = (next->focusPolicy() & Qt::TabFocus) != 0;
    if (stops && TakesFocus(next) && next->isVisibleTo(this) && next->window() == this) return next;
  }
  return nullptr;
}

bool MainWindow::focusNextPrevChild(bool next) {
  // The toolkit asks for a control that is being disabled, too: then others may still change in this turn.
  if (focusWidget() != nullptr && !focusWidget()->isEnabled()) {
    lost_ = focusWidget();
    return false;
  }
  return QMainWindow::focusNextPrevChild(next);
}

void MainWindow::closeEvent(QCloseEvent* event) {
  if (ended_()) return QMainWindow::closeEvent(event);
  event->ignore();
  screen_.Close();
}

void MainWindow::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Escape) {
    screen_.PressKey(nullptr, view::Key::kEscape);
  } else if (event->key() == Qt::Key_F10 && !menuBar()->actions().isEmpty()) {
    menuBar()->setActiveAction(menuBar()->actions().first());
  } else {
    QMainWindow::keyPressEvent(event);
  }
}

}  // namespace tarvo::desktop
