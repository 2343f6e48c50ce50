#include "console/show.h"

#include <algorithm>
#include <string_view>
#include <utility>
#include <vector>

#include "console/block.h"
#include "console/painter.h"
#include "console/text.h"
#include "view/window.h"

namespace tarvo::console {

namespace {

constexpr int kBoxTextColumns = 60;
constexpr int kSmallestBox = 36;

/// `text` in lines of at most `width` columns, broken at blanks where there are any.
std::vector<std::u32string> Wrapped(std::string_view text, int width) {
  std::vector<std::u32string> lines;
  const auto limit = static_cast<std::size_t>(width);
  while (true) {
    const std::size_t end = text.find('\n');
    std::u32string rest = Printable(text.substr(0, end));
    while (rest.size() > limit) {
      const std::size_t blank = rest.rfind(U' ', limit);
      const bool broken = blank != std::u32string::npos && blank > 0;
      lines.push_back(rest.substr(0, broken ? blank : limit));
      rest.erase(0, broken ? blank + 1 : limit);
    }
    lines.push_back(std::move(rest));
    if (end == std::string_view::npos) return lines;
    text.remove_prefix(end + 1);
  }
}

char32_t SignOf(view::Icon icon) {
  switch (icon) {
    case view::Icon::kCritical:
      return U'X';
    case view::Icon::kQuestion:
      return U'?';
    case view::Icon::kExclamation:
      return U'!';
    case view::Icon::kInformation:
      return U'i';
    case view::Icon::kNone:
      break;
  }
  return 0;
}

/// `content` with a blank column at each side and a blank line above and below.
Block WithMargin(const Block& content) {
  Block margin(std::u32string(1, U' '));
  const Block line(std::u32string{});
  Block inside = line;
  inside.Below(content).Below(line);
  return margin.Beside(inside, 1).Beside(Block(U"  "), 0);
}

Block Centred(Block block, int width) {
  return block.PadLeft(block.Width() + std::max(width - block.Width(), 0) / 2);
}

Block PaintBox(const Painter& painter, const view::MessageBox& box) {
  Block text;
  for (std::u32string& line : Wrapped(box.text, kBoxTextColumns)) text.Below(Block(std::move(line)));
  Block content;
  if (const char32_t sign = SignOf(box.icon); sign != 0) {
    content.Below(Block(std::u32string{U'(', sign, U')'})).Beside(text, 2);
  } else {
    content.Below(text);
  }
  Block buttons;
  for (const std::string& button : box.buttons) {
    buttons.Beside(Block(U"< " + Printable(button) + U" >"), buttons.Width() > 0 ? 3 : 0);
  }
  const int width = std::max({content.Width(), buttons.Width(), kSmallestBox});
  content.Below(Block(std::u32string{})).Below(Centred(std::move(buttons), width));
  return painter.PaintWindow(box.caption, WithMargin(content.Pad(width)), 0);
}

Block PaintFileDialog(const Painter& painter, const view::FileDialog& dialog) {
  Block content(U"Files  " + Printable(dialog.filter));
  content.Below(Block(std::u32string{})).Below(Block(U"Answer with a path, or with Cancel."));
  return painter.PaintWindow(dialog.save ? "Save" : "Open", WithMargin(content), 0);
}

Block PaintMain(const Painter& painter, const view::Window& main, int width) {
  Block menu;
  for (const view::Control* control : main.Controls()) {
    if (control->GetKind() != view::Kind::kMenuItem || !control->Visible()) continue;
    const auto* item = static_cast<const view::MenuItem*>(control);
    if (item->Menu() == nullptr) menu.Beside(painter.Paint(view::Show(*item)), menu.Width() > 0 ? 3 : 1);
  }

  // Each part of the main window between rules, from edge to edge; all as wide as the one that needs most.
  view::Node whole = main.Arrangement();
  std::vector<view::Node> parts;
  if (whole.kind == view::Node::Kind::kColumn) {
    parts = std::move(whole.children);
  } else {
    parts.push_back(std::move(whole));
  }
  int widest = width - 4;
  for (const view::Node& part : parts) widest = std::max(widest, painter.Paint(part, width - 4).Width());
  Block content = std::move(menu);
  for (const view::Node& part : parts) {
    if (content.Height() > 0) content.Below(painter.Rule(widest + 2));
    Block margin(std::u32string(1, U' '));
    content.Below(margin.Beside(painter.Paint(part, widest), 0));
  }
  return painter.PaintWindow(main.Caption, content, width);
}

Block PaintFront(const Painter& painter, const view::Screen& screen, int width) {
  if (const view::Modal* front = screen.Front()) {
    if (const view::MessageBox* box = front->AsMessageBox()) return PaintBox(painter, *box);
    if (const view::FileDialog* dialog = front->AsFileDialog()) return PaintFileDialog(painter, *dialog);
    const Block content = painter.Paint(front->AsWindow()->Arrangement());
    const Block filled = painter.Paint(front->AsWindow()->Arrangement(), std::max(content.Width(), kSmallestBox));
    return painter.PaintWindow(front->AsWindow()->Caption, WithMargin(filled), 0);
  }
  if (const view::Window* main = screen.Main()) return PaintMain(painter, *main, width);
  return screen.Page() == nullptr ? Block() : painter.Paint(screen.Page()->Arrangement(), width);
}

}  // namespace

std::string Show(const view::Screen& screen, const Drawing& drawing) {
  const Painter painter(screen, drawing.utf8 ? kUnicodeGlyphs : kAsciiGlyphs);
  const Block block = PaintFront(painter, screen, drawing.width);
  std::string text;
  for (std::u32string line : block.Lines()) {
    while (!line.empty() && line.back() == U' ') line.pop_back();
    if (!drawing.utf8) {
      std::replace_if(line.begin(), line.end(), [](char32_t point) { return point > 0x7E; }, U'?');
    }
    text += Encode(line) + '\n';
  }
  return text;
}

}  // namespace tarvo::console
