// UTF-8 text.
#pragma once

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace cadrova::host {

// The number of characters in `utf8`: its bytes, without those that continue a character.
inline std::size_t CharacterCount(std::string_view utf8) {
  return static_cast<std::size_t>(
      std::ranges::count_if(utf8, [](char byte) { return (byte & 0xC0) != 0x80; }));
}

}  // namespace cadrova::host
