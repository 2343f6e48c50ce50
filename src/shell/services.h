#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "bus/byte_port.h"
#include "config/text_files.h"
#include "core/scheduler.h"

namespace tarvo::shell {

/// Where the program keeps texts by name between runs. Errors are the system's numbers, 0 when all is well.
class ValueStore {
 public:
  virtual ~ValueStore() = default;

  /// Looks at the store as it is now; `kMissing` when nothing was ever stored. A damaged one can be opened.
  virtual int Open() = 0;
  /// The text of `name` as of the last `Open`; nothing when it was never stored. An error when the store is damaged.
  virtual int Retrieve(std::string_view name, std::optional<std::string>& text) = 0;
  /// Makes an empty store; one that is there stays as it is.
  virtual int Create() = 0;
  /// Stores one text and keeps everything else. `kMissing` when there is no store yet; a damaged one stays as it is.
  virtual int Set(std::string_view name, std::string_view text) = 0;

  static constexpr int kMissing = 2;  ///< ENOENT
};

/// Shows the manual.
class HelpViewer {
 public:
  virtual ~HelpViewer() = default;

  /// Has the desktop show the manual as a separate process, which nobody waits for. `onFailed` is called, in a later
  /// turn and at most once, when the desktop has no program for it, with the file in which the manual stands; with an
  /// empty text when there is no manual.
  virtual void Open(std::function<void(std::string manual)> onFailed) = 0;
};

/// What the program needs of the system that it runs on. All of it outlives the program.
struct Services {
  core::Scheduler& scheduler;
  bus::PortOpener& ports;
  ValueStore& values;
  HelpViewer& help;
  config::TextFiles& files;
  std::string programFolder = ".";
};

}  // namespace tarvo::shell
