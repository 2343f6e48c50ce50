#pragma once

#include "desktop/widgets/flow_layout.h"

namespace tarvo::desktop {

/// A page's head: the title at the left, its deeds at the right, what it tells between them. In a narrow place the
/// message keeps its place beside the title as long as it can, and the rest goes below.
class HeadLine : public FlowLayout {
 public:
  using FlowLayout::FlowLayout;

  void AddTitle(QWidget* title) { Add(title, Place::kTitle, 0); }
  /// `room` is kept for the text that will come, so that the head does not break anew when it does.
  void AddNote(QWidget* note, int room = 0) { Add(note, Place::kNote, room); }
  void AddMessage(QWidget* message, int room) { Add(message, Place::kMessage, room); }
  void AddDeed(QWidget* deed) { Add(deed, Place::kDeed, 0); }

  QSize minimumSize() const override;
  QLayoutItem* takeAt(int index) override;

 protected:
  std::vector<Line> Break(int width) const override;

 private:
  enum class Place { kTitle, kNote, kMessage, kDeed };
  struct Part {
    Place place;
    int room;
  };

  void Add(QWidget* widget, Place place, int room);
  bool Is(int index, Place place) const { return parts_[static_cast<std::size_t>(index)].place == place; }
  int WidthOf(int index) const { return itemAt(index)->sizeHint().width(); }
  /// With what is kept for the text to come, and the gap before it.
  int RoomOf(int index) const;

  std::vector<Part> parts_;
};

}  // namespace tarvo::desktop
