#pragma once

#include "desktop/colours.h"
#include "desktop/widgets/clickable.h"

namespace tarvo::desktop {

/// A round mark, with a caption if it has one: filled when lit, a ring when dark.
class Mark : public Clickable {
 public:
  enum class Size { kLarge, kSmall };

  Mark(QWidget* parent, Size size);

  void SetRole(Role role);
  void SetCaption(const QString& caption);
  bool Lit() const { return role_ != Role::kDark && role_ != Role::kQuiet; }

  QSize sizeHint() const override;
  QSize minimumSizeHint() const override { return sizeHint(); }

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  int Diameter() const;
  /// Around the mark, so that the focus ring has room.
  int Margin() const;

  Size size_;
  Role role_ = Role::kDark;
  QString caption_;
};

}  // namespace tarvo::desktop
