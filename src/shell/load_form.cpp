#include "shell/load_form.h"

#include <algorithm>

namespace tarvo::shell {

namespace {

using enum FoundStep;

const std::vector<FoundModel>& Models() {
  static const std::vector<FoundModel> models = {
      {0x01, "Belk", 0, {kClick, kCheckFWVersion, kReadEEPromFlags}},
      {0x02, "Cobin", 1, {kClick, kCheckFWVersion, kReadEEPromFlags}},
      {0x03, "Dravo", 2, {kClick, kReadEEPromFlags, kCheckFWVersion}},
      {0x04, "Ferrun", 3, {kClick, kCheckFWVersion, kReadEEPromFlags}},
      {0x06, "Jorun", 5, {kClick, kReadEEPromFlags}},
      {0x07, "Gaven", 4, {kClick, kReadEEPromFlags, kCheckFWVersion}},
      {0x08, "Nerith", 9, {kSetFound, kClick, kReadOnce}},
      {0x09, "Pellor", 9, {kSetFound, kClick, kReadOnce}},
      {0x0A, "Lumet", 6, {kClick, kCheckFWVersion, kReadEEPromFlags}},
      {0x0B, "Hollin", 8, {kClick, kReadEEPromFlags}},
      {0x0C, "Kelmar", 7, {kClick, kReadEEPromFlags}},
      {0x0D, "Marlo", 10, {kShow, kCheckFWVersion, kReadEEPromFlags, kEntered, kClick}},
      {0x0F, "Quenby", 11, {kClick, kReadEEPromFlags}},
  };
  return models;
}

}  // namespace

const FoundModel* FindModel(state::Word identity) {
  const std::vector<FoundModel>& models = Models();
  const auto found = std::find_if(models.begin(), models.end(),
                                  [&](const FoundModel& model) { return model.code == identity.High(); });
  return found == models.end() ? nullptr : &*found;
}

}  // namespace tarvo::shell
