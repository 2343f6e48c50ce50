#include "desktop/widgets/flow_layout.h"

#include <QStyle>
#include <QWidget>
#include <algorithm>

namespace tarvo::desktop {

FlowLayout::FlowLayout(QWidget* parent) : QLayout(parent) {
  setContentsMargins({});
}

FlowLayout::~FlowLayout() = default;

QLayoutItem* FlowLayout::itemAt(int index) const {
  // The toolkit walks a layout until there is nothing more.
  if (index < 0 || index >= count()) return nullptr;
  return items_[static_cast<std::size_t>(index)].get();
}

QLayoutItem* FlowLayout::takeAt(int index) {
  if (index < 0 || index >= count()) return nullptr;
  const auto place = items_.begin() + index;
  QLayoutItem* item = place->release();
  items_.erase(place);
  return item;
}

int FlowLayout::heightForWidth(int width) const {
  int height = 0;
  for (const Line& line : Break(width)) height += HeightOf(line) + (height > 0 ? spacing() : 0);
  return height;
}

QSize FlowLayout::sizeHint() const {
  QSize size(0, 0);
  for (const QLayoutItem* item : Shown()) {
    const QSize hint = item->sizeHint();
    if (size.width() > 0) size.rwidth() += spacing();
    size = {size.width() + hint.width(), std::max(size.height(), hint.height())};
  }
  return size;
}

QSize FlowLayout::minimumSize() const {
  // Each thing on a line of its own; how high that gets is told by the width.
  QSize size(0, 0);
  for (const QLayoutItem* item : Shown()) size = size.expandedTo(item->minimumSize());
  return size;
}

void FlowLayout::setGeometry(const QRect& place) {
  QLayout::setGeometry(place);
  const Qt::LayoutDirection direction = parentWidget() == nullptr ? Qt::LeftToRight : parentWidget()->layoutDirection();
  int top = place.top();
  for (const Line& line : Break(place.width())) {
    const int height = HeightOf(line);
    for (const Placed& placed : line) {
      const QRect room(place.left() + placed.left, top, placed.width, height);
      placed.item->setGeometry(QStyle::visualRect(direction, place, room));
    }
    top += height + spacing();
  }
}

std::vector<QLayoutItem*> FlowLayout::Shown() const {
  std::vector<QLayoutItem*> shown;
  for (const auto& item : items_) {
    if (item->widget() == nullptr || !item->isEmpty()) shown.push_back(item.get());
  }
  return shown;
}

int FlowLayout::HeightOf(const Line& line) {
  int height = 0;
  for (const Placed& placed : line) {
    const QLayoutItem& item = *placed.item;
    height = std::max(height, item.hasHeightForWidth() ? item.heightForWidth(placed.width) : item.sizeHint().height());
  }
  return height;
}

}  // namespace tarvo::desktop
