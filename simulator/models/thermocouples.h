#pragma once

#include <array>
#include <string_view>

#include "simulator/model.h"

namespace tarvo::simulator {

/// Four thermocouple inputs, each with a type, a filter, and the span and zero that correct what it measures. The
/// models that have them differ in what else they can be set to.
class Thermocouples : public Model {
 public:
  static constexpr state::Register kCommunication{40002};
  static constexpr state::Register kFlags{40003};

  /// What these models have in common by data.
  static ModelData DataOf(std::string_view name, int code);

  explicit Thermocouples(const ModelData& data);

  void Seed(Random& random) override;
  void Live(core::Duration elapsed) override;
  state::Word Read(state::Register reg) const override;
  void Restarted() override;

 private:
  static constexpr int kInputs = 4;
  /// The last input has a loose wire, open for the first part of each period.
  static constexpr core::Duration kOpenTime = std::chrono::seconds(5);

  bool BurntOut(int input) const;
  int TypeOf(int input) const;
  int Measured(int input) const;
  state::Word Corrected(int input) const;
  state::Word Status() const;
  double Signal(int input) const;
  void MoveWire(core::Duration elapsed);
  void Convert(int input);
  void Show(int input, double filtered);

  std::array<double, kInputs> phases_{};
  std::array<double, kInputs> filtered_{};
  core::Duration time_{};  ///< how long the signals have gone on
  core::Duration sinceConversion_{};
  core::Duration looseTime_ = kOpenTime;  ///< where the loose wire stands in its period
};

}  // namespace tarvo::simulator
