#include "desktop/walker.h"

#include <QEvent>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QScrollArea>
#include <QStringList>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>

#include "desktop/text.h"
#include "desktop/widgets/card.h"
#include "desktop/widgets/card_row.h"
#include "desktop/widgets/head_line.h"
#include "desktop/widgets/measure.h"
#include "desktop/widgets/page_list.h"
#include "desktop/widgets/text_label.h"

namespace tarvo::desktop {

namespace {

using NodeKind = view::Node::Kind;

bool Contains(const view::Node& node, NodeKind kind) {
  return node.kind == kind || std::any_of(node.children.begin(), node.children.end(),
                                          [&](const view::Node& child) { return Contains(child, kind); });
}

bool IsKind(const view::Node& node, view::Kind kind) {
  return node.kind == NodeKind::kControl && node.control->GetKind() == kind;
}

/// True when the node takes what room it gets.
bool Spreads(const view::Node& node) {
  if (node.kind == NodeKind::kTable || node.kind == NodeKind::kControl) {
    return IsKind(node, view::Kind::kMeter) ||
           std::any_of(node.children.begin(), node.children.end(), [](const view::Node& row) { return Spreads(row); });
  }
  switch (node.kind) {
    case NodeKind::kSpace:
    case NodeKind::kFrame:
    case NodeKind::kScroller:
    case NodeKind::kHead:
      return true;
    default:
      return std::any_of(node.children.begin(), node.children.end(),
                         [](const view::Node& child) { return Spreads(child); });
  }
}

bool HasButtons(const view::Node& row) {
  return row.kind == NodeKind::kRow &&
         std::any_of(row.children.begin(), row.children.end(),
                     [](const view::Node& child) { return IsKind(child, view::Kind::kButton); });
}

/// Cards stand further apart than what is in them.
int Gap(const view::Node& node, const QWidget& widget) {
  return Em(widget, Contains(node, NodeKind::kFrame) ? 1.0 : 0.4);
}

/// The heading of a field: goes, comes and turns grey with the widget that it heads.
class Heading : public TextLabel {
 public:
  explicit Heading(QWidget* parent) : TextLabel(parent) {
    QSizePolicy policy = sizePolicy();
    policy.setRetainSizeWhenHidden(true);
    setSizePolicy(policy);
  }

