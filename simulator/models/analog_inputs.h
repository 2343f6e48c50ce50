#pragma once

#include <array>
#include <string_view>

#include "simulator/model.h"

namespace tarvo::simulator {

/// Four analog inputs, each with a filter and a scale. The models that have them differ in what else they can be set
/// to.
class AnalogInputs : public Model {
 public:
  static constexpr state::Register kCommunication{40002};
  static constexpr state::Register kFlags{40003};

  /// What these models have in common by data.
  static ModelData DataOf(std::string_view name, int code);

  explicit AnalogInputs(const ModelData& data);

  void Seed(Random& random) override;
  void Live(core::Duration elapsed) override;
  void Restarted() override;

 private:
  static constexpr int kInputs = 4;

  state::Word Signal(int input) const;
  void Convert();
  void SettleFilters();
  void ShowInputs();
  state::Word Scaled(int input) const;

  std::array<double, kInputs> phases_{};
  std::array<double, kInputs> filtered_{};
  core::Duration time_{};  ///< how long the signals have gone on
  core::Duration sinceConversion_{};
};

}  // namespace tarvo::simulator
