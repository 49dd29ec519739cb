// Values and the core's blocks as one line of JSON. Not valid JSON are: the floats inf and nan, and
// bytes that are not UTF-8, which are copied unchanged.
#pragma once

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <iterator>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

#include "cadrova/value.h"
#include "parser_core.h"

namespace cadrova::tools {

// The core's blocks, one type per layout. They are read, never freed.
struct StringArrayBlock {
  const char* const* strings;
};
struct IntArrayBlock {
  const std::int32_t* numbers;
};
struct PairArrayBlock {
  const char* const* strings;
};

constexpr bool IsControl(char byte) {
  return static_cast<unsigned char>(byte) < ' ' || byte == 0x7F;
}

// A set of bytes, as a table: a trace looks at each byte of a text.
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
constexpr ByteSet kEscaped([](char byte) {
  return byte == '"' || byte == '\\' || IsControl(byte);
});

// A `Text` is a std::string or a TextBuffer.
template <class Text>
void AppendJson(Text& text, std::string_view string) {
  constexpr char kDigits[] = "0123456789abcdef";
  text += '"';
  for (std::size_t plain; (plain = kEscaped.Find(string)) != string.size();) {
    text += string.substr(0, plain);
    text += '\\';
    const char special = string[plain];
    if (IsControl(special)) {
      const char code[] = {'u', '0', '0', kDigits[special >> 4], kDigits[special & 15]};
      text += std::string_view(code, std::size(code));
    } else {
      text += special;
    }
    string.remove_prefix(plain + 1);
  }
  text += string;
  text += '"';
}
template <class Text>
void AppendJson(Text& text, const std::string& string) {
  AppendJson(text, std::string_view(string));
}
template <class Text>
void AppendJson(Text& text, const char* string) {
  AppendJson(text, std::string_view(string));
}

// Decimal; a float in the shortest form that reads back to the same float.
template <class Text, class Number>
  requires std::is_arithmetic_v<Number>
void AppendJson(Text& text, Number number) {
  if constexpr (std::is_same_v<Number, bool>) {
    // The byte of a caller's default may be neither 0 nor 1.
    text += std::string_view(core::LowestBit(number) != 0 ? "true" : "false");
  } else {
    if constexpr (std::is_floating_point_v<Number>) {
      number = std::isnan(number) ? NAN : number;  // Its sign and its bits would be shown.
    }
    char digits[32];
    char* const end = std::to_chars(digits, std::end(digits), number).ptr;
    text += std::string_view(digits, static_cast<std::size_t>(end - digits));
  }
}

template <class Text>
void AppendJson(Text& text, cadrova_core_bool byte) {
  AppendJson(text, cadrova::core::IsTrue(byte));
}

template <class Text, class First, class Second>
void AppendJson(Text& text, const std::pair<First, Second>& pair) {
  text += '[';
  AppendJson(text, pair.first);
  text += ',';
  AppendJson(text, pair.second);
  text += ']';
}

// The elements that `next` returns a pointer to, until it returns NULL.
template <class Text>
void AppendJsonList(Text& text, auto next) {
  text += '[';
  const char* separator = "";
  while (const auto* element = next()) {
    text += std::string_view(std::exchange(separator, ","));
    AppendJson(text, *element);
  }
  text += ']';
}

template <class Text, class Element>
void AppendJson(Text& text, const std::vector<Element>& list) {
  auto rest = list.begin();
  AppendJsonList(text, [&] { return rest == list.end() ? nullptr : &*rest++; });
}

template <class Text>
void AppendJson(Text& text, StringArrayBlock block) {
  const auto* rest = block.strings;
  AppendJsonList(text, [&] { return rest == nullptr || *rest == nullptr ? nullptr : rest++; });
}

template <class Text>
void AppendJson(Text& text, IntArrayBlock block) {
  const auto* rest = block.numbers;
  std::int32_t count = rest == nullptr ? 0 : *rest;
  AppendJsonList(text, [&] { return count-- > 0 ? ++rest : nullptr; });
}

template <class Text>
void AppendJson(Text& text, PairArrayBlock block) {
  // After a NULL key, the slot for its value may not exist.
  const auto* rest = block.strings;
  std::pair<const char*, const char*> pair;
  AppendJsonList(text, [&] {
    if (rest == nullptr || rest[0] == nullptr || rest[1] == nullptr) {
      return static_cast<decltype(&pair)>(nullptr);
    }
    pair = {rest[0], rest[1]};
    rest += 2;
    return &pair;
  });
}

template <class Text>
void AppendJson(Text& text, const host::Value& value) {
  std::visit([&](const auto& content) { AppendJson(text, content); }, value);
}

template <class T>
std::string ToJsonText(const T& value) {
  std::string text;
  AppendJson(text, value);
  return text;
}

}  // namespace cadrova::tools
