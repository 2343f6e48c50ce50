#pragma once

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <functional>

#include "desktop/colours.h"
#include "view/control.h"

// The toolkit's own widgets, kept from changing themselves: a gesture asks the view, and the view's value is shown.
namespace tarvo::desktop {

class PushButton : public QPushButton {
 public:
  PushButton(QWidget* parent, std::function<void()> onEnter);

  /// The one button of a page that the eye should find: painted in the palette's highlight.
  void Accent() { accent_ = true; }

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void paintEvent(QPaintEvent* event) override;

 private:
  std::function<void()> onEnter_;
  bool accent_ = false;
};

class CheckMark : public QCheckBox {
 public:
  using QCheckBox::QCheckBox;

  /// What its back colour stands for.
  void SetRole(Role role);

 protected:
  void nextCheckState() override {}
  void paintEvent(QPaintEvent* event) override;

 private:
  Role role_ = Role::kDark;
};

class OptionMark : public QRadioButton {
 public:
  explicit OptionMark(QWidget* parent);

 protected:
  void nextCheckState() override {}
};

class ListField : public QComboBox {
 public:
  explicit ListField(QWidget* parent);

  /// Room for every entry. The toolkit's own way to it makes the widget jump for a moment when the list changes.
  QSize sizeHint() const override;
  QSize minimumSizeHint() const override { return sizeHint(); }

 protected:
  /// A wheel that scrolls the page must not change a module's setting on its way.
  void wheelEvent(QWheelEvent* event) override;
};

class TextField : public QLineEdit {
 public:
  explicit TextField(QWidget* parent);

  std::function<void(view::Key)> onKey;
  std::function<void()> onLeave;

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;
};

}  // namespace tarvo::desktop
