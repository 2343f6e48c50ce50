#pragma once

#include "desktop/widgets/flow_layout.h"

namespace tarvo::desktop {

/// The texts of a status bar: the last at the right, the first takes the room that it leaves. Where there is too little
/// for all, the first is whole as long as the others keep their share.
class StatusLine : public FlowLayout {
 public:
  using FlowLayout::FlowLayout;

 protected:
  std::vector<Line> Break(int width) const override;
};

}  // namespace tarvo::desktop
