#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "shell/services.h"

namespace tarvo::test {

/// Texts by name in memory. Without one that was kept, nothing was ever stored.
class MemoryValues final : public shell::ValueStore {
 public:
  /// As if stored by an earlier run.
  void Keep(std::string_view name, std::string_view text) {
    exists_ = true;
    values_.insert_or_assign(std::string(name), std::string(text));
  }
  /// What is stored now.
  std::optional<std::string> Kept(std::string_view name) const {
    const auto found = values_.find(name);
    return found == values_.end() ? std::nullopt : std::optional(found->second);
  }
  bool Exists() const { return exists_; }
  int Sets() const { return sets_; }

  // The error that a call gives, 0 for none.
  int OpenError = 0;
  int RetrieveError = 0;
  int CreateError = 0;
  int SetError = 0;

  int Open() override {
    if (OpenError != 0) return OpenError;
    return exists_ ? 0 : kMissing;
  }
  int Retrieve(std::string_view name, std::optional<std::string>& text) override {
    if (RetrieveError != 0) return RetrieveError;
    text = Kept(name);
    return 0;
  }
  int Create() override {
    if (CreateError != 0) return CreateError;
    exists_ = true;
    return 0;
  }
  int Set(std::string_view name, std::string_view text) override {
    if (SetError != 0) return SetError;
    if (!exists_) return kMissing;
    ++sets_;
    values_.insert_or_assign(std::string(name), std::string(text));
    return 0;
  }

 private:
  bool exists_ = false;
  std::map<std::string, std::string, std::less<>> values_;
  int sets_ = 0;
};

}  // namespace tarvo::test
