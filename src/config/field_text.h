#pragma once

#include <string>
#include <string_view>

namespace tarvo::config {

/// Reads the fields of a settings file one after the other. The text is 8-bit (Latin-1), lines end in LF or CR LF.
class FieldReader {
 public:
  /// `content` must outlive the reader.
  explicit FieldReader(std::string_view content) : rest_(content) {}

  bool AtEnd() const { return rest_.empty(); }
  /// The next field: up to a comma or the line's end, or what stands between double quotes. Throws "Input past end of
  /// file" when nothing is left.
  std::string Next();

 private:
  std::string_view rest_;
};

/// A line of the file as the program writes it: the field between double quotes.
std::string FieldLine(std::string_view field);

}  // namespace tarvo::config
