#include "console/painter.h"

#include <algorithm>
#include <utility>

#include "console/text.h"
#include "view/window.h"

namespace tarvo::console {

using view::Control;
using view::Node;

const Glyphs kUnicodeGlyphs = {U'─', U'│', U'┌', U'┐', U'└', U'┘', U'┬', U'┴', U'├', U'┤', U'╭', U'╮',
                               U'╰', U'╯', U'●', U'○', U'•', U'█', U'░', U'▾', U'▸', U'·', U'⚙', false};
const Glyphs kAsciiGlyphs = {U'-', U'|', U'+', U'+', U'+', U'+', U'+', U'+', U'+', U'+', U'+', U'+',
                             U'+', U'+', U'*', U'o', U'*', U'#', U'.', U'v', U'>', U'.', U'*', true};

namespace {

constexpr int kColumnGap = 3;
constexpr int kShortestBar = 10;
constexpr int kPercentColumns = 5;  // " 100%"
constexpr int kTextBoxColumns = 14;

/// Room that is left, in nearly equal parts for those who take it. There may be none left.
class Shares {
 public:
  Shares(int room, int takers) : room_(std::max(room, 0)), takers_(takers) {}

  int Next() {
    const int share = room_ / std::max(takers_, 1);
    --takers_;
    room_ -= share;
    return share;
  }

