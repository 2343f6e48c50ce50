#include "pages/page_table.h"

#include <cassert>

#include "pages/device_page.h"

namespace tarvo::pages {

void PageTable::Add(DevicePage& page) {
  DevicePage*& place = pages_.at(static_cast<std::size_t>(page.Identity().number));
  assert(place == nullptr);
  place = &page;
}

DevicePage* PageTable::Page(int number) const {
  return number >= 0 && number < kPages ? pages_[static_cast<std::size_t>(number)] : nullptr;
}

core::Task<> PageTable::LeggiModulo() {
  if (state_.StartComm == state::kFalse) co_return;
  if (DevicePage* page = Current()) co_await page->Poll();
}

void PageTable::DeselectStart() {
  if (state_.StartComm != state::kTrue) return;
  if (DevicePage* page = Current()) page->Start.Enabled = false;
}

void PageTable::ReselectStart() {
  if (state_.StartComm != state::kFalse) return;
  if (DevicePage* page = Current()) page->Start.Enabled = true;
}

void PageTable::KillAllTimers() {
  DevicePage* page = Current();
  if (page == nullptr) return;
  for (view::Control* control : page->Controls()) {
    if (control->GetKind() == view::Kind::kTimer) control->Enabled = false;
  }
}

void PageTable::MuoviIngranaggi() {
  // In phase 1 the picture stays as it is.
  if (state_.GearStep < 2 || state_.GearStep > 5) return;
  if (DevicePage* page = Current()) page->Ingranaggi.Picture = state_.GearStep;
}

}  // namespace tarvo::pages
