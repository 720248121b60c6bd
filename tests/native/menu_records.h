// Menu file records spelt out byte by byte, for tests that need exact files.
#pragma once

#include <cstdint>
#include <string>

namespace nx {

// One record: level (16 bits), key word (32 bits), caption and action each
// behind a 16-bit length, all little-endian.
inline std::string Record(int16_t level, uint32_t keyWord, const std::string& caption, const std::string& action = "") {
  auto put = [](uint32_t v, int width) {
    std::string out;
    for (int i = 0; i < width; ++i) out += static_cast<char>((v >> (8 * i)) & 0xFF);
    return out;
  };
  return put(static_cast<uint16_t>(level), 2) + put(keyWord, 4) + put(static_cast<uint32_t>(caption.size()), 2) +
         caption + put(static_cast<uint32_t>(action.size()), 2) + action;
}

}  // namespace nx
