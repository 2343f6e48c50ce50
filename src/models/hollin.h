#pragma once

#include <span>
#include <vector>

#include "models/analog_inputs.h"
#include "models/plc_page.h"

namespace tarvo::models {

/// Four analog inputs of the second generation: the module's line is fixed, and it serves a PLC. In a session all
/// settings are locked.
class Hollin : public PlcPage<AnalogInputs> {
 public:
  explicit Hollin(pages::PageContext& context);

  core::Task<> Activate() override;
  /// Mode 0 disables all that edits, any other enables it.
  void HollinEnableControls(int mode);
  /// What the module serves a PLC with.
  void HollinEnableInterface(bool on);

  pages::FileFormat Files() const override { return {.word = "Hollin", .updated = "Hollin", .fields = fields_}; }
  view::Node Arrangement() const override;

 protected:
  std::span<const pages::ImageWrite> ImageWrites() const override { return images_; }
  void Starting() override { HollinEnableInterface(true); }
  void Started() override { HollinEnableControls(0); }
  void Stopped() override;
  bool MayStop() const override;
  bool DeedsLocked() const override { return InSession(); }
  core::Task<> SetupFormFromFile() override;

 private:
  state::Word ReadFlagsFromForm() const;
  core::Task<> DataClick(bool raw);
  std::vector<pages::FileField> MakeFields();

  const std::vector<pages::ImageWrite> images_;
  const std::vector<pages::FileField> fields_;
};

}  // namespace tarvo::models
