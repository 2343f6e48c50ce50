#pragma once

#include <deque>
#include <iosfwd>
#include <optional>
#include <string>
#include <string_view>

#include "console/commands.h"

namespace tarvo::console {

enum class Style { kPerson, kJson };

/// A reply as one line of JSON, without the line's end.
std::string ToJson(const Reply& reply, const view::Screen& screen);
/// A reply for a person, in as many lines as it needs.
std::string ToPerson(const Reply& reply, const view::Screen& screen);

/// Takes commands as lines, one at a time and in order, and writes a reply to each.
class Console {
 public:
  Console(Bench bench, Style style, std::ostream& out) : bench_(std::move(bench)), style_(style), out_(out) {}
  Console(const Console&) = delete;
  Console& operator=(const Console&) = delete;

  /// Does one line and gives what was replied; empty for a line without a command.
  std::string Execute(std::string_view line);

  /// All lines of `script`, which is called `name`, up to the first that fails. The exit status: 1 when one failed.
  int RunScript(std::istream& script, std::string_view name, std::ostream& errors);
  /// All lines of a file that stands in place of a typing user.
  void RunFile(std::istream& file);

  /// A line that was typed. May be called at any time, also while an earlier one waits.
  void Arrive(std::string_view line);
  /// Nothing more is typed.
  void EndInput() { inputEnded_ = true; }
  /// Does what was typed until the input or the program ends. `prompt` tells the user that the next line is awaited.
  void RunTyped(std::string_view prompt);

  /// Longer lines are refused.
  static constexpr std::size_t kLongestLine = 65536;

 private:
  /// A line that waits for its turn. `begun` is set when its gesture did not wait.
  struct Typed {
    Request request;
    std::optional<Gesture> begun;
  };

  Request ParseLine(std::string_view line) const;
  Reply Do(const Request& request);
  void Write(const Reply& reply);
  void WaitForStart();

  Bench bench_;
  Style style_;
  std::ostream& out_;
  std::deque<Typed> typed_;
  bool inputEnded_ = false;
};

}  // namespace tarvo::console
