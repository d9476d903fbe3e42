// Pseudo-random input, the same in every run.
#pragma once

#include <cstddef>
#include <random>
#include <string>

namespace rig {

class RandomBytes {
 public:
  explicit RandomBytes(unsigned seed) : engine_(seed) {}

  // 0 to `last`.
  unsigned number(unsigned last) {
    return std::uniform_int_distribution<unsigned>(0, last)(engine_);
  }

  std::string bytes(std::size_t count) {
    std::string text;
    while (text.size() < count) text += static_cast<char>(number(0xFF));
    return text;
  }

  std::string bytesOf(const std::string& alphabet, std::size_t count) {
    std::string text;
    const auto last = static_cast<unsigned>(alphabet.size() - 1);
    while (text.size() < count) text += alphabet[number(last)];
    return text;
  }

 private:
  std::mt19937 engine_;
};

}  // namespace rig
