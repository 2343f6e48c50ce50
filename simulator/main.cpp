#include <fcntl.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/poll_loop.h"
#include "platform/typed_input.h"
#include "simulator/links.h"
#include "simulator/options.h"
#include "simulator/order.h"
#include "simulator/port.h"

namespace tarvo::simulator {

namespace {

using Ports = std::map<int, std::unique_ptr<Port>>;

void Tell(const Port& port) {
  for (const Module& module : port.Modules()) {
    const Setting& setting = module.InForce();
    std::printf("%s %s %s address %d %d,%c,8,1 firmware %d\n", port.Name().c_str(), port.Path().c_str(),
                std::string(module.GetModel().Data().name).c_str(), setting.address, setting.line.baud,
                static_cast<char>(setting.line.parity), module.Firmware());
  }
  std::fflush(stdout);
}

/// Does what the order says; gives the line that answers it.
std::string Obey(const Ports& ports, std::string_view line) {
  const ParsedOrder parsed = ParseOrder(line);
  Port::Answer answer;
  answer.error = parsed.error;
  if (answer.error.empty()) {
    const auto port = ports.find(parsed.order.port);
    if (port == ports.end()) {
      answer.error = "nothing is on com" + std::to_string(parsed.order.port);
    } else {
      answer = port->second->Obey(parsed.order);
    }
  }
  if (!answer.error.empty()) return "error: " + answer.error;
  return "ok " + std::string(line) + (answer.told.empty() ? "" : ' ' + answer.told);
}

void TakeOrder(const Ports& ports, std::string_view line) {
  constexpr std::string_view kBlanks = " \t\r";
  const std::size_t begin = line.find_first_not_of(kBlanks);
  if (begin == std::string_view::npos) return;
  std::puts(Obey(ports, line.substr(begin, line.find_last_not_of(kBlanks) + 1 - begin)).c_str());
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
  std::optional<Links> links;
  if (!options.linkDirectory.empty()) links.emplace(options.linkDirectory);
  Ports ports;
  for (auto& [number, behind] : modules) {
    auto port = std::make_unique<Port>(loop, number, std::move(behind), links ? &*links : nullptr);
    if (const core::Status plugged = port->Plug(); !plugged.Ok()) return Complain(plugged.Description(), 1);
    Tell(*port);
    ports.emplace(number, std::move(port));
  }
  std::puts("ready");
  std::fflush(stdout);
  const platform::TypedInput orders(
      loop, STDIN_FILENO, Order::kLongestLine, [&ports](std::string_view line) { TakeOrder(ports, line); }, [] {});
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
  // In the background of a terminal a look at what is typed then fails, which ends the orders, and does not stop it.
  std::signal(SIGTTIN, SIG_IGN);
  // Without a standard input the first descriptor that is made would pass for it.
  if (fcntl(STDIN_FILENO, F_GETFD) < 0) open("/dev/null", O_RDONLY);
  const Descriptor signals(signalfd(-1, &ends, SFD_NONBLOCK | SFD_CLOEXEC));
  if (!signals) return Complain("no signals to be had from the system", 1);
  return Run(parsed.options, signals);
}
