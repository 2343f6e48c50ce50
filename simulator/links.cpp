#include "simulator/links.h"

#include <system_error>

namespace tarvo::simulator {

namespace fs = std::filesystem;

namespace {

core::Status Refused(const fs::path& path, const std::string& why) {
  return core::Status::Failed(core::Fault(path.string() + ": " + why));
}

}  // namespace

Links::~Links() {
  for (const Made& link : made_) TakeAway(link);
}

void Links::Remove(const std::string& name) {
  std::erase_if(made_, [path = directory_ / name](const Made& link) {
    if (link.path != path) return false;
    TakeAway(link);
    return true;
  });
}

void Links::TakeAway(const Made& link) {
  std::error_code error;
  if (fs::read_symlink(link.path, error) == link.target) fs::remove(link.path, error);
}

core::Status Links::Make(const std::string& name, const std::string& target) {
  std::error_code error;
  fs::create_directories(directory_, error);
  if (error) return Refused(directory_, error.message());
  const fs::path path = directory_ / name;
  const bool taken = fs::exists(fs::symlink_status(path, error));
  if (taken && !fs::is_symlink(path, error)) return Refused(path, "is there and is no link");
  // A rename replaces the old link at once, so that the name is never missing.
  const fs::path fresh = directory_ / ('.' + name + ".new");
  fs::remove(fresh, error);
  fs::create_symlink(target, fresh, error);
  if (!error) fs::rename(fresh, path, error);
  if (error) return Refused(path, error.message());
  made_.push_back({path, target});
  return core::Status::Good();
}

}  // namespace tarvo::simulator
