#include "config/field_text.h"

#include <algorithm>

#include "core/fault.h"

namespace tarvo::config {

namespace {

std::string FromLatin1(std::string_view bytes) {
  std::string text;
  text.reserve(bytes.size());
  for (const char byte : bytes) {
    const unsigned point = static_cast<unsigned char>(byte);
    if (point < 0x80) {
      text += byte;
    } else {
      text += static_cast<char>(0xC0 | (point >> 6));
      text += static_cast<char>(0x80 | (point & 0x3F));
    }
  }
  return text;
}

/// What Latin-1 has no character for becomes a question mark.
std::string ToLatin1(std::string_view text) {
  std::string bytes;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const unsigned lead = static_cast<unsigned char>(text[i]);
    if (lead < 0x80) {
      bytes += text[i];
    } else if ((lead & 0xC0) == 0xC0) {
      const bool known = (lead & 0xFC) == 0xC0 && i + 1 < text.size();
      const unsigned next = known ? static_cast<unsigned char>(text[i + 1]) : 0U;
      bytes += known ? static_cast<char>((lead << 6) | (next & 0x3F)) : '?';
    }
  }
  return bytes;
}

}  // namespace

std::string FieldReader::Next() {
  if (rest_.empty()) throw core::Fault(core::kInputPastEndOfFile);
  rest_.remove_prefix(std::min(rest_.find_first_not_of(" \t"), rest_.size()));
  std::string_view field;
  if (rest_.starts_with('"')) {
    rest_.remove_prefix(1);
    field = rest_.substr(0, rest_.find('"'));
    rest_.remove_prefix(std::min(field.size() + 1, rest_.size()));
  } else {
    field = rest_.substr(0, rest_.find_first_of(",\n"));
    rest_.remove_prefix(field.size());
    if (field.ends_with('\r')) field.remove_suffix(1);
  }
  // What follows a quoted field is dropped with the separator.
  const std::size_t separator = rest_.find_first_of(",\n");
  rest_.remove_prefix(std::min(separator == std::string_view::npos ? rest_.size() : separator + 1, rest_.size()));
  return FromLatin1(field);
}

std::string FieldLine(std::string_view field) {
  return '"' + ToLatin1(field) + "\"\r\n";
}

}  // namespace tarvo::config