  void Accompany(QWidget& widget) {
    widget.installEventFilter(this);
    setVisible(!widget.isHidden());
    setEnabled(widget.isEnabled());
  }

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override {
    if (event->type() == QEvent::ShowToParent) show();
    if (event->type() == QEvent::HideToParent) hide();
    if (event->type() == QEvent::EnabledChange) setEnabled(static_cast<const QWidget*>(watched)->isEnabled());
    return TextLabel::eventFilter(watched, event);
  }
};

TextLabel* MakeText(const QString& text, QWidget* parent, TextLabel::Look look) {
  auto* label = new TextLabel(parent, look);
  label->SetText(text);
  return label;
}

const std::string kNoHeading;

bool Holds(const view::Node& node, const view::Node* sought) {
  return &node == sought || std::any_of(node.children.begin(), node.children.end(),
                                        [&](const view::Node& child) { return Holds(child, sought); });
}

/// The text that names a row of a table: its first that is only shown. Null when there is none.
/// A mark alone: an image or a lamp that has its name from its row and its column.
bool IsBareMark(const view::Node& cell) {
  if (IsKind(cell, view::Kind::kImageBox)) return true;
  return IsKind(cell, view::Kind::kLamp) && static_cast<const view::Lamp*>(cell.control)->Caption().empty();
}

const view::Node* RowName(const view::Node& node) {
  if (node.kind == NodeKind::kText || (IsKind(node, view::Kind::kLabel) && !node.control->TakesClick())) return &node;
  for (const view::Node& child : node.children) {
    if (const view::Node* name = RowName(child)) return name;
  }
  return nullptr;
}

/// What a cell is called: its row, then its column.
Title TitleOf(const view::Node* rowName, const std::string& heading) {
  const view::Label* label = nullptr;
  QString text;
  if (rowName != nullptr && rowName->kind == NodeKind::kControl)
    label = static_cast<const view::Label*>(rowName->control);
  if (rowName != nullptr && label == nullptr) text = ToQt(rowName->text);
  return [label, text, column = ToQt(heading)] {
    QStringList words(label == nullptr ? text : ToQt(label->Caption()));
    words << column;
    words.removeAll(QString());
    return words.join(QLatin1Char(' '));
  };
}

/// The ground of a scroll area is that of the window behind it.
void MakeClear(QScrollArea& area) {
  area.setFrameShape(QFrame::NoFrame);
  area.setFocusPolicy(Qt::NoFocus);
  area.viewport()->setAutoFillBackground(false);
  area.widget()->setAutoFillBackground(false);
}

}  // namespace

QWidget* Walker::Build(const view::Node& node, QWidget* parent) {
  switch (node.kind) {
    case NodeKind::kControl:
      return Make(*node.control, parent, Setting::kPlain);
    case NodeKind::kColumn:
      return BuildColumn(node, parent);
    case NodeKind::kRow:
      return BuildRow(node, parent);
    case NodeKind::kTable:
      return BuildTable(node, parent);
    case NodeKind::kFrame:
      return BuildFrame(node, parent);
    case NodeKind::kField:
      return BuildField(node, parent);
    case NodeKind::kScroller:
      return BuildScroller(node, parent);
    case NodeKind::kHead:
      return BuildHead(node, parent);
    case NodeKind::kText:
      return MakeText(ToQt(node.text), parent, TextLabel::Look::kPlain);
    case NodeKind::kPageList:
      return BuildPageList(node, parent);
    case NodeKind::kPagePlace:  // the main window's own
    case NodeKind::kSpace:
      break;
  }
  return nullptr;
}

QWidget* Walker::Make(view::Control& control, QWidget* parent, Setting setting) {
  return faces_.Make(control, parent, setting, title_);
}

QWidget* Walker::BuildPage(const view::Node& node, QWidget* parent) {
  auto* area = new QScrollArea(parent);
  auto* ground = new QWidget;
  area->setWidget(ground);
  area->setWidgetResizable(true);
  area->setAlignment(Qt::AlignLeft | Qt::AlignTop);
  MakeClear(*area);
  // Wider, and the eye would lose the row. A page without a head is a picture, in the middle of any window.
  if (Contains(node, NodeKind::kHead)) ground->setMaximumWidth(Em(*ground, 80));

  auto* layout = new QVBoxLayout(ground);
  const int margin = Em(*ground, 1.3);
  layout->setContentsMargins(margin, Em(*ground, 1.0), margin, margin);
  const bool fillsHeight = std::any_of(node.children.begin(), node.children.end(), [](const view::Node& child) {
    return child.kind == NodeKind::kSpace || child.kind == NodeKind::kScroller;
  });
  layout->addWidget(Build(node, ground), fillsHeight ? 1 : 0);
  if (!fillsHeight) layout->addStretch(1);
  OrderTabs(node);
  return area;
}

QWidget* Walker::OrderTabs(const view::Node& node, QWidget* before) const {
  for (const view::Control* control : view::ReadingOrder(node)) {
    QWidget* stop = faces_.Find(*control);
    if (stop == nullptr || stop->focusPolicy() == Qt::NoFocus) continue;
    if (before != nullptr) QWidget::setTabOrder(before, stop);
    before = stop;
  }
  return before;
}

QWidget* Walker::BuildColumn(const view::Node& node, QWidget* parent) {
  auto* column = new QWidget(parent);
  auto* layout = new QVBoxLayout(column);
  layout->setContentsMargins({});
  layout->setSpacing(Gap(node, *column));
  QGridLayout* fields = nullptr;
  for (const view::Node& child : node.children) {
    if (child.kind == NodeKind::kField) {
      // Fields that follow each other share their columns.
      if (fields == nullptr) {
        fields = new QGridLayout;
        fields->setHorizontalSpacing(Em(*column, 1.5));
        fields->setVerticalSpacing(Em(*column, 0.5));
        fields->setColumnStretch(0, 1);
        layout->addLayout(fields);
      }
      AddField(child, *fields, fields->rowCount(), column);
      continue;
    }
    fields = nullptr;
    if (child.kind == NodeKind::kSpace) {
      layout->addStretch(1);
    } else if (QWidget* widget = Build(child, column)) {
      // The deeds at the foot stand apart from what they are about.
      if (layout->count() > 0 && HasButtons(child)) layout->addSpacing(Em(*column, 0.6));
      layout->addWidget(widget, child.kind == NodeKind::kScroller ? 1 : 0);
    }
  }
  return column;
}

QWidget* Walker::BuildRow(const view::Node& node, QWidget* parent) {
  if (Contains(node, NodeKind::kFrame)) return BuildCardRow(node, parent);
  auto* row = new QWidget(parent);
  auto* layout = new QHBoxLayout(row);
  layout->setContentsMargins({});
  layout->setSpacing(Em(*row, 0.7));
  bool filled = false;
  for (const view::Node& child : node.children) {
    const bool spreads = Spreads(child);
    filled = filled || spreads;
    if (child.kind == NodeKind::kSpace) {
      layout->addStretch(1);
    } else if (QWidget* widget = Build(child, row)) {
      // What stands side by side in a card starts at the same line.
      const bool fills = child.kind == NodeKind::kControl;
      layout->addWidget(widget, spreads ? 1 : 0, fills ? Qt::Alignment() : Qt::AlignTop);
    }
  }
  if (!filled) layout->addStretch(1);
  return row;
}

QWidget* Walker::BuildCardRow(const view::Node& node, QWidget* parent) {
  auto* row = new QWidget(parent);
  auto* layout = new CardRow(row);
  layout->setSpacing(Gap(node, *row));
  for (const view::Node& child : node.children) {
    if (child.kind == NodeKind::kSpace) {
      layout->AddSpace();
    } else if (QWidget* widget = Build(child, row)) {
      layout->addWidget(widget);
    }
  }
  return row;
}

QWidget* Walker::BuildTable(const view::Node& node, QWidget* parent) {
  auto* table = new QWidget(parent);
  auto* grid = new QGridLayout(table);
  grid->setContentsMargins({});
  grid->setHorizontalSpacing(Em(*table, 0.9));
  grid->setVerticalSpacing(Em(*table, 0.5));

  int row = 0;
  int columns = static_cast<int>(node.headings.size());
  for (int column = 0; column < columns; ++column) {
    const std::string& heading = node.headings[static_cast<std::size_t>(column)];
    if (heading.empty()) continue;
    grid->addWidget(MakeText(ToQt(heading), table, TextLabel::Look::kQuiet), row, column);
  }
  if (columns > 0) ++row;

  bool filled = false;
  for (const view::Node& line : node.children) {
    if (line.kind != NodeKind::kRow) {
      if (QWidget* widget = Build(line, table)) grid->addWidget(widget, row, 0, 1, -1);
      ++row;
      continue;
    }
    const view::Node* name = RowName(line);
    int column = 0;
    for (const view::Node& cell : line.children) {
      if (Spreads(cell)) {
        grid->setColumnStretch(column, 1);
        filled = true;
      }
      const bool headed = column < static_cast<int>(node.headings.size()) && !Holds(cell, name);
      const std::string& heading = headed ? node.headings[static_cast<std::size_t>(column)] : kNoHeading;
      if (QWidget* widget = BuildCell(cell, table, TitleOf(name, heading))) {
        grid->addWidget(widget, row, column, IsBareMark(cell) ? Qt::AlignCenter : Qt::AlignVCenter);
        if (QLayoutItem* above = IsBareMark(cell) ? grid->itemAtPosition(0, column) : nullptr) {
          above->setAlignment(Qt::AlignCenter);
        }
      }
      ++column;
    }
    columns = std::max(columns, column);
    ++row;
  }
  if (!filled) grid->setColumnStretch(columns, 1);
  return table;
}

QWidget* Walker::BuildCell(const view::Node& node, QWidget* parent, Title title) {
  const Titled titled(*this, std::move(title));
  return node.kind == NodeKind::kControl ? Make(*node.control, parent, Setting::kTable) : Build(node, parent);
}

QWidget* Walker::BuildFrame(const view::Node& node, QWidget* parent) {
  auto* card = new Card(parent);
  auto* layout = new QVBoxLayout(card);
  const int side = Em(*card, 1.0);
  layout->setContentsMargins(side, Em(*card, 0.8), side, Em(*card, 1.0));
  layout->setSpacing(Em(*card, 0.6));
  if (!node.text.empty()) {
    auto* caption = MakeText(ToQt(view::WithoutMnemonic(node.text)), card, TextLabel::Look::kQuiet);
    QFont bold = caption->font();
    bold.setBold(true);
    caption->setFont(bold);
    layout->addWidget(caption);
  }
  for (const view::Node& child : node.children) {
    if (QWidget* widget = Build(child, card)) layout->addWidget(widget);
  }
  layout->addStretch(1);
  return card;
}

void Walker::AddField(const view::Node& field, QGridLayout& grid, int row, QWidget* parent) {
  auto* heading = new Heading(parent);
  heading->SetText(ToQt(view::WithoutMnemonic(field.text)));
  grid.addWidget(heading, row, 0, Qt::AlignVCenter);
  const Titled titled(*this, [text = heading->Text()] { return text; });
  for (const view::Node& child : field.children) {
    QWidget* widget = Build(child, parent);
    if (widget == nullptr) continue;
    grid.addWidget(widget, row, 1, Qt::AlignVCenter);
    heading->Accompany(*widget);
  }
}

QWidget* Walker::BuildField(const view::Node& node, QWidget* parent) {
  auto* field = new QWidget(parent);
  auto* grid = new QGridLayout(field);
  grid->setContentsMargins({});
  grid->setHorizontalSpacing(Em(*field, 0.7));
  AddField(node, *grid, 0, field);
  return field;
}

QWidget* Walker::BuildScroller(const view::Node& node, QWidget* parent) {
  auto* area = new QScrollArea(parent);
  auto* ground = new QWidget;
  auto* layout = new QVBoxLayout(ground);
  layout->setContentsMargins({});
  for (const view::Node& child : node.children) {
    if (QWidget* widget = Build(child, ground)) layout->addWidget(widget);
  }
  layout->addStretch(1);
  area->setWidget(ground);
  area->setWidgetResizable(true);
  MakeClear(*area);
  return area;
}

QWidget* Walker::BuildHead(const view::Node& node, QWidget* parent) {
  auto* head = new QWidget(parent);
  auto* layout = new HeadLine(head);
  layout->setSpacing(Em(*head, 0.8));
  layout->AddTitle(MakeText(ToQt(node.text), head, TextLabel::Look::kTitle));
  if (!node.note.empty()) {
    auto* note = MakeText(ToQt(node.note), head, TextLabel::Look::kQuiet);
    note->GiveWay();
    layout->AddNote(note);
  }

  const auto labels = std::count_if(node.children.begin(), node.children.end(),
                                    [](const view::Node& child) { return IsKind(child, view::Kind::kLabel); });
  int label = 0;
  bool accented = false;
  for (const view::Node& child : node.children) {
    if (child.kind != NodeKind::kControl) {
      if (QWidget* widget = Build(child, head)) layout->AddNote(widget);
      continue;
    }
    if (!IsKind(child, view::Kind::kLabel)) {
      const bool accent = IsKind(child, view::Kind::kButton) && !accented;
      accented = accented || accent;
      if (QWidget* widget = Make(*child.control, head, accent ? Setting::kAccent : Setting::kPlain)) {
        layout->AddDeed(widget);
      }
    } else if (++label == labels && labels > 1) {
      // The last of the labels is the message, whatever else a page tells before it.
      layout->AddMessage(Make(*child.control, head, Setting::kMessage), Em(*head, 11));
    } else {
      layout->AddNote(Make(*child.control, head, Setting::kNote), Em(*head, 7));
    }
  }
  return head;
}

QWidget* Walker::BuildPageList(const view::Node& node, QWidget* parent) {
  auto* list = new PageList(parent);
  for (const view::Node& child : node.children) {
    if (!IsKind(child, view::Kind::kLabel)) continue;
    auto& label = static_cast<view::Label&>(*child.control);
    list->Add(faces_.MakePageLabel(label, list->LabelParent(), [list] { list->LabelsChanged(); }));
  }
  return list;
}

}  // namespace tarvo::desktop
