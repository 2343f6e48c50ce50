#include "view/window.h"

#include <utility>

#include "view/screen.h"

namespace tarvo::view {

namespace {

std::string DescriptionOf(const std::exception_ptr& fault) {
  try {
    std::rethrow_exception(fault);
  } catch (const std::exception& known) {
    return known.what();
  } catch (...) {
    return "Unexpected error";
  }
}

}  // namespace

Window::Window(Screen& screen, std::string_view name, std::string_view caption)
    : Caption(caption),
      screen_(screen),
      name_(name),
      scope_([this](const std::exception_ptr& fault) { screen_.ReportFault(DescriptionOf(fault)); }) {}

Window::~Window() = default;

core::Scheduler& Window::GetScheduler() const {
  return screen_.GetScheduler();
}

Control* Window::Find(std::string_view name) const {
  for (Control* control : controls_) {
    if (control->Name() == name) return control;
  }
  return nullptr;
}

core::Task<> Window::Activate() {
  co_return;
}

core::Task<bool> Window::QueryUnload() {
  co_return true;
}

void Window::EnsureLoaded() {
  if (std::exchange(loaded_, true)) return;
  Load();
}

void Window::Spawn(core::Task<> task, std::shared_ptr<core::Origin> origin) {
  scope_.Spawn(std::move(task), std::move(origin));
}

}  // namespace tarvo::view