 private:
  int room_;
  int takers_;
};

bool IsFrame(const Node& node) {
  return node.kind == Node::Kind::kFrame;
}

bool HasFrame(const Node& node) {
  return IsFrame(node) || std::any_of(node.children.begin(), node.children.end(), HasFrame);
}

bool IsPanel(const Node& node) {
  return node.control != nullptr && node.control->GetKind() == view::Kind::kPanel;
}

std::u32string Caption(const std::string& caption) {
  std::u32string text = Printable(view::WithoutMnemonic(caption));
  while (!text.empty() && text.back() == U' ') text.pop_back();
  return text;
}

bool IsLit(view::Colour colour) {
  return colour == view::kRed;
}

/// `text` over `width` columns, numbers at the right.
std::u32string Fill(const std::u32string& text, int width) {
  const std::u32string blanks = Repeat(U' ', width - WidthOf(text));
  return LooksLikeNumber(text) ? blanks + text : text + blanks;
}

}  // namespace

bool LooksLikeNumber(const std::u32string& text) {
  bool digits = false;
  for (const char32_t point : text) {
    if (point >= U'0' && point <= U'9') {
      digits = true;
    } else if (std::u32string_view(U" +-.,%").find(point) == std::u32string_view::npos) {
      return false;
    }
  }
  return digits;
}

Block Painter::Paint(const Node& node, int width, int height) const {
  if (node.control != nullptr) {
    const bool fills = node.control->GetKind() == view::Kind::kMeter;
    return Block(PaintControl(*node.control, fills ? width : 0));
  }
  switch (node.kind) {
    case Node::Kind::kControl:
      break;
    case Node::Kind::kColumn:
      return PaintColumn(node, width, height);
    case Node::Kind::kRow:
      return PaintRow(node.children, width, height);
    case Node::Kind::kTable:
      return PaintTable(node, width);
    case Node::Kind::kFrame:
      return PaintFrame(node, width, height);
    case Node::Kind::kField: {
      Block field(Printable(node.text));
      return field.Beside(Paint(node.children.front(), std::max(width - field.Width() - 1, 0)), 1);
    }
    case Node::Kind::kScroller:
      return Paint(node.children.front(), width, height);
    case Node::Kind::kSpace:
      return Block(Repeat(U' ', width));
    case Node::Kind::kHead:
      return PaintHead(node, width);
    case Node::Kind::kText:
      return Block(Printable(node.text));
    case Node::Kind::kPageList:
      return PaintPageList(node, height);
    case Node::Kind::kPagePlace:
      return PaintPage(width, height);
  }
  return {};
}

Block Painter::PaintColumn(const Node& column, int width, int height) const {
  // Fields that follow each other are lines of one table, so that their headings and contents are aligned.
  std::vector<Node> children;
  for (const Node& child : column.children) {
    if (!Shown(child)) continue;
    if (child.kind != Node::Kind::kField) {
      children.push_back(child);
      continue;
    }
    const bool follows =
        !children.empty() && children.back().kind == Node::Kind::kTable && children.back().headings.empty();
    if (!follows) children.push_back(view::Table({}, {}));
    children.back().children.push_back(view::Row({view::Text(child.text), child.children.front()}));
  }

  std::vector<Block> blocks;
  int total = 0;
  for (const Node& child : children) {
    blocks.push_back(child.kind == Node::Kind::kSpace ? Block() : Paint(child, width));
    total += blocks.back().Height();
  }

  // Height that is left goes to the spaces, else to the last child that has a frame.
  const int left = height - total;
  const auto isSpace = [](const Node& child) { return child.kind == Node::Kind::kSpace; };
  const auto spaces = static_cast<int>(std::count_if(children.begin(), children.end(), isSpace));
  if (left > 0 && spaces > 0) {
    Shares shares(left, spaces);
    for (std::size_t i = 0; i < children.size(); ++i) {
      if (isSpace(children[i])) blocks[i].Pad(0, shares.Next());
    }
  } else if (left > 0 && !children.empty() && (HasFrame(children.back()) || children.back().kind == Node::Kind::kRow)) {
    blocks.back() = Paint(children.back(), width, blocks.back().Height() + left);
  }

  Block painted;
  for (const Block& block : blocks) painted.Below(block);
  return painted.Pad(0, height);
}

Block Painter::PaintRow(const std::vector<Node>& all, int width, int height) const {
  std::vector<Node> children;
  for (const Node& child : all) {
    if (Shown(child)) children.push_back(child);
  }
  if (children.empty()) return {};

  const auto gapBefore = [&](std::size_t i) {
    if (i == 0) return 0;
    if (children[i - 1].kind == Node::Kind::kPageList || (IsFrame(children[i - 1]) && IsFrame(children[i]))) return 1;
    const bool options = children[i].control != nullptr && children[i].control->GetKind() == view::Kind::kOptionButton;
    return children[i].kind == Node::Kind::kControl && options ? 2 : kColumnGap;
  };
  std::vector<int> widths;
  int total = 0;
  for (std::size_t i = 0; i < children.size(); ++i) {
    // A page makes do with the room that the main window leaves it.
    const bool isPage = width > 0 && children[i].kind == Node::Kind::kPagePlace;
    widths.push_back(isPage ? 0 : Paint(children[i]).Width());
    total += gapBefore(i) + widths[i];
    if (width > 0 && total > width && i > 0 && !isPage) {
      // What does not fit goes on below.
      const auto fold = children.begin() + static_cast<std::ptrdiff_t>(i);
      Block folded = PaintRow({children.begin(), fold}, width, 0);
      return folded.Below(PaintRow({fold, children.end()}, width, height - folded.Height()));
    }
  }

  // Width that is left goes to the spaces, else to all that can use it.
  const bool hasSpace =
      std::any_of(children.begin(), children.end(), [](const Node& c) { return c.kind == Node::Kind::kSpace; });
  const auto takes = [&](const Node& child) { return hasSpace ? child.kind == Node::Kind::kSpace : Stretches(child); };
  Shares shares(width - total, static_cast<int>(std::count_if(children.begin(), children.end(), takes)));
  for (std::size_t i = 0; i < children.size(); ++i) {
    if (takes(children[i])) widths[i] += shares.Next();
  }

  int tallest = height;
  for (std::size_t i = 0; i < children.size(); ++i) tallest = std::max(tallest, Paint(children[i], widths[i]).Height());
  Block painted;
  for (std::size_t i = 0; i < children.size(); ++i) {
    int gap = gapBefore(i);
    if (i > 0 && IsPanel(children[i - 1]) && IsPanel(children[i])) {
      // A line in the middle of the gap.
      painted.Beside(Block(std::u32string{glyphs_.vertical}), gap / 2);
      gap -= gap / 2 + 1;
    }
    painted.Beside(Paint(children[i], widths[i], tallest).Pad(widths[i]), gap);
  }
  return painted;
}

Block Painter::PaintTable(const Node& table, int width) const {
  struct Column {
    int width = 0;
    bool numbers = true;
    bool stretches = false;
    bool brackets = false;
  };
  std::vector<Column> columns(table.headings.size());
  const auto cellsOf = [](const Node& row) -> std::span<const Node> {
    if (row.kind == Node::Kind::kRow) return row.children;
    return {&row, 1};
  };
  for (std::size_t i = 0; i < columns.size(); ++i) columns[i].width = WidthOf(Printable(table.headings[i]));
  for (const Node& row : table.children) {
    if (!Shown(row)) continue;
    const auto cells = cellsOf(row);
    if (columns.size() < cells.size()) columns.resize(cells.size());
    for (std::size_t i = 0; i < cells.size(); ++i) {
      if (!Shown(cells[i])) continue;
      Column& column = columns[i];
      column.width = std::max(column.width, Paint(cells[i]).Width());
      column.stretches = column.stretches || Stretches(cells[i]);
      const auto* label = dynamic_cast<const view::Label*>(cells[i].control);
      column.brackets = column.brackets || (label != nullptr && label->TakesClick());
      column.numbers = column.numbers && label != nullptr && LooksLikeNumber(Printable(label->Caption()));
    }
  }

  int left = width;
  int takers = 0;
  for (std::size_t i = 0; i < columns.size(); ++i) {
    left -= columns[i].width + (i > 0 ? kColumnGap : 0);
    takers += columns[i].stretches ? 1 : 0;
  }
  Shares shares(left, takers);
  for (Column& column : columns) {
    if (column.stretches) column.width += shares.Next();
  }

  Block painted;
  if (!table.headings.empty()) {
    Block line;
    for (std::size_t i = 0; i < table.headings.size(); ++i) {
      Block heading(Printable(table.headings[i]));
      if (columns[i].numbers) heading.PadLeft(columns[i].width);
      line.Beside(heading.Pad(columns[i].width), i > 0 ? kColumnGap : 0);
    }
    painted.Below(line);
  }
  for (const Node& row : table.children) {
    if (!Shown(row)) continue;
    const auto cells = cellsOf(row);
    Block line;
    for (std::size_t i = 0; i < cells.size(); ++i) {
      Block cell;
      if (const Control* control = cells[i].control; control == nullptr) {
        if (Shown(cells[i])) cell = Paint(cells[i], columns[i].width);
      } else if (control->Visible()) {
        // Numbers end in one column, with and without brackets.
        const bool plain = columns[i].brackets && !control->TakesClick();
        cell = Block(PaintControl(*control, columns[i].width - (plain ? 2 : 0)));
      }
      line.Beside(cell.Pad(columns[i].width), i > 0 ? kColumnGap : 0);
    }
    painted.Below(line);
  }
  return painted;
}

Block Painter::PaintFrame(const Node& frame, int width, int height) const {
  const std::u32string caption = Printable(frame.text);
  Block content = Paint(frame.children.front(), std::max(width - 4, 0), std::max(height - 2, 0));
  const int captionWidth = caption.empty() ? 0 : WidthOf(caption) + 2;
  content.Pad(std::max(width - 4, captionWidth), std::max(height - 2, 1));

  const int inner = content.Width() + 2;
  std::u32string top = {glyphs_.cardTopLeft};
  if (!caption.empty()) top += glyphs_.horizontal + (U" " + caption + U" ");
  top += Repeat(glyphs_.horizontal, inner + 1 - WidthOf(top)) + glyphs_.cardTopRight;
  Block painted(std::move(top));
  for (const std::u32string& line : content.Lines()) {
    painted.Below(Block(glyphs_.vertical + (U" " + line + U" ") + glyphs_.vertical));
  }
  return painted.Below(Block(glyphs_.cardBottomLeft + Repeat(glyphs_.horizontal, inner) + glyphs_.cardBottomRight));
}

Block Painter::PaintHead(const Node& head, int width) const {
  const Block model(Printable(head.text));
  const Block note(Printable(head.note));
  Block left = model;
  if (note.Width() > 0) left.Beside(note, 2);

  Block right;
  int labels = 0;
  for (const Node& child : head.children) {
    const auto* label = dynamic_cast<const view::Label*>(child.control);
    if (label != nullptr) ++labels;
    if (!Shown(child)) continue;
    Block part = Paint(child);
    // The second label is the message: a mark before it tells good from bad.
    if (labels == 2 && label != nullptr && part.Width() > 0) {
      Block message(std::u32string{label->Caption() == "OK" ? glyphs_.lit : U'!'});
      part = message.Beside(part, 1);
    }
    if (part.Width() > 0) right.Beside(part, right.Width() > 0 ? kColumnGap : 0);
  }
  if (right.Height() == 0) return left;
  if (width == 0) return left.Beside(right, kColumnGap);
  const auto fits = [&](const Block& beside) { return beside.Width() + kColumnGap + right.Width() <= width; };
  const auto inOneLine = [&](Block line) { return line.Beside(right, width - line.Width() - right.Width()); };
  if (fits(left)) return inOneLine(left);
  if (fits(model)) return inOneLine(model).Below(note);
  return left.Below(right.PadLeft(width));
}

Block Painter::PaintPageList(const Node& list, int height) const {
  Block painted;
  for (const Node& child : list.children) {
    if (!Shown(child)) continue;
    const auto* label = dynamic_cast<const view::Label*>(child.control);
    if (label == nullptr) continue;
    // All of them can be clicked, so brackets would tell nothing. One that is disabled is no wider than the others.
    const char32_t side = label->Enabled() ? U' ' : glyphs_.dim;
    const char32_t mark = label->BackColor() == view::kHighlight ? glyphs_.selected : U' ';
    painted.Below(Block(std::u32string{mark, side} + Caption(label->Caption()) + std::u32string{side, U' '}));
  }
  painted.Pad(0, height);
  Block line;
  for (int i = 0; i < painted.Height(); ++i) line.Below(Block(std::u32string{glyphs_.vertical}));
  return painted.Beside(line, 0);
}

Block Painter::PaintPage(int width, int height) const {
  const view::Window* page = screen_.Page();
  if (page == nullptr) return Block(Repeat(U' ', width));
  return Paint(page->Arrangement(), width, height);
}

Block Painter::PaintWindow(const std::string& title, const Block& content, int width) const {
  const std::u32string text = Printable(title);
  Block inner = content;
  inner.Pad(std::max(width - 2, WidthOf(text) + 4));
  std::u32string top = glyphs_.topLeft + Repeat(glyphs_.horizontal, 1) + U" " + text + U" ";
  top += Repeat(glyphs_.horizontal, inner.Width() + 1 - WidthOf(top)) + glyphs_.topRight;
  std::vector<std::u32string> lines;
  lines.push_back(std::move(top));
  for (const std::u32string& line : inner.Lines()) lines.push_back(glyphs_.vertical + line + glyphs_.vertical);
  lines.push_back(glyphs_.bottomLeft + Repeat(glyphs_.horizontal, inner.Width()) + glyphs_.bottomRight);

  // Where lines meet.
  const auto isRule = [&](const std::u32string& line) {
    return std::all_of(line.begin() + 1, line.end() - 1, [&](char32_t glyph) { return glyph == glyphs_.horizontal; });
  };
  for (std::size_t i = 1; i < lines.size(); ++i) {
    std::u32string& line = lines[i];
    if (!isRule(line)) continue;
    const bool last = i + 1 == lines.size();
    if (!last) {
      line.front() = glyphs_.teeRight;
      line.back() = glyphs_.teeLeft;
    }
    for (std::size_t column = 1; column + 1 < line.size(); ++column) {
      if (lines[i - 1][column] == glyphs_.vertical) line[column] = glyphs_.teeUp;
      if (!last && lines[i + 1][column] == glyphs_.vertical) line[column] = glyphs_.teeDown;
    }
  }
  Block painted;
  for (std::u32string& line : lines) painted.Below(Block(std::move(line)));
  return painted;
}

std::u32string Painter::Bracketed(const Control& control, char32_t open, const std::u32string& text,
                                  char32_t close) const {
  return control.Enabled() ? open + text + close : glyphs_.dim + text + glyphs_.dim;
}

std::u32string Painter::Dimmed(const Control& control, const std::u32string& text) const {
  return control.Enabled() || text.empty() ? text : glyphs_.dim + text + glyphs_.dim;
}

std::u32string Painter::Bar(const view::ARMetor& meter, int width) const {
  std::u32string caption = Caption(meter.Caption());
  if (!caption.empty()) caption += U' ';
  const int room = std::max(width - WidthOf(caption) - kPercentColumns, kShortestBar);
  const int filled = std::clamp(meter.Percent() * room / 100, 0, room);
  const std::u32string percent = Decode(std::to_string(meter.Percent()) + "%");
  return caption + Repeat(glyphs_.full, filled) + Repeat(glyphs_.empty, room - filled) +
         Repeat(U' ', kPercentColumns - WidthOf(percent)) + percent;
}

std::u32string Painter::PaintControl(const Control& control, int width) const {
  const auto captioned = [&](const std::u32string& mark, const std::string& caption) {
    const std::u32string text = Caption(caption);
    return text.empty() ? mark : mark + U" " + text;
  };
  switch (control.GetKind()) {
    case view::Kind::kLabel: {
      const auto& label = static_cast<const view::Label&>(control);
      if (!label.TakesClick()) return Fill(Dimmed(control, Caption(label.Caption())), width);
      return Bracketed(control, U'[', U" " + Fill(Caption(label.Caption()), width - 4) + U" ", U']');
    }
    case view::Kind::kButton:
      return Bracketed(control, U'<', U" " + Caption(static_cast<const view::Button&>(control).Caption()) + U" ", U'>');
    case view::Kind::kCheckBox: {
      const auto& box = static_cast<const view::CheckBox&>(control);
      return captioned(Bracketed(control, U'[', {box.Value() != 0 ? U'x' : U' '}, U']'), box.Caption());
    }
    case view::Kind::kOptionButton: {
      const auto& option = static_cast<const view::OptionButton&>(control);
      return captioned(Bracketed(control, U'(', {option.Value() ? glyphs_.chosen : U' '}, U')'), option.Caption());
    }
    case view::Kind::kComboBox: {
      const auto& combo = static_cast<const view::ComboBox&>(control);
      // As wide as its widest entry, so that a choice moves nothing.
      int entry = width - 4;
      for (const std::string& text : combo.List()) entry = std::max(entry, WidthOf(Printable(text)));
      return Bracketed(control, U'[', Fill(Printable(combo.Text()), entry) + U" " + glyphs_.list, U']');
    }
    case view::Kind::kTextBox: {
      const auto& box = static_cast<const view::TextBox&>(control);
      std::u32string text = Printable(box.Text());
      if (box.Locked) return Fill(Dimmed(control, text), width);
      text += Repeat(U'_', std::max(width, kTextBoxColumns) - 2 - WidthOf(text));
      return Bracketed(control, U'[', text, U']');
    }
    case view::Kind::kImageBox: {
      const auto& image = static_cast<const view::ImageBox&>(control);
      const bool isInput = image.GetAlbum() == view::ImageBox::Album::kInput;
      const std::u32string mark = isInput ? Mark(image.Picture() == 2) : std::u32string(1, glyphs_.gear);
      return image.TakesClick() ? Bracketed(control, U'[', mark, U']') : mark;
    }
    case view::Kind::kLamp: {
      const auto& lamp = static_cast<const view::Lamp&>(control);
      return Dimmed(control, captioned(Mark(IsLit(lamp.BackColor())), lamp.Caption()));
    }
    case view::Kind::kMeter:
      return Bar(static_cast<const view::ARMetor&>(control), width);
    case view::Kind::kClip:
      return static_cast<const view::Clip&>(control).Playing() ? U"[running]" : U"";
    case view::Kind::kPanel:
      return Printable(static_cast<const view::Panel&>(control).Text());
    case view::Kind::kMenuItem:
      return Dimmed(control, Caption(static_cast<const view::MenuItem&>(control).Caption()));
    case view::Kind::kTimer:
    case view::Kind::kComponent:
      break;
  }
  return {};
}

bool Painter::Shown(const Node& node) const {
  if (node.control != nullptr) return node.control->Visible();
  if (node.children.empty()) return true;
  return std::any_of(node.children.begin(), node.children.end(), [&](const Node& child) { return Shown(child); });
}

bool Painter::Stretches(const Node& node) const {
  if (!Shown(node)) return false;
  if (node.control != nullptr) return node.control->GetKind() == view::Kind::kMeter || IsPanel(node);
  switch (node.kind) {
    case Node::Kind::kFrame:
    case Node::Kind::kSpace:
    case Node::Kind::kHead:
    case Node::Kind::kPagePlace:
      return true;
    default:
      return std::any_of(node.children.begin(), node.children.end(),
                         [&](const Node& child) { return Stretches(child); });
  }
}

}  // namespace tarvo::console
