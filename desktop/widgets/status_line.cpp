#include "desktop/widgets/status_line.h"

#include <QLayoutItem>
#include <algorithm>

namespace tarvo::desktop {

std::vector<FlowLayout::Line> StatusLine::Break(int width) const {
  const std::vector<QLayoutItem*> shown = Shown();
  if (shown.empty()) return {};
  const auto count = static_cast<int>(shown.size());
  const auto hint = [](const QLayoutItem* item) { return item->sizeHint().width(); };
  const int room = std::max(width - spacing() * (count - 1), 0);
  // Each of the others may have that much, more when the first leaves it.
  constexpr double kShare = 0.4;
  const int share = static_cast<int>(room * kShare) / std::max(count - 1, 1);
  int left = room - hint(shown.front());

  Line line;
  int x = width;
  for (int i = count - 1; i > 0; --i) {
    QLayoutItem* item = shown[static_cast<std::size_t>(i)];
    const int own = std::min(hint(item), std::max(left, share));
    left -= own;
    x -= own;
    line.push_back({item, x, own});
    x -= spacing();
  }
  line.push_back({shown.front(), 0, std::max(x, 0)});
  return {line};
}

}  // namespace tarvo::desktop
