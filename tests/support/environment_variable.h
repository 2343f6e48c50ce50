#pragma once

#include <stdlib.h>

#include <optional>
#include <string>

namespace tarvo::test {

/// Sets or clears a variable of the environment until this object ends.
class EnvironmentVariable {
 public:
  EnvironmentVariable(const char* name, const std::optional<std::string>& value) : name_(name) {
    if (const char* old = getenv(name)) old_ = old;
    Set(value);
  }
  EnvironmentVariable(const EnvironmentVariable&) = delete;
  EnvironmentVariable& operator=(const EnvironmentVariable&) = delete;
  ~EnvironmentVariable() { Set(old_); }

 private:
  void Set(const std::optional<std::string>& value) const {
    if (value) {
      setenv(name_, value->c_str(), 1);
    } else {
      unsetenv(name_);
    }
  }

  const char* name_;
  std::optional<std::string> old_;
};

}  // namespace tarvo::test
