#pragma once

#include <optional>
#include <string>
#include <vector>

namespace tarvo::bench {

/// One line of the table.
struct Row {
  std::string what;
  std::string measured;
  std::string beside;       ///< what something else needs for the same, measured in the same run; may be empty
  std::string bar;          ///< empty for a row that only informs
  std::optional<bool> met;  ///< nothing for a row without a bar
};

/// What was measured, in the form of a Markdown table.
class Report {
 public:
  void Add(Row row);
  /// False when a bar is missed.
  bool AllMet() const;
  std::string Text() const;

 private:
  std::vector<Row> rows_;
};

/// The value that `part` (0 to 1) of `values` do not exceed. `values` is not empty.
double Quantile(std::vector<double> values, double part);

/// `value` with so many decimals.
std::string Number(double value, int decimals);

/// Tells the user what is measured now, apart from the table.
void Tell(const std::string& what);

}  // namespace tarvo::bench
