#pragma once

#include <cstdint>

#include "bus/modcom/modcom.h"
#include "core/scheduler.h"
#include "core/task.h"
#include "state/word.h"
#include "view/control.h"

namespace tarvo::bus {

/// Waits for a free bus and writes the low 16 bits of `value`. When that fails, `panel1` of the main window's status
/// bar shows "unable to write " and the register; a run-time fault is shown in a critical message box. True when the
/// module has taken it.
core::Task<bool> WriteRegister(ModCom& modcom, state::Register target, std::int32_t value, view::Panel& panel1);

/// Reads one register, without waiting for a free bus first; 0 when the read fails.
core::Task<std::int16_t> ReadRegister(ModCom& modcom, state::Register source);

/// The hard wait: nothing runs for that long.
void wait(core::Scheduler& scheduler, std::int32_t milliseconds);

}  // namespace tarvo::bus
