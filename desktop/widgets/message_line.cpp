#include "desktop/widgets/message_line.h"

#include <QHBoxLayout>

#include "desktop/widgets/mark.h"
#include "desktop/widgets/measure.h"
#include "desktop/widgets/text_label.h"

namespace tarvo::desktop {

MessageLine::MessageLine(QWidget* parent)
    : QWidget(parent), mark_(new Mark(this, Mark::Size::kSmall)), text_(new TextLabel(this)) {
  auto* layout = new QHBoxLayout(this);
  layout->setContentsMargins({});
  layout->setSpacing(Em(*this, 0.1));
  layout->addWidget(mark_);
  layout->addWidget(text_);
  QSizePolicy keepsItsRoom = mark_->sizePolicy();
  keepsItsRoom.setRetainSizeWhenHidden(true);
  mark_->setSizePolicy(keepsItsRoom);
  mark_->hide();
}

const QString& MessageLine::Text() const {
  return text_->Text();
}

void MessageLine::SetText(const QString& text) {
  text_->SetText(text);
  mark_->SetRole(text == QLatin1String("OK") ? Role::kGood : Role::kCaution);
  mark_->setVisible(!text.isEmpty());
}

}  // namespace tarvo::desktop
