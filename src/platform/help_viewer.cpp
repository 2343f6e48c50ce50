#include "platform/help_viewer.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <optional>
#include <system_error>
#include <utility>

// The header of glibc 2.36 does not say for C++ that these are C functions.
extern "C" {
#include <sys/pidfd.h>
}

#include "platform/file_descriptor.h"

namespace tarvo::platform {

namespace {

namespace fs = std::filesystem;

constexpr core::Duration kPatience = std::chrono::seconds(30);

/// The opener's process number; nothing when it cannot be started or has nothing to show.
std::optional<pid_t> StartOpener(const fs::path& manual) {
  std::error_code missing;
  if (!fs::exists(manual, missing)) return std::nullopt;
  posix_spawn_file_actions_t files;
  posix_spawnattr_t attributes;
  posix_spawn_file_actions_init(&files);
  posix_spawnattr_init(&attributes);
  // In a session of its own and without this one's terminal: the opener may come to a text browser, and a Ctrl-C here
  // is not meant for it.
  posix_spawn_file_actions_addopen(&files, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
  posix_spawn_file_actions_addopen(&files, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
  posix_spawn_file_actions_addopen(&files, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
  posix_spawn_file_actions_addclosefrom_np(&files, STDERR_FILENO + 1);
  sigset_t signals;
  sigemptyset(&signals);
  posix_spawnattr_setsigmask(&attributes, &signals);
  sigaddset(&signals, SIGPIPE);
  posix_spawnattr_setsigdefault(&attributes, &signals);
  posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSID | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);

  std::string name = "xdg-open";
  std::string file = manual.string();
  char* const arguments[] = {name.data(), file.data(), nullptr};
  pid_t process = 0;
  const int error = posix_spawnp(&process, name.c_str(), &files, &attributes, arguments, environ);
  posix_spawnattr_destroy(&attributes);
  posix_spawn_file_actions_destroy(&files);
  return error == 0 ? std::optional(process) : std::nullopt;
}

}  // namespace

/// One run of the desktop's opener, from its start to its end.
class DesktopHelp::Opener {
 public:
  Opener(core::Scheduler& scheduler, core::Call& sweep, const fs::path& manual,
         std::function<void(std::string)> onFailed)
      : scheduler_(scheduler), sweep_(sweep), onFailed_(std::move(onFailed)), started_(scheduler.Now()) {
    if (const std::optional<pid_t> process = StartOpener(manual)) {
      Watch(*process);
    } else {
      End(false);
    }
  }

  bool Ended() const { return ended_; }
  bool Failed() const { return !good_; }
  void TellFailure(const std::string& manual) const { onFailed_(manual); }

 private:
  void Watch(pid_t process) {
    descriptor_ = FileDescriptor(pidfd_open(process, 0));
    if (descriptor_.Valid()) {
      watch_.emplace(scheduler_, descriptor_.Get(), [this](core::DescriptorEvents /*events*/) { Reap(); });
    } else {
      // One that cannot be watched does not tell how it ends.
      End(true);
    }
  }

  void Reap() {
    if (ended_) return;
    siginfo_t info{};
    const bool told = waitid(P_PIDFD, static_cast<id_t>(descriptor_.Get()), &info, WEXITED | WNOHANG) == 0;
    if (told && info.si_pid == 0) return;
    const bool good = !told || (info.si_code == CLD_EXITED && info.si_status == 0);
    End(good || scheduler_.Now() - started_ > kPatience);
  }

  // A watch does not end within its own call: the sweep takes all of it away.
  void End(bool good) {
    ended_ = true;
    good_ = good;
    sweep_.Post();
  }

  core::Scheduler& scheduler_;
  core::Call& sweep_;
  std::function<void(std::string)> onFailed_;
  core::TimePoint started_;
  FileDescriptor descriptor_;
  std::optional<core::DescriptorWatch> watch_;
  bool ended_ = false;
  bool good_ = false;
};

DesktopHelp::DesktopHelp(core::Scheduler& scheduler, fs::path manual)
    : scheduler_(scheduler), manual_(std::move(manual)), sweep_(scheduler, [this] { Sweep(); }) {}

DesktopHelp::~DesktopHelp() = default;

fs::path DesktopHelp::ManualOf(const fs::path& programFolder) {
  std::error_code error;
  const fs::path whole = fs::absolute(programFolder, error);
  return ((error ? programFolder : whole) / ".." / "share" / "doc" / "tarvo" / "manual.html").lexically_normal();
}

void DesktopHelp::Open(std::function<void(std::string manual)> onFailed) {
  openers_.push_back(std::make_unique<Opener>(scheduler_, sweep_, manual_, std::move(onFailed)));
}

void DesktopHelp::Sweep() {
  // Taken out first: whoever is told may open the manual again.
  std::vector<std::unique_ptr<Opener>> all;
  std::vector<std::unique_ptr<Opener>> ended;
  all.swap(openers_);
  for (std::unique_ptr<Opener>& opener : all) (opener->Ended() ? ended : openers_).push_back(std::move(opener));
  std::error_code error;
  const std::string manual = fs::exists(manual_, error) ? manual_.string() : std::string();
  for (const std::unique_ptr<Opener>& opener : ended) {
    if (opener->Failed()) opener->TellFailure(manual);
  }
}

}  // namespace tarvo::platform
