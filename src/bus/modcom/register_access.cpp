#include "bus/modcom/register_access.h"

#include <algorithm>
#include <optional>
#include <string>
#include <utility>

#include "view/screen.h"
#include "view/window.h"

namespace tarvo::bus {

core::Task<bool> WriteRegister(ModCom& modcom, state::Register target, std::int32_t value, view::Panel& panel1) {
  bool good = false;
  std::optional<std::string> fault;
  try {
    co_await modcom.Free();
    const state::Word word(static_cast<std::uint32_t>(value));
    const Outcome outcome = co_await modcom.WritePLC(target, word);
    co_await modcom.Free();
    good = outcome.Good();
    if (!good) panel1.Text = "unable to write " + std::to_string(target.Number());
  } catch (const core::Fault& caught) {
    fault = caught.what();
  }
  if (fault) co_await modcom.GetWindow().GetScreen().MsgBox(std::move(*fault), view::Icon::kCritical);
  co_return good;
}

core::Task<std::int16_t> ReadRegister(ModCom& modcom, state::Register source) {
  state::Word value;
  co_await modcom.ReadPLC(source, value, 1, kFormat);
  co_await modcom.Free();
  co_return static_cast<std::int16_t>(value.Signed());
}

void wait(core::Scheduler& scheduler, std::int32_t milliseconds) {
  scheduler.Block(core::milliseconds(std::max(milliseconds, 0)));
}

}  // namespace tarvo::bus
