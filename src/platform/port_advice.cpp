#include "platform/port_advice.h"

#include <grp.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <optional>
#include <string_view>
#include <system_error>
#include <vector>

#include "platform/port_holder.h"

namespace tarvo::platform {

namespace {

std::string AdviceOnRights(const PortRefusal& refusal) {
  if (refusal.group.empty()) {
    return "You may not use " + refusal.device + ". Ask your administrator for the right to read and write it.";
  }
  if (refusal.inGroup) {
    return "You may not use " + refusal.device + " yet. Log in again, so that your group " + refusal.group + " counts.";
  }
  const std::string user = refusal.user.empty() ? "$USER" : refusal.user;
  return "You may not use " + refusal.device + ". Run: sudo usermod -aG " + refusal.group + " " + user +
         " - then log in again.";
}

std::string AdviceOnHolder(const PortRefusal& refusal) {
  if (refusal.heldHere) return refusal.device + " is already open in this program.";
  std::string holder = "another program";
  if (refusal.holderProcess != 0) {
    holder =
        (refusal.holder.empty() ? holder : refusal.holder) + " (process " + std::to_string(refusal.holderProcess) + ")";
  }
  return refusal.device + " is held by " + holder + ". Close that and try again.";
}

std::string AdviceOnMissing(const PortRefusal& refusal) {
  if (!refusal.device.empty()) return refusal.device + " is not there. Plug in the adapter and try again.";
  const std::string name = "COM" + std::to_string(refusal.comPort);
  return "No serial port for " + name + ". Plug in an adapter, or write " + name + "=/dev/... into the settings file.";
}

/// True when the member list of the user database has `user` in `group`.
bool IsMember(const passwd& user, gid_t group) {
  int count = 64;
  std::vector<gid_t> groups(static_cast<std::size_t>(count));
  if (getgrouplist(user.pw_name, user.pw_gid, groups.data(), &count) < 0) {
    groups.resize(static_cast<std::size_t>(count));
    if (getgrouplist(user.pw_name, user.pw_gid, groups.data(), &count) < 0) return false;
  }
  groups.resize(static_cast<std::size_t>(count));
  return std::find(groups.begin(), groups.end(), group) != groups.end();
}

/// True when this process acts as a member of `group`.
bool CountsAsMember(gid_t group) {
  if (getegid() == group) return true;
  const int count = getgroups(0, nullptr);
  std::vector<gid_t> groups(static_cast<std::size_t>(std::max(count, 0)));
  if (getgroups(static_cast<int>(groups.size()), groups.data()) < 0) return false;
  return std::find(groups.begin(), groups.end(), group) != groups.end();
}

void AskForRights(PortRefusal& refusal) {
  struct stat status{};
  if (stat(refusal.device.c_str(), &status) != 0) return;
  constexpr mode_t kMembersMay = S_IRGRP | S_IWGRP;
  // The superuser's own group is no way in, and an owner's rights are not those of the group.
  const bool groupHelps = (status.st_mode & kMembersMay) == kMembersMay && status.st_gid != 0 &&
                          status.st_uid != geteuid() && !CountsAsMember(status.st_gid);
  const group* found = groupHelps ? getgrgid(status.st_gid) : nullptr;
  if (found == nullptr) return;
  refusal.group = found->gr_name;
  if (const passwd* user = getpwuid(geteuid())) {
    refusal.user = user->pw_name;
    refusal.inGroup = IsMember(*user, status.st_gid);
  }
}

void AskForHolder(PortRefusal& refusal) {
  const std::optional<PortHolder> holder = FindHolder(refusal.device);
  if (!holder) return;
  refusal.heldHere = holder->process == getpid();
  refusal.holder = holder->name;
  refusal.holderProcess = holder->process;
}

}  // namespace

std::string AdviceOn(const PortRefusal& refusal) {
  switch (refusal.error) {
    case ENOENT:
    case ENODEV:
    case ENXIO:
    case ENOTDIR:
      return AdviceOnMissing(refusal);
    case EACCES:
    case EPERM:
      return AdviceOnRights(refusal);
    case EBUSY:
    case EWOULDBLOCK:
      return AdviceOnHolder(refusal);
    case ENOTTY:
    case EISDIR:
      return refusal.device + " is no serial port. Give COM" + std::to_string(refusal.comPort) + " another device.";
    default:
      return refusal.device + " does not work (" + std::generic_category().message(refusal.error) +
             "). Check the adapter and try again.";
  }
}

core::Fault WithAdvice(const core::Fault& fault, int comPort, const std::string& device) {
  PortRefusal refusal;
  refusal.comPort = comPort;
  refusal.device = device;
  refusal.error = static_cast<int>(fault.Number());
  if (refusal.error == EACCES || refusal.error == EPERM) AskForRights(refusal);
  if (refusal.error == EBUSY || refusal.error == EWOULDBLOCK) AskForHolder(refusal);
  return core::Fault(fault.what(), fault.Number(), fault.Source(), AdviceOn(refusal));
}

}  // namespace tarvo::platform
