#pragma once

#include <grp.h>
#include <sys/types.h>
#include <sys/wait.h>
#include <unistd.h>

#include <functional>

namespace tarvo::test {

enum class User { kSame, kOrdinary };

/// Runs `act` in another process, as a user whom file rights bind when told; gives what it returned, 0 to 254, or -1
/// when it could not be run.
inline int InAnotherProcess(User user, const std::function<int()>& act) {
  constexpr id_t kNobody = 65534;
  constexpr int kNotRun = 255;
  const pid_t child = fork();
  if (child == 0) {
    if (user == User::kOrdinary && geteuid() == 0 &&
        (setgroups(0, nullptr) != 0 || setresgid(kNobody, kNobody, kNobody) != 0 ||
         setresuid(kNobody, kNobody, kNobody) != 0)) {
      _exit(kNotRun);
    }
    _exit(act());
  }
  int status = 0;
  if (waitpid(child, &status, 0) != child || !WIFEXITED(status) || WEXITSTATUS(status) == kNotRun) return -1;
  return WEXITSTATUS(status);
}

}  // namespace tarvo::test
