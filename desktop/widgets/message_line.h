#pragma once

#include <QWidget>

namespace tarvo::desktop {

class Mark;
class TextLabel;

/// A page's message with a mark: green when all is well, amber at any other text, none without a text.
class MessageLine : public QWidget {
 public:
  explicit MessageLine(QWidget* parent);

  const QString& Text() const;
  void SetText(const QString& text);

 private:
  Mark* mark_;
  TextLabel* text_;
};

}  // namespace tarvo::desktop
