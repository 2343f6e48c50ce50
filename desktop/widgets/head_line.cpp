#include "desktop/widgets/head_line.h"

#include <QWidget>
#include <algorithm>

namespace tarvo::desktop {

void HeadLine::Add(QWidget* widget, Place place, int room) {
  parts_.push_back({place, room});
  addWidget(widget);
  // All stand on the line's middle, whatever their height.
  setAlignment(widget, Qt::AlignVCenter);
}

QLayoutItem* HeadLine::takeAt(int index) {
  if (index >= 0 && index < count()) parts_.erase(parts_.begin() + index);
  return FlowLayout::takeAt(index);
}

int HeadLine::RoomOf(int index) const {
  return std::max(WidthOf(index), parts_[static_cast<std::size_t>(index)].room) + spacing();
}

QSize HeadLine::minimumSize() const {
  // Title and deeds never part.
  QSize size(-spacing(), 0);
  for (int i = 0; i < count(); ++i) {
    if (Is(i, Place::kTitle) || Is(i, Place::kDeed)) size.rwidth() += RoomOf(i);
  }
  return size.expandedTo(FlowLayout::minimumSize());
}

std::vector<FlowLayout::Line> HeadLine::Break(int width) const {
  int fixed = -spacing();
  int notes = 0;
  int message = 0;
  for (int i = 0; i < count(); ++i) {
    const int room = RoomOf(i);
    if (Is(i, Place::kNote)) {
      notes += room;
    } else if (Is(i, Place::kMessage)) {
      message += room;
    } else {
      fixed += room;
    }
  }
  const bool all = fixed + notes + message <= width;
  const bool told = all || fixed + message <= width;

  std::vector<Line> lines(1);
  int deeds = width + spacing();
  for (int i = 0; i < count(); ++i) {
    if (Is(i, Place::kDeed)) deeds -= WidthOf(i) + spacing();
  }
  int left = 0;
  int below = 0;
  for (int i = 0; i < count(); ++i) {
    const int own = WidthOf(i);
    if (Is(i, Place::kDeed)) {
      lines.front().push_back({itemAt(i), deeds, own});
      deeds += own + spacing();
    } else if (Is(i, Place::kTitle) || all || (told && Is(i, Place::kMessage))) {
      lines.front().push_back({itemAt(i), left, own});
      left += own + spacing();
    } else {
      if (lines.size() == 1 || below + own > width) {
        lines.emplace_back();
        below = 0;
      }
      lines.back().push_back({itemAt(i), below, std::min(own, width)});
      below += own + spacing();
    }
  }
  return lines;
}

}  // namespace tarvo::desktop
