#include "simulator/options.h"

#include <algorithm>
#include <limits>

#include "simulator/order.h"
#include "simulator/text.h"

namespace tarvo::simulator {

namespace {

/// "9600n81" as the line that it tells.
std::optional<bus::LineSettings> ParseLine(std::string_view text) {
  const std::size_t digits = std::min(text.find_first_not_of("0123456789"), text.size());
  if (text.size() != digits + 3) return std::nullopt;
  std::string spelled(text.substr(0, digits));
  for (const char part : text.substr(digits)) spelled += std::string(",") + part;
  return bus::LineSettings::Parse(spelled);
}

Complaint TakePreset(std::string_view key, std::string_view value, const Model& model, ModuleOptions& options) {
  const auto number = Number(key, 40001, 40001 + 0xFFFF);
  if (!number) return "unknown option " + Quoted(key);
  const state::Register reg(static_cast<int>(*number));
  if (!model.registers.Has(reg)) return "no register " + std::string(key);
  if (reg == model.Data().communication) return std::string(key) + " is told by addr= and line=";
  const auto word = Number(value, 0, 0xFFFF);
  if (!word) return Quoted(value) + " is no value for " + std::string(key) + ", 0 to 65535";
  options.presets.push_back({reg, state::Word(*word)});
  return {};
}

Complaint TakeModuleOption(std::string_view text, const Model& model, ModuleOptions& options) {
  std::string_view value = text;
  const std::string_view key = CutAt(value, '=');
  if (key == "addr") {
    const auto address = Number(value, 1, 255);
    if (!address) return Quoted(value) + " is no address, 1 to 255";
    options.setting.address = static_cast<int>(*address);
  } else if (key == "line") {
    const auto line = ParseLine(value);
    if (!line) return Quoted(value) + " is no line, such as 9600n81 or 38400e81";
    options.setting.line = *line;
  } else if (key == "fw") {
    const auto firmware = Number(value, 0, 255);
    if (!firmware) return Quoted(value) + " is no firmware release, 0 to 255";
    options.firmware = static_cast<int>(*firmware);
  } else {
    return TakePreset(key, value, model, options);
  }
  return {};
}

Complaint TakeModule(int port, std::string_view text, Options& options) {
  ModuleRequest request;
  request.port = port;
  request.model = CutAt(text, ':');
  const std::unique_ptr<Model> model = MakeModel(request.model);
  if (!model) {
    std::string known;
    for (const std::string& name : ModelNames()) known += ' ' + name;
    return "no model " + Quoted(request.model) + ", there is:" + known;
  }
  while (!text.empty()) {
    const Complaint complaint = TakeModuleOption(CutAt(text, ','), *model, request.options);
    if (!complaint.empty()) return request.model + ": " + complaint;
  }
  const Setting& setting = request.options.setting;
  for (const ModuleRequest& other : options.modules) {
    if (other.port == port && other.options.setting.address == setting.address) {
      return "two modules with address " + std::to_string(setting.address) + " on com" + std::to_string(port);
    }
  }
  options.modules.push_back(std::move(request));
  return {};
}

}  // namespace

ParsedOptions ParseOptions(std::span<const std::string_view> arguments) {
  ParsedOptions parsed;
  Options& options = parsed.options;
  unsigned seed = 1;
  bool still = false;
  const auto fail = [&parsed](Complaint complaint) {
    parsed.error = std::move(complaint);
    return parsed;
  };

  for (std::size_t i = 0; i < arguments.size(); ++i) {
    const std::string_view name = arguments[i];
    if (name == "--help" || name == "-h") {
      options.help = true;
      return parsed;
    }
    if (name == "--still") {
      still = true;
      continue;
    }
    const bool port = name.size() == 6 && name.starts_with("--com") && name[5] >= '1' && name[5] < '1' + kPorts;
    if (!port && name != "--link" && name != "--seed") return fail("unknown option " + Quoted(name));
    ++i;
    if (i == arguments.size() || arguments[i].empty()) return fail(std::string(name) + " needs a value");
    const std::string_view value = arguments[i];
    if (port) {
      Complaint complaint = TakeModule(name[5] - '0', value, options);
      if (!complaint.empty()) return fail(std::move(complaint));
    } else if (name == "--link") {
      options.linkDirectory = value;
    } else {
      const auto number = Number(value, 0, std::numeric_limits<unsigned>::max());
      if (!number) return fail(Quoted(value) + " is no seed, a whole number");
      seed = *number;
    }
  }
  if (options.modules.empty()) return fail("no module to play, tell one such as: --com1 belk");
  for (ModuleRequest& request : options.modules) {
    request.options.still = still;
    request.options.seed = seed++;
  }
  return parsed;
}

std::string HelpText() {
  std::string models;
  for (const std::string& name : ModelNames()) models += ' ' + name;
  return R"(tarvo-sim: plays I/O modules on pseudo terminals, which a Modbus RTU master opens like serial ports.

Usage: tarvo-sim --com1 MODULE [--com1 MODULE]... [--com2 MODULE]... [options]

  --com1 MODULE ... --com4 MODULE
               puts a module on a port; several with different addresses share one when it is told again
  --link DIR   puts links com1 to com4 in DIR that lead to the ports; they go when the simulator ends
  --seed N     where counters and the like start (default 1); the same seed gives the same start
  --still      no life: inputs, counters and the like stay as they are set, and no watchdog runs
  --help       this text

MODULE is a model's name, then its options: NAME[:KEY=VALUE[,KEY=VALUE]...]
  addr=1       address, 1 to 255 (default 1)
  line=9600n81 speed (1200, 2400, 4800, 9600, 19200, 38400, 57600), parity n, e or o, 8 data bits, 1 stop bit;
               the module hears and answers on this line only (default 9600n81)
  fw=3         firmware release (default 3)
  40008=20     what a register holds at the start, decimal or after 0x; a register with a stored copy sets that too.
               Address, speed and parity come from addr and line alone; a hollin and a kelmar keep them for good.
               On jorun and kelmar 40013 to 40016 take what comes in, and a master reads there what span and zero
               make of it; a bit of 40012 from 12 on opens a wire. On nerith and pellor bits 0 to 3 of 40002 are
               failed channels, bits 4 to 7 broken sensors
Models:)" +
         models + "\n\n" + OrderHelp() + R"(
Writing 1 to a module's reset register restarts it: it keeps silent for 0.3 s, then goes by what its EEPROM holds. The
order "restart" does the same; a marlo, a nerith, a pellor and an oswin, which have no such register, take their serial
settings by it alone.
Ctrl-C or a termination signal ends the simulator; wrong usage ends it with status 2.

Examples:
  tarvo-sim --com1 belk --link /tmp/ports
  tarvo-sim --com1 belk:addr=7,line=38400e81,fw=3,40008=20,40009=0x81 --com2 belk:line=1200n81 --link /tmp/ports
  echo com1 silence 3 | tarvo-sim --com1 belk
  mbpoll -m rtu -a 1 -b 9600 -P none -t 4 -r 2 -c 9 -1 /tmp/ports/com1
)";
}

}  // namespace tarvo::simulator
