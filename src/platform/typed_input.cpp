#include "platform/typed_input.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <string_view>
#include <utility>

namespace tarvo::platform {

TypedInput::TypedInput(core::Scheduler& scheduler, int descriptor, std::size_t longest,
                       std::function<void(std::string_view)> onLine, std::function<void()> onEnd)
    : descriptor_(descriptor),
      longest_(longest),
      onLine_(std::move(onLine)),
      onEnd_(std::move(onEnd)),
      endWatch_(scheduler, [this] { watch_.reset(); }) {
  watch_.emplace(scheduler, descriptor, [this](core::DescriptorEvents /*events*/) { ReadSome(); });
}

void TypedInput::ReadSome() {
  if (ended_) return;
  char bytes[4096];
  const ssize_t count = read(descriptor_, bytes, sizeof bytes);
  if (count < 0 && (errno == EINTR || errno == EAGAIN)) return;
  if (count > 0) {
    Take({bytes, static_cast<std::size_t>(count)});
    return;
  }
  ended_ = true;
  // A watch does not end within its own call.
  endWatch_.Post();
  if (!begun_.empty()) onLine_(std::exchange(begun_, {}));
  onEnd_();
}

void TypedInput::Take(std::string_view bytes) {
  while (true) {
    const std::size_t end = bytes.find('\n');
    const std::size_t room = longest_ + 1 - std::min(begun_.size(), longest_ + 1);
    begun_ += bytes.substr(0, std::min(end, room));
    if (end == std::string_view::npos) return;
    onLine_(std::exchange(begun_, {}));
    bytes.remove_prefix(end + 1);
  }
}

}  // namespace tarvo::platform
