#include "console/console.h"

#include <algorithm>
#include <istream>
#include <ostream>
#include <utility>

#include "console/json.h"
#include "console/text.h"

namespace tarvo::console {

namespace {

std::string_view NameOf(view::Icon icon) {
  switch (icon) {
    case view::Icon::kCritical:
      return "critical";
    case view::Icon::kQuestion:
      return "question";
    case view::Icon::kExclamation:
      return "exclamation";
    case view::Icon::kInformation:
      return "information";
    case view::Icon::kNone:
      break;
  }
  return "none";
}

std::string_view NameOf(const view::FileDialog& dialog) {
  return dialog.save ? "SaveFile" : "OpenFile";
}

std::string ToJson(const view::Modal* modal) {
  if (modal == nullptr) return "null";
  JsonObject json;
  if (const view::MessageBox* box = modal->AsMessageBox()) {
    json.Add("window", JsonText("MsgBox")).Add("text", JsonText(box->text)).Add("caption", JsonText(box->caption));
    json.Add("icon", JsonText(NameOf(box->icon))).Add("buttons", JsonArray(box->buttons, JsonText));
  } else if (const view::FileDialog* dialog = modal->AsFileDialog()) {
    json.Add("window", JsonText(NameOf(*dialog))).Add("filter", JsonText(dialog->filter));
  } else {
    json.Add("window", JsonText(modal->AsWindow()->Name()));
  }
  return json.Text();
}

std::string ToJson(const Reply::Properties& properties) {
  JsonObject json;
  for (const view::NamedValue& property : properties) json.Add(property.name, JsonValue(property.value));
  return json.Text();
}

std::string ToJson(const Reply::Controls& controls) {
  JsonObject json;
  for (const auto& [name, properties] : controls) json.Add(name, ToJson(properties));
  return json.Text();
}

/// One line for what stands in front.
std::string InFront(const view::Modal& modal) {
  std::string text = "  in front: ";
  if (const view::MessageBox* box = modal.AsMessageBox()) {
    text += box->caption + ": \"" + box->text + "\"";
    for (const std::string& button : box->buttons) text += "  < " + button + " >";
  } else if (const view::FileDialog* dialog = modal.AsFileDialog()) {
    text += std::string(NameOf(*dialog)) + ", " + dialog->filter;
  } else {
    text += modal.AsWindow()->Name();
  }
  return text;
}

/// The lines of `text`, safe for a terminal.
std::string Lines(std::string_view text) {
  std::string lines;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    lines += Encode(Printable(text.substr(0, end))) + '\n';
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return lines;
}

/// Column-wise, a name and a value a line.
std::string Listed(const Reply::Properties& properties) {
  std::size_t widest = 0;
  for (const view::NamedValue& property : properties) widest = std::max(widest, property.name.size());
  std::string text;
  for (const view::NamedValue& property : properties) {
    text += property.name;
    text.append(widest + 2 - property.name.size(), ' ');
    text += TextOf(property.value) + '\n';
  }
  return text;
}

/// A control a line.
std::string Listed(const Reply::Controls& controls) {
  std::size_t widest = 0;
  for (const auto& [name, properties] : controls) widest = std::max(widest, name.size());
  std::string text;
  for (const auto& [name, properties] : controls) {
    text += name + std::string(widest - name.size(), ' ');
    for (const view::NamedValue& property : properties) {
      text += "  " + std::string(property.name) + "=" + JsonValue(property.value);
    }
    text += '\n';
  }
  return text;
}

std::string_view WithoutLineEnd(std::string_view line) {
  if (line.ends_with('\r')) line.remove_suffix(1);
  return line;
}

}  // namespace

std::string ToJson(const Reply& reply, const view::Screen& screen) {
  JsonObject json;
  json.Add("ok", reply.Ok() ? "true" : "false");
  if (!reply.Ok()) {
    json.Add("error", JsonText(reply.error));
  } else if (const auto* value = std::get_if<view::PropertyValue>(&reply.content)) {
    json.Add("value", JsonValue(*value));
  } else if (const auto* properties = std::get_if<Reply::Properties>(&reply.content)) {
    json.Add("properties", ToJson(*properties));
  } else if (const auto* controls = std::get_if<Reply::Controls>(&reply.content)) {
    json.Add("controls", ToJson(*controls));
  }
  json.Add("modal", ToJson(screen.Front()));
  return json.Text();
}

std::string ToPerson(const Reply& reply, const view::Screen& screen) {
  std::string text;
  bool done = false;
  if (!reply.Ok()) {
    text = "error: " + reply.error + '\n';
  } else if (const auto* value = std::get_if<view::PropertyValue>(&reply.content)) {
    text = TextOf(*value);
    if (!text.ends_with('\n')) text += '\n';
  } else if (const auto* properties = std::get_if<Reply::Properties>(&reply.content)) {
    text = Listed(*properties);
  } else if (const auto* controls = std::get_if<Reply::Controls>(&reply.content)) {
    text = Listed(*controls);
  } else {
    text = "ok\n";
    done = true;
  }
  text = Lines(text);
  // What was only read says nothing of what stands in front.
  if (screen.Front() != nullptr && (done || !reply.Ok())) text += Lines(InFront(*screen.Front()));
  return text;
}

Request Console::ParseLine(std::string_view line) const {
  if (line.size() <= kLongestLine) return Parse(WithoutLineEnd(line));
  Request tooLong;
  tooLong.error = "the line is too long";
  return tooLong;
}

void Console::WaitForStart() {
  bench_.runUntil([&] {
    // A box of the start-up is the user's to answer.
    const view::Modal* front = bench_.screen.Front();
    const bool asked = front != nullptr && front->AsMessageBox() != nullptr;
    return asked || !bench_.starting() || bench_.ended();
  });
}

Reply Console::Do(const Request& request) {
  if (bench_.starting() && !IsEscape(request)) WaitForStart();
  if (bench_.ended()) return Reply::Failed("the program has ended");
  return Run(bench_, request);
}

void Console::Write(const Reply& reply) {
  out_ << (style_ == Style::kJson ? ToJson(reply, bench_.screen) + '\n' : ToPerson(reply, bench_.screen)) << std::flush;
}

std::string Console::Execute(std::string_view line) {
  const Request request = ParseLine(line);
  if (request.Empty()) return {};
  const Reply reply = Do(request);
  return style_ == Style::kJson ? ToJson(reply, bench_.screen) : ToPerson(reply, bench_.screen);
}

int Console::RunScript(std::istream& script, std::string_view name, std::ostream& errors) {
  std::string line;
  for (int number = 1; !bench_.ended() && std::getline(script, line); ++number) {
    const Request request = ParseLine(line);
    if (request.Empty()) continue;
    const Reply reply = Do(request);
    // A person reads the reason once.
    if (reply.Ok() || style_ == Style::kJson) Write(reply);
    if (reply.Ok()) continue;
    errors << name << ":" << number << ": " << Lines(reply.error) << std::flush;
    return 1;
  }
  return 0;
}

void Console::RunFile(std::istream& file) {
  std::string line;
  while (!bench_.ended() && std::getline(file, line)) {
    const Request request = ParseLine(line);
    if (!request.Empty()) Write(Do(request));
  }
}

void Console::Arrive(std::string_view line) {
  Typed typed;
  typed.request = ParseLine(line);
  if (bench_.starting() && IsEscape(typed.request)) typed.begun = Begin(bench_, typed.request);
  typed_.push_back(std::move(typed));
}

void Console::RunTyped(std::string_view prompt) {
  while (!bench_.ended()) {
    if (typed_.empty() && !inputEnded_) {
      out_ << prompt << std::flush;
      bench_.runUntil([&] { return !typed_.empty() || inputEnded_ || bench_.ended(); });
    }
    if (typed_.empty()) return;
    const Typed next = std::move(typed_.front());
    typed_.pop_front();
    if (next.request.Empty()) continue;
    Write(next.begun ? Finish(bench_, *next.begun) : Do(next.request));
  }
}

}  // namespace tarvo::console
