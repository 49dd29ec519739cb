// Text as UTF-8.
#pragma once

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace cadrova::host {

// The number of characters in `utf8`: of bytes that do not continue a character.
inline std::size_t CharacterCount(std::string_view utf8) {
  return static_cast<std::size_t>(
      std::count_if(utf8.begin(), utf8.end(), [](char byte) { return (byte & 0xC0) != 0x80; }));
}

// The offset of the first byte of `text` that is not part of a character, or npos.
inline std::size_t FindInvalidUtf8(std::string_view text) {
  const auto is_between = [&](std::size_t at, int low, int high) {
    if (at >= text.size()) return false;
    const auto byte = static_cast<unsigned char>(text[at]);
    return byte >= low && byte <= high;
  };
  for (std::size_t at = 0; at < text.size();) {
    if (is_between(at, 0, 0x7F)) {
      ++at;
      continue;
    }
    const auto lead = static_cast<unsigned char>(text[at]);
    const std::size_t size = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
    // The second byte excludes encodings that are too long, surrogates, and what is above U+10FFFF.
    const bool is_valid = is_between(at, 0xC2, 0xF4) && is_between(at + 1,
                                                                   lead == 0xE0   ? 0xA0
                                                                   : lead == 0xF0 ? 0x90
                                                                                  : 0x80,
                                                                   lead == 0xED   ? 0x9F
                                                                   : lead == 0xF4 ? 0x8F
                                                                                  : 0xBF);
    for (std::size_t byte = 2; byte < size; ++byte) {
      if (!is_between(at + byte, 0x80, 0xBF)) return at;
    }
    if (!is_valid) return at;
    at += size;
  }
  return std::string_view::npos;
}

}  // namespace cadrova::host
