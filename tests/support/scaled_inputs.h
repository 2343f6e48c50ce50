#pragma once

#include <array>
#include <cstddef>

namespace tarvo::test {

/// What the modules of four inputs with a raw and a scaled value have alike, and their pages.
struct ScaledInputs {
  static constexpr int kFilter1 = 40004;
  static constexpr int kFullScale1 = 40008;
  static constexpr int kStartScale1 = 40012;
  static constexpr int kStatus = 40016;
  static constexpr int kScaled1 = 40017;
  static constexpr int kRaw1 = 40021;

  /// The elements of the page's labels that show what of an input.
  struct Row {
    int start;
    int full;
    int scaled;
    int raw;
  };
  static constexpr std::array<Row, 4> kRows = {{{0, 1, 2, 3}, {6, 7, 5, 4}, {10, 11, 9, 8}, {14, 15, 13, 12}}};
  static constexpr const Row& RowOf(int input) { return kRows.at(static_cast<std::size_t>(input)); }
  static constexpr int kElements = 16;
  static constexpr bool IsScaled(int element) { return element == 2 || element == 5 || element == 9 || element == 13; }
};

}  // namespace tarvo::test
