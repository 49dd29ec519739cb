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
#include "utf8.h"

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

// A `Text` is a std::string or a TextBuffer.
template <class Text>
void AppendJson(Text& text, std::string_view string) {
  text += '"';
  host::AppendSafe(text, string, "", "\"\\");
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

// Decimal; a float in the shortest form that reads back to the same float, and not as an int.
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
    const std::string_view number_text(digits, static_cast<std::size_t>(end - digits));
    text += number_text;
    const bool is_like_int = number_text.find_first_not_of("-0123456789") == std::string_view::npos;
    if (std::is_floating_point_v<Number> && is_like_int) text += std::string_view(".0");
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
