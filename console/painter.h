#pragma once

#include <string>
#include <vector>

#include "console/block.h"
#include "view/ar_metor.h"
#include "view/arrangement.h"
#include "view/control.h"
#include "view/screen.h"

namespace tarvo::console {

/// What a drawing is made of.
struct Glyphs {
  char32_t horizontal, vertical;
  char32_t topLeft, topRight, bottomLeft, bottomRight;
  char32_t teeDown, teeUp, teeRight, teeLeft;
  char32_t cardTopLeft, cardTopRight, cardBottomLeft, cardBottomRight;
  char32_t lit, dark, chosen, full, empty, list, selected;
  char32_t dim;  ///< on both sides of what is disabled
  char32_t gear;
  bool ascii;
};
extern const Glyphs kUnicodeGlyphs;
extern const Glyphs kAsciiGlyphs;

/// Walks an arrangement and draws it.
class Painter {
 public:
  Painter(const view::Screen& screen, const Glyphs& glyphs) : screen_(screen), glyphs_(glyphs) {}

  /// `width` and `height` are what the node may fill; with 0 it takes what it needs.
  Block Paint(const view::Node& node, int width = 0, int height = 0) const;
  /// A window's frame, with its title in the upper edge, around `content`.
  Block PaintWindow(const std::string& title, const Block& content, int width) const;
  /// A line from edge to edge of a window.
  Block Rule(int width) const { return Block(Repeat(glyphs_.horizontal, width)); }

 private:
  Block PaintColumn(const view::Node& column, int width, int height) const;
  Block PaintRow(const std::vector<view::Node>& all, int width, int height) const;
  Block PaintTable(const view::Node& table, int width) const;
  Block PaintFrame(const view::Node& frame, int width, int height) const;
  Block PaintHead(const view::Node& head, int width) const;
  Block PaintPageList(const view::Node& list, int height) const;
  Block PaintPage(int width, int height) const;

  /// A control fills `width` when its kind has a field that can be larger than its content.
  std::u32string PaintControl(const view::Control& control, int width) const;
  std::u32string Bar(const view::ARMetor& meter, int width) const;
  /// `text`, between dots when the control is disabled.
  std::u32string Dimmed(const view::Control& control, const std::u32string& text) const;
  /// `text` between `open` and `close`, or between dots when the control is disabled.
  std::u32string Bracketed(const view::Control& control, char32_t open, const std::u32string& text,
                           char32_t close) const;
  std::u32string Mark(bool lit) const { return {lit ? glyphs_.lit : glyphs_.dark}; }

  bool Shown(const view::Node& node) const;
  /// Something in it makes use of more width than it needs.
  bool Stretches(const view::Node& node) const;

  const view::Screen& screen_;
  const Glyphs& glyphs_;
};

/// True for a text that is a number, so that it stands at the right of its column.
bool LooksLikeNumber(const std::u32string& text);

}  // namespace tarvo::console
