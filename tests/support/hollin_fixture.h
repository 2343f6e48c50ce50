#pragma once

#include <array>
#include <string>

#include "support/plc_page_fixture.h"

namespace tarvo::test {

/// The page `Hollin` with its module on COM1: firmware release 1, 9600,n,8,1, address 1, all else 0.
class HollinFixture : public PlcPageFixture {
 protected:
  static constexpr int kFilter1 = 40004;
  static constexpr int kFullScale1 = 40008;
  static constexpr int kStartScale1 = 40012;
  static constexpr int kStatus = 40016;
  static constexpr int kScaled1 = 40017;
  static constexpr int kRaw1 = 40021;

  /// The elements that show what of an input: those of `ValueHollin`, but `scaled`, which is one of `ValueGaven`.
  struct Row {
    int start;
    int full;
    int scaled;
    int raw;
  };
  static constexpr std::array<Row, kInputs> kRows = {{{0, 1, 2, 3}, {6, 7, 5, 4}, {10, 11, 9, 8}, {14, 15, 13, 12}}};
  static const Row& RowOf(int input) { return kRows.at(static_cast<std::size_t>(input)); }
  static constexpr int kElements = 16;

  HollinFixture() : PlcPageFixture(HollinPage()) {}

  static bool IsScaled(int element) { return element == 2 || element == 5 || element == 9 || element == 13; }
  /// The label that shows an element, in whichever array it stands.
  static std::string Value(int element) { return Member(IsScaled(element) ? "ValueGaven" : "ValueHollin", element); }
  static std::string Filter(int input) { return Member("FilterHollin", input); }
};

}  // namespace tarvo::test
