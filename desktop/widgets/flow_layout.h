#pragma once

#include <QLayout>
#include <memory>
#include <vector>

namespace tarvo::desktop {

/// A layout of lines: what finds no room beside the rest goes to the next line. How lines break is the derived
/// layout's business.
class FlowLayout : public QLayout {
 public:
  explicit FlowLayout(QWidget* parent);
  ~FlowLayout() override;

  void addItem(QLayoutItem* item) override { items_.emplace_back(item); }
  int count() const override { return static_cast<int>(items_.size()); }
  QLayoutItem* itemAt(int index) const override;
  QLayoutItem* takeAt(int index) override;

  Qt::Orientations expandingDirections() const override { return Qt::Horizontal; }
  bool hasHeightForWidth() const override { return true; }
  int heightForWidth(int width) const override;
  QSize sizeHint() const override;
  QSize minimumSize() const override;
  void setGeometry(const QRect& place) override;

 protected:
  struct Placed {
    QLayoutItem* item = nullptr;
    int left = 0;
    int width = 0;
  };
  /// What stands side by side.
  using Line = std::vector<Placed>;

  /// The lines in that width, from top to bottom.
  virtual std::vector<Line> Break(int width) const = 0;
  /// The items that have a place of their own, in order.
  std::vector<QLayoutItem*> Shown() const;

 private:
  static int HeightOf(const Line& line);

  std::vector<std::unique_ptr<QLayoutItem>> items_;
};

}  // namespace tarvo::desktop
