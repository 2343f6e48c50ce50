#include "console/block.h"

#include <algorithm>

namespace tarvo::console {

std::u32string Repeat(char32_t glyph, int count) {
  std::u32string repeated;
  repeated.resize(static_cast<std::size_t>(std::max(count, 0)), glyph);
  return repeated;
}

Block::Block(std::u32string line) : width_(WidthOf(line)) {
  lines_.push_back(std::move(line));
}

Block& Block::Pad(int width, int height) {
  width_ = std::max(width_, width);
  lines_.resize(std::max(lines_.size(), static_cast<std::size_t>(std::max(height, 0))));
  for (std::u32string& line : lines_) line.resize(static_cast<std::size_t>(width_), U' ');
  return *this;
}

Block& Block::PadLeft(int width) {
  for (std::u32string& line : lines_) line.insert(0, Repeat(U' ', width - width_));
  width_ = std::max(width_, width);
  return *this;
}

Block& Block::Below(const Block& other) {
  lines_.insert(lines_.end(), other.lines_.begin(), other.lines_.end());
  return Pad(other.width_);
}

Block& Block::Beside(const Block& other, int gap) {
  const int left = width_;
  Pad(left + gap + other.width_, other.Height());
  for (std::size_t i = 0; i < other.lines_.size(); ++i) {
    lines_[i].replace(static_cast<std::size_t>(left) + static_cast<std::size_t>(gap), other.lines_[i].size(),
                      other.lines_[i]);
  }
  return *this;
}

}  // namespace tarvo::console
