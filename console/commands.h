#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "console/show.h"
#include "console/words.h"
#include "state/shared_state.h"
#include "view/screen.h"
#include "view/window.h"

namespace tarvo::console {

/// What the commands work on. All of it outlives the console.
struct Bench {
  view::Screen& screen;
  const std::vector<view::Window*>& windows;
  const state::SharedState& state;
  std::function<bool()> starting;  ///< the program's start-up has not ended
  std::function<bool()> ended;     ///< the program's main window is closed
  /// Runs turns of the program until the given condition holds; it is asked before the first and after each.
  std::function<void(const std::function<bool()>&)> runUntil;
  Drawing drawing;
};

/// What a command gives back: a text or value, one control's properties, those of many controls, or why it failed.
struct Reply {
  using Properties = std::vector<view::NamedValue>;
  using Controls = std::vector<std::pair<std::string, Properties>>;

  static Reply Failed(std::string why) {
    Reply reply;
    reply.error = std::move(why);
    return reply;
  }
  static Reply With(view::PropertyValue value) {
    Reply reply;
    reply.content = std::move(value);
    return reply;
  }

  bool Ok() const { return error.empty(); }

  std::string error;
  std::variant<std::monostate, view::PropertyValue, Properties, Controls> content;
};

/// A gesture that was handed in: what became of it, and what stood in front before.
struct Gesture {
  std::string error;
  std::shared_ptr<view::GestureRun> run;
  std::vector<std::shared_ptr<view::Modal>> before;
};

using Arguments = std::vector<Word>;

/// A row of the table of commands. A gesture has `begin`, anything else `run`.
struct Command {
  std::string_view name;
  std::string_view form;
  std::string_view does;
  std::size_t fewest;  ///< arguments
  std::size_t most;
  view::GestureResult (*begin)(const Bench& bench, const Arguments& arguments) = nullptr;
  Reply (*run)(const Bench& bench, const Arguments& arguments) = nullptr;
};

/// A line's command, looked up and counted; `command` is null when there is none, and `error` says why if one was
/// meant.
struct Request {
  const Command* command = nullptr;
  Arguments arguments;
  bool noWait = false;
  std::string error;

  bool Empty() const { return command == nullptr && error.empty(); }
};
Request Parse(std::string_view line);

/// True for `key Escape`, which does not wait for the end of the start-up.
bool IsEscape(const Request& request);

/// Hands the gesture of `request` in.
Gesture Begin(const Bench& bench, const Request& request);
/// Waits for the handler that `gesture` started, and for those that go on because of what it closed, to end or to open
/// something modal.
Reply Finish(const Bench& bench, const Gesture& gesture);
/// Does all that `request` asks.
Reply Run(const Bench& bench, const Request& request);

}  // namespace tarvo::console
