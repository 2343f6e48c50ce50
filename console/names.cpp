#include "console/names.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "console/words.h"
#include "view/window.h"

namespace tarvo::console {

namespace {

using state::SharedState;
using view::PropertyValue;

/// A shared value, or an array of them, by the system's name.
struct SharedName {
  std::string_view name;
  std::size_t members;  ///< 0 for a value that stands alone
  PropertyValue (*read)(const SharedState& state, std::size_t member);
};

template <auto kField>
PropertyValue Alone(const SharedState& state, std::size_t /*member*/) {
  if constexpr (requires { std::string(state.*kField); }) {
    return state.*kField;
  } else {
    return std::int64_t{state.*kField};
  }
}

constexpr SharedName kSharedNames[] = {
    {"PCSettings", 0, Alone<&SharedState::PCSettings>},
    {"PCPort", 0, Alone<&SharedState::PCPort>},
    {"ModuleAddress", 0, Alone<&SharedState::ModuleAddress>},
    {"StartComm", 0, Alone<&SharedState::StartComm>},
    {"NrFinestra", 0, Alone<&SharedState::NrFinestra>},
    {"PollRegister", 0,
     [](const SharedState& state, std::size_t) { return PropertyValue(std::int64_t{state.PollRegister.Number()}); }},
    {"PollCount", 0, Alone<&SharedState::PollCount>},
    {"PollBuffer", std::tuple_size_v<decltype(SharedState::PollBuffer)>,
     [](const SharedState& state, std::size_t member) {
       return PropertyValue(std::int64_t{state.PollBuffer[member].Unsigned()});
     }},
    {"RunKind", 0, Alone<&SharedState::RunKind>},
    {"ReadStep", 0, Alone<&SharedState::ReadStep>},
    {"EscPressed", 0, Alone<&SharedState::EscPressed>},
    {"GearStep", 0, Alone<&SharedState::GearStep>},
    {"FamilyShown", 0, Alone<&SharedState::FamilyShown>},
    {"AutoScan", 0, Alone<&SharedState::AutoScan>},
    {"SearchRunning", 0, Alone<&SharedState::SearchRunning>},
    {"pageReadDone", 0, Alone<&SharedState::pageReadDone>},
    {"pageEntered", 0, Alone<&SharedState::pageEntered>},
    {"FileFields", std::tuple_size_v<decltype(SharedState::FileFields)>,
     [](const SharedState& state, std::size_t member) { return PropertyValue(state.FileFields[member]); }},
    {"FullScaleTC", std::tuple_size_v<decltype(SharedState::FullScaleTC)>,
     [](const SharedState& state, std::size_t member) {
       return PropertyValue(std::int64_t{state.FullScaleTC[member]});
     }},
    {"ChangeValueMin", 0, Alone<&SharedState::ChangeValueMin>},
    {"ChangeValueMax", 0, Alone<&SharedState::ChangeValueMax>},
    {"ChangeValueResult", 0, Alone<&SharedState::ChangeValueResult>},
    {"ChangeValueOk", 0, Alone<&SharedState::ChangeValueOk>},
    {"NewValueText", 0, Alone<&SharedState::NewValueText>},
};

struct ArrayName {
  std::string_view name;
  std::size_t member = 0;
};

/// "PollBuffer(3)" in its parts; nothing for a text of another form.
std::optional<ArrayName> SplitArrayName(std::string_view text) {
  const std::size_t open = text.find('(');
  if (open == std::string_view::npos || text.back() != ')') return std::nullopt;
  const std::optional<int> member = ParseInteger(text.substr(open + 1, text.size() - open - 2));
  if (!member || *member < 0) return std::nullopt;
  return ArrayName{text.substr(0, open), static_cast<std::size_t>(*member)};
}

std::string_view BeforeDot(std::string_view name) {
  return name.substr(0, name.find('.'));
}

/// Empty when there is no dot.
std::string_view AfterDot(std::string_view name) {
  const std::size_t dot = name.find('.');
  return dot == std::string_view::npos ? std::string_view() : name.substr(dot + 1);
}

Names::Reading Missing(std::string error) {
  Names::Reading reading;
  reading.error = std::move(error);
  return reading;
}

/// All of `properties`, or the one that is asked for.
Names::Reading Pick(std::string_view owner, std::vector<view::NamedValue> properties, std::string_view property) {
  Names::Reading reading;
  if (property.empty()) {
    reading.properties = std::move(properties);
    return reading;
  }
  const auto found = std::find_if(properties.begin(), properties.end(),
                                  [&](const auto& candidate) { return candidate.name == property; });
  if (found == properties.end()) return Missing(std::string(owner) + " has no property " + std::string(property));
  reading.value = std::move(found->value);
  return reading;
}

std::string NoSuchName(std::string_view name) {
  return "there is no " + std::string(name) + " here";
}

}  // namespace

view::Window* Names::FindWindow(std::string_view name) const {
  const auto found =
      std::find_if(windows_.begin(), windows_.end(), [&](const auto* window) { return window->Name() == name; });
  return found == windows_.end() ? nullptr : *found;
}

view::Control* Names::FindBare(std::string_view name) const {
  const auto& modals = screen_.Modals();
  const auto modal = std::find_if(modals.rbegin(), modals.rend(),
                                  [](const auto& candidate) { return candidate->AsWindow() != nullptr; });
  const view::Window* places[] = {modal == modals.rend() ? nullptr : (*modal)->AsWindow(), screen_.Page(),
                                  screen_.Main()};
  for (const view::Window* place : places) {
    view::Control* control = place == nullptr ? nullptr : place->Find(name);
    if (control != nullptr) return control;
  }
  return nullptr;
}

Names::FoundControl Names::FindControl(std::string_view name) const {
  FoundControl found;
  found.control = FindBare(name);
  if (found.control != nullptr) return found;
  if (const view::Window* window = FindWindow(BeforeDot(name)); window != nullptr && !AfterDot(name).empty()) {
    found.control = window->Find(AfterDot(name));
    if (found.control == nullptr) found.error = window->Name() + " has no " + std::string(AfterDot(name));
  } else {
    found.error = NoSuchName(name);
  }
  return found;
}

std::optional<PropertyValue> Names::ReadShared(std::string_view name) const {
  if (name == "Beeps") return std::int64_t{screen_.Beeps()};
  if (name == "MousePointer") {
    return std::string(screen_.MousePointer() == view::Screen::Pointer::kHourglass ? "hourglass" : "default");
  }
  const std::optional<ArrayName> array = SplitArrayName(name);
  for (const SharedName& shared : kSharedNames) {
    if (array && shared.name == array->name && array->member < shared.members)
      return shared.read(state_, array->member);
    if (shared.name != name) continue;
    if (shared.members == 0) return shared.read(state_, 0);
    if (std::holds_alternative<std::string>(shared.read(state_, 0))) {
      std::vector<std::string> texts;
      texts.reserve(shared.members);
      for (std::size_t i = 0; i < shared.members; ++i) texts.push_back(std::get<std::string>(shared.read(state_, i)));
      return texts;
    }
    std::vector<int> members;
    members.reserve(shared.members);
    for (std::size_t i = 0; i < shared.members; ++i) {
      members.push_back(static_cast<int>(std::get<std::int64_t>(shared.read(state_, i))));
    }
    return members;
  }
  return std::nullopt;
}

bool Names::InAnyWindow(std::string_view name) const {
  return std::any_of(windows_.begin(), windows_.end(),
                     [&](const auto* window) { return window->Find(name) != nullptr; });
}

Names::Reading Names::Read(std::string_view name) const {
  const std::string_view first = BeforeDot(name);
  const std::string_view rest = AfterDot(name);
  if (const view::Control* control = FindBare(first)) return Pick(first, control->Properties(), rest);
  if (rest.empty()) {
    if (std::optional<PropertyValue> value = ReadShared(name)) {
      Reading reading;
      reading.value = std::move(value);
      return reading;
    }
  }
  if (const view::Window* window = FindWindow(first)) {
    // One word after the window is a control of it, or a property of its own.
    const std::string_view second = BeforeDot(rest);
    if (const view::Control* control = rest.empty() ? nullptr : window->Find(second)) {
      return Pick(second, control->Properties(), AfterDot(rest));
    }
    if (!AfterDot(rest).empty()) return Missing(window->Name() + " has no " + std::string(second));
    std::vector<view::NamedValue> properties;
    properties.push_back({"Caption", window->Caption});
    return Pick(first, std::move(properties), rest);
  }
  Reading missing = Missing(NoSuchName(first));
  missing.mayCome = InAnyWindow(first);
  return missing;
}

}  // namespace tarvo::console
