#pragma once

#include <utility>

#include "desktop/faces.h"
#include "view/arrangement.h"

class QGridLayout;

namespace tarvo::desktop {

/// Makes the widgets of an arrangement. The one walker for all windows: no page has code of its own here.
class Walker {
 public:
  explicit Walker(Faces& faces) : faces_(faces) {}

  QWidget* Build(const view::Node& node, QWidget* parent);
  /// A page as the main window shows it: with a margin, in a place that scrolls when the window is too small.
  QWidget* BuildPage(const view::Node& node, QWidget* parent);
  /// Makes Tab go through what `node` shows in reading order, `before` first; gives the last stop.
  QWidget* OrderTabs(const view::Node& node, QWidget* before = nullptr) const;

 private:
  QWidget* BuildColumn(const view::Node& node, QWidget* parent);
  QWidget* BuildRow(const view::Node& node, QWidget* parent);
  QWidget* BuildCardRow(const view::Node& node, QWidget* parent);
  QWidget* BuildTable(const view::Node& node, QWidget* parent);
  QWidget* BuildFrame(const view::Node& node, QWidget* parent);
  QWidget* BuildField(const view::Node& node, QWidget* parent);
  QWidget* BuildScroller(const view::Node& node, QWidget* parent);
  QWidget* BuildHead(const view::Node& node, QWidget* parent);
  QWidget* BuildPageList(const view::Node& node, QWidget* parent);
  QWidget* BuildCell(const view::Node& node, QWidget* parent, Title title);
  QWidget* Make(view::Control& control, QWidget* parent, Setting setting);
  void AddField(const view::Node& field, QGridLayout& grid, int row, QWidget* parent);

  /// What is built while it lives has that title.
  class Titled {
   public:
    Titled(Walker& walker, Title title) : walker_(walker), before_(std::exchange(walker.title_, std::move(title))) {}
    ~Titled() { walker_.title_ = std::move(before_); }
    Titled(const Titled&) = delete;
    Titled& operator=(const Titled&) = delete;

   private:
    Walker& walker_;
    Title before_;
  };

  Faces& faces_;
  Title title_;
};

}  // namespace tarvo::desktop
