#include "simulator/port.h"

#include <algorithm>
#include <utility>

namespace tarvo::simulator {

namespace {

std::string Spelled(const std::optional<LineFault>& fault) {
  if (!fault) return "none";
  const auto* entry = std::find_if(kFaultNames.begin(), kFaultNames.end(),
                                   [&](const FaultName& known) { return known.kind == fault->kind; });
  std::string text(entry->name);
  if (fault->replies) text += ' ' + std::to_string(*fault->replies);
  return text;
}

}  // namespace

Port::Port(core::Scheduler& scheduler, int number, std::vector<Module> modules, Links* links)
    : scheduler_(scheduler),
      name_("com" + std::to_string(number)),
      links_(links),
      pty_(scheduler, {.arrived = [this](auto bytes) { line_.Arrived(bytes, pty_.MasterLine()); },
                       .left = [this] { line_.Forget(); }}),
      line_(scheduler, std::move(modules), [this](auto bytes) { pty_.Send(bytes); }) {}

core::Status Port::Plug() {
  core::Status status = pty_.Open();
  if (status.Ok() && links_ != nullptr) status = links_->Make(name_, pty_.Path());
  if (!status.Ok()) pty_.Close();
  return status;
}

void Port::Unplug() {
  // The link goes first: nobody shall find by it what is about to vanish.
  if (links_ != nullptr) links_->Remove(name_);
  pty_.Close();
  line_.Forget();
}

Port::Answer Port::Obey(const Order& order) {
  Answer answer;
  const bool plugged = !Path().empty();
  switch (order.kind) {
    case Order::Kind::kSetFault:
      if (!order.address || Find(order.address, answer.error) != nullptr) line_.SetFault(order.fault);
      break;
    case Order::Kind::kClear:
      line_.SetFault(std::nullopt);
      break;
    case Order::Kind::kFault:
      answer.told = Spelled(line_.GetFault());
      break;
    case Order::Kind::kUnplug:
      if (plugged) {
        Unplug();
      } else {
        answer.error = name_ + " is unplugged";
      }
      break;
    case Order::Kind::kPlug:
      answer.error = plugged ? name_ + " is plugged in" : Plug().Description();
      answer.told = Path();
      break;
    case Order::Kind::kGet:
    case Order::Kind::kSet:
    case Order::Kind::kRestart:
    case Order::Kind::kLoad:
      return ObeyInModule(order);
  }
  return answer;
}

Port::Answer Port::ObeyInModule(const Order& order) {
  Answer answer;
  Module* module = Find(order.address, answer.error);
  if (module == nullptr) return answer;
  if (order.kind == Order::Kind::kRestart) {
    module->Restart(scheduler_.Now());
  } else if (order.kind == Order::Kind::kLoad) {
    if (!module->SetLoad(order.output, order.load, scheduler_.Now())) {
      answer.error = "no output " + std::to_string(order.output) + " whose load is watched";
    }
  } else if (!module->GetModel().registers.Has(order.reg)) {
    answer.error = "no register " + std::to_string(order.reg.Number());
  } else if (order.kind == Order::Kind::kSet) {
    module->Set(order.reg, order.value, scheduler_.Now());
  } else {
    answer.told = std::to_string(module->Get(order.reg, scheduler_.Now()).Unsigned());
  }
  return answer;
}

Module* Port::Find(const std::optional<int>& address, Complaint& error) {
  std::vector<Module>& modules = line_.Modules();
  // A restart may have given a module another address.
  for (Module& module : modules) module.Advance(scheduler_.Now());
  if (!address) {
    if (modules.size() == 1) return &modules.front();
    error = "several modules are on " + name_ + ", tell one, such as " + name_ + ':' +
            std::to_string(modules.front().InForce().address);
    return nullptr;
  }
  const auto found = std::find_if(modules.begin(), modules.end(),
                                  [&](const Module& module) { return module.InForce().address == *address; });
  if (found != modules.end()) return &*found;
  error = "no module with address " + std::to_string(*address) + " on " + name_;
  return nullptr;
}

}  // namespace tarvo::simulator
