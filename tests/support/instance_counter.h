#pragma once

namespace tarvo::test {

/// Counts its living instances, so that a test sees what lost or doubled frames hold.
class Instance {
 public:
  Instance() { ++alive_; }
  Instance(const Instance& /*other*/) { ++alive_; }
  Instance(Instance&& /*other*/) noexcept { ++alive_; }
  Instance& operator=(const Instance&) = default;
  Instance& operator=(Instance&&) noexcept = default;
  ~Instance() { --alive_; }

  static int Alive() { return alive_; }

 private:
  static inline int alive_ = 0;
};

}  // namespace tarvo::test
