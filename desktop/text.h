#pragma once

#include <QString>
#include <string_view>

namespace tarvo::desktop {

inline QString ToQt(std::string_view text) {
  return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

}  // namespace tarvo::desktop
