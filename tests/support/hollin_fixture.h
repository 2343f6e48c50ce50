#pragma once

#include <string>

#include "support/plc_page_fixture.h"
#include "support/scaled_inputs.h"

namespace tarvo::test {

/// The page `Hollin` with its module on COM1: firmware release 1, 9600,n,8,1, address 1, all else 0.
class HollinFixture : public PlcPageFixture, protected ScaledInputs {
 protected:
  HollinFixture() : PlcPageFixture(kHollin) {}

  /// The label that shows an element, in whichever array it stands.
  static std::string Value(int element) { return Member(IsScaled(element) ? "ValueGaven" : "ValueHollin", element); }
  static std::string Filter(int input) { return Member("FilterHollin", input); }
};

}  // namespace tarvo::test
