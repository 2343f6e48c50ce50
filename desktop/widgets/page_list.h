#pragma once

#include <QScrollArea>
#include <vector>

#include "desktop/widgets/clickable.h"

class QVBoxLayout;

namespace tarvo::desktop {

/// One entry of the page list.
class PageLabel : public Clickable {
 public:
  explicit PageLabel(QWidget* parent);

  const QString& Text() const { return text_; }
  void SetText(const QString& text);
  bool Selected() const { return selected_; }
  void SetSelected(bool selected);

  QSize sizeHint() const override;
  QSize minimumSizeHint() const override { return sizeHint(); }

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  QString text_;
  bool selected_ = false;
};

/// The list that leads to the pages: one stop for Tab, arrows within, Enter or Space goes to the page.
class PageList : public QScrollArea {
 public:
  explicit PageList(QWidget* parent);

  QWidget* LabelParent() const { return column_; }
  void Add(PageLabel* label);
  /// To be called when labels were shown, hidden, selected, enabled or disabled.
  void LabelsChanged();

  /// The label at which Tab stops: that of the page shown, else the first that can be clicked; null when none can.
  PageLabel* Stop() const;

  /// As wide as its widest label.
  QSize sizeHint() const override;
  QSize minimumSizeHint() const override { return {sizeHint().width(), 0}; }

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;

 private:
  /// The next label that can be clicked, from `place` on in `direction`; null when there is none.
  PageLabel* UsableFrom(int place, int direction) const;
  /// Moves the focus as `key` says; false when it is no such key.
  bool Move(const PageLabel* from, int key);

  QWidget* column_;
  QVBoxLayout* layout_;
  std::vector<PageLabel*> labels_;
};

}  // namespace tarvo::desktop
