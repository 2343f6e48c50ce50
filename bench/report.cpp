#include "bench/report.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <iostream>
#include <utility>

namespace tarvo::bench {

namespace {

using Cells = std::array<std::string, 5>;

std::size_t Width(const std::vector<Cells>& lines, std::size_t column) {
  std::size_t width = 3;
  for (const Cells& line : lines) width = std::max(width, line[column].size());
  return width;
}

}  // namespace

void Report::Add(Row row) {
  rows_.push_back(std::move(row));
}

bool Report::AllMet() const {
  return std::all_of(rows_.begin(), rows_.end(), [](const Row& row) { return row.met.value_or(true); });
}

std::string Report::Text() const {
  std::vector<Cells> lines = {{"what", "Tarvo", "beside it", "bar", "met"}};
  for (const Row& row : rows_) {
    const char* met = !row.met ? "" : (*row.met ? "yes" : "NO");
    lines.push_back({row.what, row.measured, row.beside, row.bar, met});
  }
  std::string text;
  for (std::size_t i = 0; i < lines.size(); ++i) {
    std::string rule = "|";
    text += "|";
    for (std::size_t column = 0; column < lines[i].size(); ++column) {
      const std::size_t width = Width(lines, column);
      text += " " + lines[i][column] + std::string(width - lines[i][column].size(), ' ') + " |";
      rule += " " + std::string(width, '-') + " |";
    }
    text += "\n";
    if (i == 0) text += rule + "\n";
  }
  return text;
}

double Quantile(std::vector<double> values, double part) {
  std::sort(values.begin(), values.end());
  const double rank = std::ceil(part * static_cast<double>(values.size()));
  const auto place = static_cast<std::size_t>(std::max(rank, 1.0)) - 1;
  return values.at(std::min(place, values.size() - 1));
}

std::string Number(double value, int decimals) {
  std::array<char, 64> text{};
  std::snprintf(text.data(), text.size(), "%.*f", decimals, value);
  return text.data();
}

void Tell(const std::string& what) {
  std::cerr << what << " ..." << std::endl;
}

}  // namespace tarvo::bench
