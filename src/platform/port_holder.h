#pragma once

namespace tarvo::platform {

/// True when the device behind `descriptor` is open a second time, in this or in another process. Sees only the
/// processes that the system lets this user see: all of them for the superuser.
bool HeldByAnother(int descriptor);

}  // namespace tarvo::platform
