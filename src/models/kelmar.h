#pragma once

#include <span>
#include <vector>

#include "models/plc_page.h"
#include "models/thermocouple_inputs.h"

namespace tarvo::models {

/// Four thermocouple inputs of the second generation: the module's line is fixed, and it serves a PLC. In a session its
/// settings are locked, but for raw or scaled.
class Kelmar : public PlcPage<ThermocoupleInputs> {
 public:
  Kelmar(pages::PageContext& context, calibration::DlgCalForm& calibration);

  void Load() override;
  core::Task<> Activate() override;
  /// Mode 1 enables all that edits, any other disables it.
  void EnableInputs(int mode);
  /// -1 turns the connection display on; any other state turns it off and empties the page.
  void KelmarCommLabels(int state);
  /// No lamp, no bar, and 0 everywhere.
  void CleanKelmar();

  pages::FileFormat Files() const override {
    return {.word = "Kelmar", .updated = "Kelmar", .fields = fields_, .copied = true};
  }
  view::Node Arrangement() const override;

 protected:
  core::Task<> ApplyFirmware(int release) override;
  std::span<const pages::ImageWrite> ImageWrites() const override { return images_; }
  void Starting() override;
  void Stopped() override { EnableInputs(1); }

 private:
  state::Word ReadFlagsFromForm() const;
  core::Task<> RawClick();
  core::Task<> ScaledClick();

  std::vector<pages::FileField> MakeFields();

  const std::vector<pages::ImageWrite> images_;
  const std::vector<pages::FileField> fields_;
};

}  // namespace tarvo::models
