#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace tarvo::console {

/// A rectangle of text: lines of one width, each code point one column.
class Block {
 public:
  Block() = default;
  /// One line.
  explicit Block(std::u32string line);

  int Width() const { return width_; }
  int Height() const { return static_cast<int>(lines_.size()); }
  const std::vector<std::u32string>& Lines() const { return lines_; }

  /// Blanks at the right and below, up to that size; a larger block stays.
  Block& Pad(int width, int height = 0);
  /// Blanks at the left, up to that width.
  Block& PadLeft(int width);
  Block& Below(const Block& other);
  /// Puts `other` to the right, `gap` columns away.
  Block& Beside(const Block& other, int gap);

 private:
  std::vector<std::u32string> lines_;
  int width_ = 0;
};

/// `count` times `glyph`; nothing for a negative count.
std::u32string Repeat(char32_t glyph, int count);
inline int WidthOf(const std::u32string& text) {
  return static_cast<int>(text.size());
}

}  // namespace tarvo::console
