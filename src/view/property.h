#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace tarvo::view {

class Control;

/// The value of any property, as a front that goes by names sees it.
using PropertyValue = std::variant<bool, std::int64_t, std::string, std::vector<std::string>, std::vector<int>>;

/// A property's name and where its present value is read.
struct NamedValue {
  std::string_view name;
  PropertyValue value;
};

namespace detail {
void TellChanged(Control& owner, const void* property);
}

/// A value of a control. Setting an equal value is silent; any other marks the control as changed.
template <class T>
class Property {
 public:
  explicit Property(Control& owner, T initial = T{}) : owner_(owner), value_(std::move(initial)) {}
  Property(const Property&) = delete;

  template <class U>
  Property& operator=(const U& value) {
    if (!(value_ == value)) {
      value_ = value;
      detail::TellChanged(owner_, this);
    }
    return *this;
  }
  Property& operator=(const Property& other) { return *this = other.value_; }

  const T& operator()() const { return value_; }
  operator const T&() const { return value_; }  // NOLINT(google-explicit-constructor): reads like its value

  template <class U>
  friend bool operator==(const Property& property, const U& value) {
    return property.value_ == value;
  }

 private:
  Control& owner_;
  T value_;
};

}  // namespace tarvo::view
