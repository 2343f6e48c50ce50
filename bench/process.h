#pragma once

#include <sys/types.h>

namespace tarvo::bench {

/// Processor time that a process has used so far, all its threads, in seconds.
double ProcessorTimeOf(pid_t process);

/// Memory that a process has resident, in MB (of 1024 x 1024 bytes), shared libraries included.
double ResidentOf(pid_t process);

}  // namespace tarvo::bench
