#pragma once

#include <string>

#include "support/input_page_fixture.h"
#include "support/scaled_inputs.h"

namespace tarvo::test {

/// The page `Gaven` with its module on COM1: firmware release 2, 9600,n,8,1, address 1, all else 0.
class GavenFixture : public InputPageFixture, protected ScaledInputs {
 protected:
  GavenFixture() : InputPageFixture(kGaven) {}

  static std::string Value(int element) { return Member("ValueGaven", element); }
};

}  // namespace tarvo::test
