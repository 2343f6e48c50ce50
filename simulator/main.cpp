#include <sys/signalfd.h>

#include <csignal>
#include <cstdio>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/poll_loop.h"
#include "simulator/line.h"
#include "simulator/links.h"
#include "simulator/options.h"
#include "simulator/pty.h"

namespace tarvo::simulator {

namespace {

/// One COM port: its pseudo terminal and the modules behind it.
class Port {
 public:
  Port(core::Scheduler& scheduler, std::vector<Module> modules)
      : pty_(scheduler, {.arrived = [this](auto bytes) { line_.Arrived(bytes, pty_.MasterLine()); },
                         .left = [this] { line_.Forget(); }}),
        line_(scheduler, std::move(modules), [this](auto bytes) { pty_.Send(bytes); }) {}

  core::Status Open() { return pty_.Open(); }
  const std::string& Path() const { return pty_.Path(); }
  const std::vector<Module>& Modules() const { return line_.Modules(); }

 private:
  Pty pty_;
  Line line_;
};

void Tell(const std::string& name, const Port& port) {
  for (const Module& module : port.Modules()) {
    const Setting& setting = module.InForce();
    std::printf("%s %s %s address %d %d,%c,8,1 firmware %d\n", name.c_str(), port.Path().c_str(),
                std::string(module.GetModel().Data().name).c_str(), setting.address, setting.line.baud,
                static_cast<char>(setting.line.parity), module.Firmware());
  }
  std::fflush(stdout);
}

int Complain(const std::string& complaint, int status) {
  std::fprintf(stderr, "tarvo-sim: %s\n", complaint.c_str());
  return status;
}

int Run(const Options& options, const Descriptor& signals) {
  platform::PollLoop loop;
  std::map<int, std::vector<Module>> modules;
  for (const ModuleRequest& request : options.modules) {
    modules[request.port].emplace_back(MakeModel(request.model), request.options, loop.Now());
  }

  bool ended = false;
  const core::DescriptorWatch ending(loop, signals.Number(), [&ended](auto) { ended = true; });
  std::vector<std::unique_ptr<Port>> ports;
  std::optional<Links> links;
  if (!options.linkDirectory.empty()) links.emplace(options.linkDirectory);
  for (auto& [number, behind] : modules) {
    const std::string name = "com" + std::to_string(number);
    ports.push_back(std::make_unique<Port>(loop, std::move(behind)));
    const Port& port = *ports.back();
    if (const core::Status opened = ports.back()->Open(); !opened.Ok()) return Complain(opened.Description(), 1);
    if (links) {
      if (const core::Status linked = links->Make(name, port.Path()); !linked.Ok()) {
        return Complain(linked.Description(), 1);
      }
    }
    Tell(name, port);
  }
  std::puts("ready");
  std::fflush(stdout);
  loop.RunUntil([&ended] { return ended; });
  return 0;
}

}  // namespace

}  // namespace tarvo::simulator

int main(int argc, char** argv) {
  using namespace tarvo::simulator;
  const std::vector<std::string_view> arguments(argv + 1, argv + argc);
  const ParsedOptions parsed = ParseOptions(arguments);
  if (!parsed.error.empty()) return Complain(parsed.error + " (see tarvo-sim --help)", 2);
  if (parsed.options.help) {
    std::fputs(HelpText().c_str(), stdout);
    return 0;
  }
  // The signals that end it come as events of the loop, so that its links go in any case.
  sigset_t ends;
  sigemptyset(&ends);
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) sigaddset(&ends, signal);
  sigprocmask(SIG_BLOCK, &ends, nullptr);
  std::signal(SIGPIPE, SIG_IGN);
  const Descriptor signals(signalfd(-1, &ends, SFD_NONBLOCK | SFD_CLOEXEC));
  if (!signals) return Complain("no signals to be had from the system", 1);
  return Run(parsed.options, signals);
}
