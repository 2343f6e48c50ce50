#pragma once

#include "desktop/widgets/flow_layout.h"

namespace tarvo::desktop {

/// Cards side by side as long as all find room, under one another when not. Those of a line are equally high and share
/// its width by what they hold.
class CardRow : public FlowLayout {
 public:
  using FlowLayout::FlowLayout;

  /// Takes the room that the cards of its line leave.
  void AddSpace();

 protected:
  std::vector<Line> Break(int width) const override;

 private:
  void Share(Line& line, int width) const;
};

}  // namespace tarvo::desktop
