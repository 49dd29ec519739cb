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

}  // namespace cadrova::host
