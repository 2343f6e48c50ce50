#include "console/commands.h"

#include <algorithm>
#include <optional>

#include "console/names.h"
#include "core/scheduler.h"

namespace tarvo::console {

namespace {

using view::GestureResult;

Names NamesOf(const Bench& bench) {
  return {bench.screen, bench.windows, bench.state};
}

GestureResult Refused(std::string why) {
  GestureResult refused;
  refused.refusal = std::move(why);
  return refused;
}

/// Hands the control named by the first argument to `gesture`, or refuses for want of one.
template <class HandIn>
GestureResult OnControl(const Bench& bench, const Arguments& arguments, HandIn handIn) {
  const Names::FoundControl found = NamesOf(bench).FindControl(arguments[0].text);
  return found.control != nullptr ? handIn(*found.control) : Refused(found.error);
}

GestureResult Click(const Bench& bench, const Arguments& arguments) {
  return OnControl(bench, arguments, [&](view::Control& control) { return bench.screen.Click(control); });
}

struct Entry {
  int position = 0;
  std::string error;
};

/// The entry that is wholly `text`, else the only one that begins with it.
Entry FindEntry(const view::ComboBox& combo, const std::string& text) {
  const std::vector<std::string>& list = combo.List();
  if (const auto whole = std::find(list.begin(), list.end(), text); whole != list.end()) {
    return {static_cast<int>(whole - list.begin()), {}};
  }
  const auto begins = [&](const std::string& entry) { return entry.starts_with(text); };
  const auto count = std::count_if(list.begin(), list.end(), begins);
  if (count == 0) return {0, combo.Name() + " has no entry \"" + text + "\""};
  if (count > 1) return {0, std::to_string(count) + " entries of " + combo.Name() + " begin with \"" + text + "\""};
  return {static_cast<int>(std::find_if(list.begin(), list.end(), begins) - list.begin()), {}};
}

GestureResult Choose(const Bench& bench, const Arguments& arguments) {
  return OnControl(bench, arguments, [&](view::Control& control) {
    const auto* combo = dynamic_cast<const view::ComboBox*>(&control);
    // The screen says why it takes no choice.
    if (combo == nullptr || !bench.screen.WhyNot(control).empty()) return bench.screen.Choose(control, 0);
    // A number without quotes that is no position may still be the text of an entry: 38400.
    const Word& wanted = arguments[1];
    const std::optional<int> position = wanted.quoted ? std::nullopt : ParseInteger(wanted.text);
    if (position && *position >= 0 && static_cast<std::size_t>(*position) < combo->List().size()) {
      return bench.screen.Choose(control, *position);
    }
    const Entry entry = FindEntry(*combo, wanted.text);
    return entry.error.empty() ? bench.screen.Choose(control, entry.position) : Refused(entry.error);
  });
}

GestureResult Type(const Bench& bench, const Arguments& arguments) {
  return OnControl(bench, arguments,
                   [&](view::Control& control) { return bench.screen.Type(control, arguments[1].text); });
}

std::optional<view::Key> ParseKey(std::string_view text) {
  if (text == "Enter") return view::Key::kEnter;
  if (text == "Escape") return view::Key::kEscape;
  return std::nullopt;
}

GestureResult PressKey(const Bench& bench, const Arguments& arguments) {
  const std::optional<view::Key> key = ParseKey(arguments.back().text);
  if (!key) return Refused("there is no key " + arguments.back().text + ", only Enter and Escape");
  if (arguments.size() == 1) return bench.screen.PressKey(nullptr, *key);
  return OnControl(bench, arguments, [&](view::Control& control) { return bench.screen.PressKey(&control, *key); });
}

GestureResult Leave(const Bench& bench, const Arguments& arguments) {
  return OnControl(bench, arguments, [&](view::Control& control) { return bench.screen.Leave(control); });
}

GestureResult Answer(const Bench& bench, const Arguments& arguments) {
  return bench.screen.Answer(arguments[0].text);
}

GestureResult Open(const Bench& bench, const Arguments& arguments) {
  view::Window* page = NamesOf(bench).FindWindow(arguments[0].text);
  return page != nullptr ? bench.screen.Open(*page) : Refused("there is no window " + arguments[0].text);
}

GestureResult Close(const Bench& bench, const Arguments& /*arguments*/) {
  return bench.screen.Close();
}

GestureResult Quit(const Bench& bench, const Arguments& /*arguments*/) {
  view::Control* exit = bench.screen.Main() == nullptr ? nullptr : bench.screen.Main()->Find("ExitMNU");
  return exit == nullptr ? Refused("there is no ExitMNU here") : bench.screen.Click(*exit);
}

Reply Get(const Bench& bench, const Arguments& arguments) {
  Names::Reading reading = NamesOf(bench).Read(arguments[0].text);
  if (!reading.Ok()) return Reply::Failed(reading.error);
  if (reading.value) return Reply::With(std::move(*reading.value));
  Reply reply;
  reply.content = std::move(reading.properties);
  return reply;
}

Reply Dump(const Bench& bench, const Arguments& arguments) {
  const view::Window* window = arguments.empty() ? bench.screen.Page() : NamesOf(bench).FindWindow(arguments[0].text);
  if (window == nullptr) {
    return Reply::Failed(arguments.empty() ? "no page is on the screen" : "there is no window " + arguments[0].text);
  }
  Reply::Controls controls;
  for (const view::Control* control : window->Controls()) controls.emplace_back(control->Name(), control->Properties());
  Reply reply;
  reply.content = std::move(controls);
  return reply;
}

Reply ShowFront(const Bench& bench, const Arguments& /*arguments*/) {
  return Reply::With(Show(bench.screen, bench.drawing));
}

/// Runs the program until `holds` says so, the time is over (false), or the program has ended (what `holds` says then).
bool RunWithin(const Bench& bench, core::Duration limit, const std::function<bool()>& holds) {
  bool over = false;
  core::Call clock(bench.screen.GetScheduler(), [&] { over = true; });
  clock.After(limit);
  bool held = false;
  bench.runUntil([&] { return (held = holds()) || over || bench.ended(); });
  return held;
}

Reply Wait(const Bench& bench, const Arguments& arguments) {
  const std::optional<core::Duration> duration = ParseDuration(arguments[0].text);
  if (!duration) return Reply::Failed("\"" + arguments[0].text + "\" is no time such as 300ms, 1.5s or 2m");
  RunWithin(bench, *duration, [] { return false; });
  return {};
}

/// The time after "within" at the end of `arguments`.
struct Limit {
  core::Duration duration{};
  std::string error;
};
Limit ParseLimit(const Arguments& arguments) {
  const std::string& text = arguments.back().text;
  if (arguments[arguments.size() - 2].text != "within") return {{}, "\"within\" and a time are missing"};
  const std::optional<core::Duration> duration = ParseDuration(text);
  if (!duration) return {{}, "\"" + text + "\" is no time such as 300ms, 1.5s or 2m"};
  return {*duration, {}};
}

/// How an end without success came about.
std::string AfterWhat(const Bench& bench, core::Duration limit) {
  return bench.ended() ? "at the program's end" : "after " + TextOf(limit);
}

Reply Until(const Bench& bench, const Arguments& arguments) {
  const std::string& name = arguments[0].text;
  const std::optional<Relation> relation = ParseRelation(arguments[1].text);
  if (!relation) return Reply::Failed("\"" + arguments[1].text + "\" is none of = != < > contains");
  const std::string& wanted = arguments[2].text;
  const Limit limit = ParseLimit(arguments);
  if (!limit.error.empty()) return Reply::Failed(limit.error);

  const Names names = NamesOf(bench);
  Names::Reading last;
  bool hopeless = false;
  const bool held = RunWithin(bench, limit.duration, [&] {
    last = names.Read(name);
    hopeless = !last.mayCome && !last.value;
    return hopeless || (last.value && Holds(*last.value, *relation, wanted));
  });
  if (hopeless) return Reply::Failed(last.Ok() ? "a property is missing after " + name : last.error);
  if (held) return {};
  const std::string end = AfterWhat(bench, limit.duration);
  if (!last.value) return Reply::Failed(last.error + ", " + end);
  return Reply::Failed(name + " is \"" + TextOf(*last.value) + "\" " + end);
}

Reply Idle(const Bench& bench, const Arguments& arguments) {
  const Limit limit = ParseLimit(arguments);
  if (!limit.error.empty()) return Reply::Failed(limit.error);
  if (RunWithin(bench, limit.duration, [&] { return bench.screen.Idle(); })) return {};
  return Reply::Failed("a handler is still under way " + AfterWhat(bench, limit.duration));
}

Reply Help(const Bench& bench, const Arguments& arguments);

constexpr Command kCommands[] = {
    {"click", "click NAME", "a user's click on a control or menu item", 1, 1, Click},
    {"choose", "choose NAME 3 | \"TC-K\"", "a choice in a list, by position or by text (or its beginning)", 2, 2,
     Choose},
    {"type", "type NAME \"12\"", "replaces the text of a text box", 2, 2, Type},
    {"key", "key [NAME] Enter | Escape", "a key in a control, or in the window in front", 1, 2, PressKey},
    {"leave", "leave NAME", "the control loses the focus", 1, 1, Leave},
    {"answer", "answer OK | \"/path/file.txt\"", "answers the message box or file dialog in front", 1, 1, Answer},
    {"get", "get NAME[.Property]", "all properties, or one; or a shared value", 1, 1, nullptr, Get},
    {"dump", "dump [WINDOW]", "every control of the page, or of a window, with its properties", 0, 1, nullptr, Dump},
    {"show", "show", "the window in front as text", 0, 0, nullptr, ShowFront},
    {"wait", "wait 300ms", "lets the program run that long", 1, 1, nullptr, Wait},
    {"until", "until NAME.Property = VALUE within 5s", "lets it run until that holds (= != < > contains)", 5, 5,
     nullptr, Until},
    {"idle", "idle within 10s", "lets it run until no handler is under way", 2, 2, nullptr, Idle},
    {"open", "open WINDOW", "shows a hidden page: frmPlugAndPlay", 1, 1, Open},
    {"close", "close", "the close box of the modal window in front, else of the main window", 0, 0, Close},
    {"quit", "quit", "the menu's Exit", 0, 0, Quit},
    {"help", "help", "this table", 0, 0, nullptr, Help},
};

constexpr std::string_view kNoWait = "nowait";

Reply Help(const Bench& /*bench*/, const Arguments& /*arguments*/) {
  std::size_t widest = 0;
  for (const Command& command : kCommands) widest = std::max(widest, command.form.size());
  std::string text;
  const auto add = [&](std::string_view form, std::string_view does) {
    text += form;
    text.append(widest + 2 - form.size(), ' ');
    text += does;
    text += '\n';
  };
  for (const Command& command : kCommands) add(command.form, command.does);
  add("nowait COMMAND", "a gesture that does not wait for its handler");
  add("# ...", "a comment");
  return Reply::With(text);
}

}  // namespace

Request Parse(std::string_view line) {
  Request request;
  Line split = Split(line);
  request.error = std::move(split.error);
  if (!request.error.empty() || split.words.empty()) return request;

  request.arguments = std::move(split.words);
  request.noWait = request.arguments.front() == Word{std::string(kNoWait), false};
  if (request.noWait) request.arguments.erase(request.arguments.begin());
  if (request.arguments.empty()) {
    request.error = "a command is missing after nowait";
    return request;
  }
  const std::string name = request.arguments.front().text;
  request.arguments.erase(request.arguments.begin());
  const auto* command = std::find_if(std::begin(kCommands), std::end(kCommands),
                                     [&](const Command& candidate) { return candidate.name == name; });
  if (command == std::end(kCommands)) {
    request.error = "there is no command " + name + ", see help";
  } else if (request.arguments.size() < command->fewest || request.arguments.size() > command->most) {
    request.error = "usage: " + std::string(command->form);
  } else if (request.noWait && command->begin == nullptr) {
    request.error = "nowait goes before a gesture, which " + name + " is not";
  } else {
    request.command = command;
  }
  return request;
}

bool IsEscape(const Request& request) {
  return request.command != nullptr && request.command->begin == PressKey && request.arguments.size() == 1 &&
         request.arguments.front().text == "Escape";
}

Gesture Begin(const Bench& bench, const Request& request) {
  Gesture gesture;
  gesture.before = bench.screen.Modals();
  GestureResult result = request.command->begin(bench, request.arguments);
  gesture.run = std::move(result.run);
  if (!result.taken) gesture.error = result.refusal;
  return gesture;
}

Reply Finish(const Bench& bench, const Gesture& gesture) {
  if (!gesture.error.empty()) return Reply::Failed(gesture.error);

  const auto& modals = bench.screen.Modals();
  const auto wasThere = [&](const auto& modal) {
    return std::find(gesture.before.begin(), gesture.before.end(), modal) != gesture.before.end();
  };
  const auto isDone = [](const std::shared_ptr<view::GestureRun>& run) { return run == nullptr || run->Done(); };
  const auto goesOnNoMore = [&](const auto& modal) {
    return std::find(modals.begin(), modals.end(), modal) != modals.end() || isDone(modal->Opener());
  };
  // Whoever waited for what was closed goes on in the next turn, also when no gesture led to it.
  bool turned = false;
  core::Call turn(bench.screen.GetScheduler(), [&] { turned = true; });
  turn.Post();
  bench.runUntil([&] {
    if (bench.ended() || !std::all_of(modals.begin(), modals.end(), wasThere)) return true;
    return turned && isDone(gesture.run) && std::all_of(gesture.before.begin(), gesture.before.end(), goesOnNoMore);
  });
  return {};
}

Reply Run(const Bench& bench, const Request& request) {
  if (request.command == nullptr) return Reply::Failed(request.error);
  if (request.command->begin == nullptr) return request.command->run(bench, request.arguments);
  const Gesture gesture = Begin(bench, request);
  if (request.noWait && gesture.error.empty()) return {};
  return Finish(bench, gesture);
}

}  // namespace tarvo::console
