#pragma once

#include <array>
#include <string_view>
#include <vector>

#include "view/control.h"

namespace tarvo::models {

/// What Ferrun and Dravo measure: a row of the list of input types.
struct MeasureType {
  std::string_view text;
  int lower;  ///< limits of the input, in its unit
  int upper;
  std::string_view unit;
};

inline constexpr std::array<MeasureType, 13> kMeasureTypes = {{
    {"mV (50 .. 10000)", 50, 10000, "mV"},
    {"Ohm (350 .. 15000)", 350, 15000, "Ohm"},
    {"uA (2000 .. 20000)", 2000, 20000, "uA"},
    {"PT100 (-200.0 .. 600.0 °C)", -200, 600, "°C"},
    {"NI100 (-60 .. 180.0 °C)", -60, 180, "°C"},
    {"TC-J (-200.0 .. 1000.0 °C)", -200, 1000, "°C"},
    {"TC-K (-250.0 .. 1200.0 °C)", -250, 1200, "°C"},
    {"TC-R (0 .. 1750.0 °C)", 0, 1750, "°C"},
    {"TC-S (0 .. 1750.0 °C)", 0, 1750, "°C"},
    {"TC-T (-200.0 .. 400.0 °C)", -200, 400, "°C"},
    {"TC-B (0 .. 1800.0 °C)", 0, 1800, "°C"},
    {"TC-E (-200.0 .. 800.0 °C)", -200, 800, "°C"},
    {"TC-N (-200.0 .. 1300.0 °C)", -200, 1300, "°C"},
}};

/// At the first three positions the user scales the input; the sensors behind them have fixed scales.
inline constexpr int kScaledTypes = 3;

inline constexpr std::array<view::ListRow, 7> kInputFilters = {
    {{"0 Sec"}, {"1 Sec"}, {"2 Sec"}, {"5 Sec"}, {"10 Sec"}, {"20 Sec"}, {"60 Sec"}}};

/// The rows of the list of input types.
std::vector<view::ListRow> MeasureTypeRows();

/// Null for a position that the list has not.
const MeasureType* FindMeasureType(int position);

/// The bounds of a value of the scales, both included.
struct Bounds {
  int lower;
  int upper;
};

/// Of the six values that both pages have: full and start scale of the input, full and start scale of the user, span
/// and zero. `type` gives the limits of the input; `position` is the one selected now.
Bounds ScaleBounds(std::size_t value, const MeasureType& type, int position);

/// Names of the six values as their tool tips have them.
inline constexpr std::array<std::string_view, 6> kScaleNames = {
    "Measure Full Scale", "Measure Init Scale", "User Full Scale", "User Init Scale", "Module Span", "Module Zero"};

/// A status mark whose quiet colour is that of a button's face.
inline constexpr view::Colour kButtonFace = static_cast<view::Colour>(0x8000000F);

}  // namespace tarvo::models
