// A stream of numbers that depends on its seed alone, on every machine.
#pragma once

#include <cstddef>
#include <cstdint>

class Random {
 public:
  explicit Random(std::uint64_t seed) : state_(seed) {}

  // SplitMix64.
  std::uint64_t next() {
    std::uint64_t mixed = state_ += 0x9E3779B97F4A7C15U;
    mixed = (mixed ^ (mixed >> 30U)) * 0xBF58476D1CE4E5B9U;
    mixed = (mixed ^ (mixed >> 27U)) * 0x94D049BB133111EBU;
    return mixed ^ (mixed >> 31U);
  }

  // 0 to count - 1; count is at least 1.
  std::size_t below(std::size_t count) { return static_cast<std::size_t>(next() % count); }
  // Both ends included.
  std::int64_t between(std::int64_t low, std::int64_t high) {
    return low + static_cast<std::int64_t>(below(static_cast<std::size_t>(high - low + 1)));
  }
  bool chance(int percent) { return below(100) < static_cast<std::size_t>(percent); }

  template <class List>
  const auto& pick(const List& list) {
    return list[below(list.size())];
  }

 private:
  std::uint64_t state_;
};
