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

// The size of the character at the beginning of `text`, or 0 if there is none.
inline std::size_t CharacterSize(std::string_view text) {
  const auto is_between = [&](std::size_t at, int low, int high) {
    if (at >= text.size()) return false;
    const auto byte = static_cast<unsigned char>(text[at]);
    return byte >= low && byte <= high;
  };
  if (is_between(0, 0, 0x7F)) return 1;
  if (!is_between(0, 0xC2, 0xF4)) return 0;
  const auto lead = static_cast<unsigned char>(text[0]);
  const std::size_t size = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
  // The second byte excludes encodings that are too long, surrogates, and what is above U+10FFFF.
  const int lowest = lead == 0xE0 ? 0xA0 : lead == 0xF0 ? 0x90 : 0x80;
  const int highest = lead == 0xED ? 0x9F : lead == 0xF4 ? 0x8F : 0xBF;
  if (!is_between(1, lowest, highest)) return 0;
  for (std::size_t byte = 2; byte < size; ++byte) {
    if (!is_between(byte, 0x80, 0xBF)) return 0;
  }
  return size;
}

// The offset of the first byte of `text` that is not part of a character, or npos.
inline std::size_t FindInvalidUtf8(std::string_view text) {
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t size = CharacterSize(text.substr(at));
    if (size == 0) return at;
    at += size;
  }
  return std::string_view::npos;
}

struct Character {
  char32_t code;
  std::size_t size;
};

// The first character of `text`, which is not empty. A byte that is not part of a character counts
// as a character with its value as the code.
inline Character FirstCharacter(std::string_view text) {
  const auto lead = static_cast<unsigned char>(text[0]);
  const std::size_t size = CharacterSize(text);
  if (size < 2) return {lead, 1};
  char32_t code = lead & (0x7FU >> size);
  for (std::size_t byte = 1; byte < size; ++byte) {
    code = code << 6U | (static_cast<unsigned char>(text[byte]) & 0x3FU);
  }
  return {code, size};
}

// Whether the character may change what a terminal shows around it: a control character, or a mark
// that changes the direction of text.
constexpr bool IsUnsafe(char32_t code) {
  return code < ' ' || (code >= 0x7F && code <= 0x9F) || code == 0x61C || code == 0x200E ||
         code == 0x200F || (code >= 0x202A && code <= 0x202E) || (code >= 0x2066 && code <= 0x2069);
}

// A set of bytes, as a table, because a trace looks at each byte of a text.
class ByteSet {
 public:
  consteval explicit ByteSet(auto contains) {
    for (int byte = 0; byte < 256; ++byte) is_in_[byte] = contains(static_cast<char>(byte));
  }
  // The size of the beginning of `text` that has no byte of the set.
  std::size_t Find(std::string_view text) const {
    std::size_t size = 0;
    while (size < text.size() && !is_in_[static_cast<unsigned char>(text[size])]) ++size;
    return size;
  }

 private:
  bool is_in_[256] = {};
};

constexpr ByteSet kNotPlain([](char byte) {
  return byte < ' ' || byte > '~' || byte == '"' || byte == '\\';
});

// Appends `string` with an escape such as \u001b for each unsafe character, except the ASCII
// characters in `kept`, and with a backslash before each ASCII character in `backslashed`.
template <class Text>
void AppendSafe(Text& text, std::string_view string, std::string_view kept = "",
                std::string_view backslashed = "") {
  constexpr char kDigits[] = "0123456789abcdef";
  while (!string.empty()) {
    const std::size_t plain = kNotPlain.Find(string);
    text += string.substr(0, plain);
    string.remove_prefix(plain);
    if (string.empty()) break;
    const auto [code, size] = FirstCharacter(string);
    if (IsUnsafe(code) && kept.find(string[0]) == std::string_view::npos) {
      const char escape[] = {'\\',
                             'u',
                             kDigits[code >> 12U],
                             kDigits[code >> 8U & 15U],
                             kDigits[code >> 4U & 15U],
                             kDigits[code & 15U]};
      text += std::string_view(escape, sizeof escape);
    } else {
      if (backslashed.find(string[0]) != std::string_view::npos) text += '\\';
      text += string.substr(0, size);
    }
    string.remove_prefix(size);
  }
}

}  // namespace cadrova::host
