#pragma once

#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "view/control.h"

namespace tarvo::view {

/// The bar meter: a filled shape that grows from the left edge, with a label over it.
class ARMetor : public Control {
 public:
  ARMetor(Window& window, std::string_view name, int index = -1);

  std::vector<NamedValue> Properties() const override;

  Property<std::string> Caption{*this};  ///< a new meter shows its own name
  Property<std::string> Font{*this};     ///< empty for the container's
  Property<Colour> BackColor{*this};     ///< of the picture area; 0 for the container's
  Property<Colour> FillColor{*this, kRed};

  int Percent() const { return percent_; }
  /// Up to 100; negative values pass. Above 100: throws the meter's fault and keeps the old value.
  void SetPercent(int percent);

  /// Width of the filled shape in a picture of that inner width.
  float ShapeWidth(float pictureWidth) const;

  /// The control's saved form, in the order in which it is written.
  using BagValue = std::variant<int, std::string>;
  struct BagEntry {
    std::string_view name;
    BagValue value;
  };
  std::vector<BagEntry> WriteProperties() const;
  /// Takes "Caption", "Font", "FillColor", "BackColor", "Percent" in this order; what is missing takes its default.
  void ReadProperties(const std::vector<BagEntry>& bag);

  static constexpr long kPercentFault = 0x80040457L;

 private:
  Property<int> percent_{*this, 100};
};

}  // namespace tarvo::view
