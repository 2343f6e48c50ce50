#pragma once

#include <cstddef>
#include <cstdint>

namespace tarvo::state {

/// The 16 raw bits of a register. Whoever shows or compares one says how it is read.
class Word {
 public:
  constexpr Word() = default;
  constexpr explicit Word(unsigned bits) : bits_(static_cast<std::uint16_t>(bits)) {}

  constexpr int Unsigned() const { return bits_; }
  constexpr int Signed() const { return static_cast<std::int16_t>(bits_); }
  constexpr int High() const { return bits_ >> 8; }
  constexpr int Low() const { return bits_ & 0xFF; }
  constexpr bool Has(unsigned mask) const { return (bits_ & mask) != 0; }
  constexpr Word Or(unsigned mask) const { return Word(bits_ | mask); }
  constexpr Word And(unsigned mask) const { return Word(bits_ & mask); }

  friend constexpr bool operator==(Word, Word) = default;

 private:
  std::uint16_t bits_ = 0;
};

/// A holding register by its five-digit reference: 40001 is the first, at address 0 on the line.
class Register {
 public:
  constexpr explicit Register(int number) : number_(number) {}

  constexpr int Number() const { return number_; }
  constexpr std::uint16_t LineAddress() const { return static_cast<std::uint16_t>(number_ - 40001); }
  constexpr Register operator+(int offset) const { return Register(number_ + offset); }
  constexpr int operator-(Register other) const { return number_ - other.number_; }

  friend constexpr bool operator==(Register, Register) = default;
  friend constexpr auto operator<=>(Register, Register) = default;

 private:
  int number_;
};

namespace literals {

/// "40009"_reg: checked when compiled to be five digits from 40001 on.
consteval Register operator""_reg(const char* text, std::size_t length) {
  if (length != 5 || text[0] != '4') throw "a register has five digits, the first a 4";
  int number = 0;
  for (std::size_t i = 0; i < length; ++i) {
    if (text[i] < '0' || text[i] > '9') throw "a register has digits only";
    number = number * 10 + (text[i] - '0');
  }
  if (number < 40001) throw "the first holding register is 40001";
  return Register(number);
}

}  // namespace literals

}  // namespace tarvo::state
