#include "shell/version.h"

namespace tarvo::shell {

std::string_view Version() {
  return TARVO_VERSION;
}

}  // namespace tarvo::shell
