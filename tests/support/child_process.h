#pragma once

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <string_view>
#include <system_error>
#include <thread>
#include <vector>

namespace tarvo::test {

/// A program that runs beside the test, with its standard input, output and error in the test's hands. Killed at the
/// end when it still runs.
class ChildProcess {
 public:
  using Milliseconds = std::chrono::milliseconds;
  static constexpr Milliseconds kPatience{5000};

  /// `command` is the program, found by its path or in PATH, and its arguments.
  explicit ChildProcess(const std::vector<std::string>& command) {
    // A program that has ended takes no more input, and tells it by its status, not by ending the test.
    std::signal(SIGPIPE, SIG_IGN);
    const Pipe in;
    const Pipe out;
    const Pipe error;
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, in.read, STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&actions, out.write, STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, error.write, STDERR_FILENO);
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    sigset_t usual;
    sigemptyset(&usual);
    sigaddset(&usual, SIGPIPE);
    posix_spawnattr_setsigdefault(&attributes, &usual);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGDEF);
    std::vector<char*> arguments;
    for (const std::string& word : command) arguments.push_back(const_cast<char*>(word.c_str()));
    arguments.push_back(nullptr);
    const int fault = posix_spawnp(&process_, arguments[0], &actions, &attributes, arguments.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    posix_spawnattr_destroy(&attributes);
    close(in.read);
    close(out.write);
    close(error.write);
    in_ = in.write;
    out_ = out.read;
    error_ = error.read;
    if (fault == 0) return;
    CloseAll();
    throw std::runtime_error(command.front() + " cannot be started");
  }
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;
  ~ChildProcess() {
    if (process_ > 0) kill(process_, SIGKILL);
    Wait();
    CloseAll();
  }

  /// The system's number for it; -1 once it has ended.
  pid_t Id() const { return process_; }

  void Signal(int signal) const {
    if (process_ > 0) kill(process_, signal);
  }

  /// True while it has that file or device open.
  bool HasOpen(const std::filesystem::path& file) const {
    std::error_code fault;
    const std::filesystem::path whole = std::filesystem::canonical(file, fault);
    const std::filesystem::path descriptors = "/proc/" + std::to_string(process_) + "/fd";
    for (const auto& descriptor : std::filesystem::directory_iterator(descriptors, fault)) {
      if (std::filesystem::read_symlink(descriptor, fault) == whole) return true;
    }
    return false;
  }

  /// Hands `text` to its standard input; false when it takes no more.
  bool Write(std::string_view text) const {
    while (!text.empty()) {
      const ssize_t count = write(in_, text.data(), text.size());
      if (count <= 0) return false;
      text.remove_prefix(static_cast<std::size_t>(count));
    }
    return true;
  }
  /// The end of its standard input.
  void EndInput() {
    if (in_ >= 0) close(in_);
    in_ = -1;
  }

  /// Its standard output up to and with `end`, or as much as there is within `limit`. What comes after stays for the
  /// next call.
  std::string ReadUntil(const std::string& end, Milliseconds limit = kPatience) {
    const auto over = std::chrono::steady_clock::now() + limit;
    while (ahead_.find(end) == std::string::npos && ReadSome(out_, ahead_, over)) {
    }
    const std::size_t found = ahead_.find(end);
    const std::size_t length = found == std::string::npos ? ahead_.size() : found + end.size();
    std::string text = ahead_.substr(0, length);
    ahead_.erase(0, length);
    return text;
  }
  /// All of its standard output or error until it closes them, or as much as there is within `limit`.
  std::string Output(Milliseconds limit = kPatience) {
    std::string text = ReadAll(out_, limit);
    text.insert(0, ahead_);
    ahead_.clear();
    return text;
  }
  std::string Errors(Milliseconds limit = kPatience) const { return ReadAll(error_, limit); }

  /// Its exit status, once it has ended; -1 when a signal ended it.
  int Wait() {
    if (process_ <= 0) return status_;
    int status = 0;
    waitpid(process_, &status, 0);
    return Ended(status);
  }
  /// The same, but a program that does not end within `limit` is killed: -1 then.
  int WaitWithin(Milliseconds limit = kPatience) {
    const auto over = std::chrono::steady_clock::now() + limit;
    while (process_ > 0 && std::chrono::steady_clock::now() < over) {
      int status = 0;
      if (waitpid(process_, &status, WNOHANG) == process_) return Ended(status);
      std::this_thread::sleep_for(Milliseconds(5));
    }
    Signal(SIGKILL);
    return Wait();
  }

 private:
  using TimePoint = std::chrono::steady_clock::time_point;

  struct Pipe {
    Pipe() {
      std::array<int, 2> ends{};
      if (pipe2(ends.data(), O_CLOEXEC) != 0) throw std::runtime_error("no pipe can be made");
      read = ends[0];
      write = ends[1];
    }
    int read = -1;
    int write = -1;
  };

  int Ended(int status) {
    process_ = -1;
    status_ = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return status_;
  }

  void CloseAll() {
    EndInput();
    close(out_);
    close(error_);
  }

  /// False when nothing more comes, or nothing by `over`.
  static bool ReadSome(int from, std::string& text, TimePoint over) {
    const auto left = std::chrono::ceil<Milliseconds>(over - std::chrono::steady_clock::now());
    pollfd readable{from, POLLIN, 0};
    if (poll(&readable, 1, static_cast<int>(std::max<Milliseconds::rep>(left.count(), 0))) <= 0) return false;
    std::array<char, 4096> buffer{};
    const ssize_t count = read(from, buffer.data(), buffer.size());
    if (count <= 0) return false;
    text.append(buffer.data(), static_cast<std::size_t>(count));
    return true;
  }
  static std::string ReadAll(int from, Milliseconds limit) {
    const auto over = std::chrono::steady_clock::now() + limit;
    std::string text;
    while (ReadSome(from, text, over)) {
    }
    return text;
  }

  pid_t process_ = -1;
  int status_ = -1;
  int in_ = -1;
  int out_ = -1;
  int error_ = -1;
  std::string ahead_;
};

}  // namespace tarvo::test
