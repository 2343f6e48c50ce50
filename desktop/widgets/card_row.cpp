#include "desktop/widgets/card_row.h"

#include <QSpacerItem>
#include <algorithm>

namespace tarvo::desktop {

void CardRow::AddSpace() {
  addItem(new QSpacerItem(0, 0, QSizePolicy::Expanding, QSizePolicy::Minimum));
}

std::vector<FlowLayout::Line> CardRow::Break(int width) const {
  std::vector<Line> lines;
  int used = 0;
  for (QLayoutItem* item : Shown()) {
    const int least = item->minimumSize().width();
    if (lines.empty() || used + spacing() + least > width) {
      lines.emplace_back();
      used = least;
    } else {
      used += spacing() + least;
    }
    lines.back().push_back({item, 0, least});
  }
  for (Line& line : lines) Share(line, width);
  return lines;
}

void CardRow::Share(Line& line, int width) const {
  const bool spaced =
      std::any_of(line.begin(), line.end(), [](const Placed& placed) { return placed.item->widget() == nullptr; });
  const auto hint = [](const Placed& placed) { return placed.item->sizeHint().width(); };
  int left = width - spacing() * static_cast<int>(line.size() - 1);
  int wanted = 0;
  for (const Placed& placed : line) {
    left -= placed.width;
    wanted += hint(placed) - placed.width;
  }
  // First what each would like to have, then the rest: to the spaces, else by what the cards hold.
  const int given = std::clamp(left, 0, wanted);
  int hints = 0;
  int spaces = 0;
  for (Placed& placed : line) {
    if (wanted > 0) placed.width += given * (hint(placed) - placed.width) / wanted;
    hints += hint(placed);
    spaces += placed.item->widget() == nullptr ? 1 : 0;
  }
  const int rest = std::max(left - given, 0);
  int x = 0;
  for (Placed& placed : line) {
    if (spaced) {
      placed.width += placed.item->widget() == nullptr ? rest / spaces : 0;
    } else if (hints > 0) {
      placed.width += rest * hint(placed) / hints;
    }
    placed.left = x;
    x += placed.width + spacing();
  }
  // What the divisions have left over: the last card ends where the others of the page do.
  Placed& last = line.back();
  if (!spaced && last.left + last.width < width && rest > 0) last.width = width - last.left;
}

}  // namespace tarvo::desktop
