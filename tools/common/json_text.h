// Values and the core's blocks as one line of JSON. Not valid JSON are: the floats inf and nan, and
// bytes that are not UTF-8, which are copied unchanged.
#pragma once

#include <algorithm>
#include <charconv>
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

inline void AppendJson(std::string& text, std::string_view string) {
  constexpr char kDigits[] = "0123456789abcdef";
  const auto needs_escape = [](char byte) {
    return byte == '"' || byte == '\\' || IsControl(byte);
  };
  text += '"';
  auto rest = string.begin();
  while (true) {
    const auto special = std::find_if(rest, string.end(), needs_escape);
    text.append(rest, special);
    if (special == string.end()) break;
    text += '\\';
    if (IsControl(*special)) {
      text += {'u', '0', '0', kDigits[*special >> 4], kDigits[*special & 15]};
    } else {
      text += *special;
    }
    rest = special + 1;
  }
  text += '"';
}
inline void AppendJson(std::string& text, const std::string& string) {
  AppendJson(text, std::string_view(string));
}
inline void AppendJson(std::string& text, const char* string) {
  AppendJson(text, std::string_view(string));
}

// Decimal; a float in the shortest form that reads back to the same float.
template <class Number>
  requires std::is_arithmetic_v<Number>
void AppendJson(std::string& text, Number number) {
  if constexpr (std::is_same_v<Number, bool>) {
    text += number ? "true" : "false";
  } else {
    char digits[32];
    text.append(digits, std::to_chars(digits, std::end(digits), number).ptr);
  }
}

inline void AppendJson(std::string& text, cadrova_core_bool byte) {
  AppendJson(text, cadrova::core::IsTrue(byte));
}

template <class First, class Second>
void AppendJson(std::string& text, const std::pair<First, Second>& pair) {
  text += '[';
  AppendJson(text, pair.first);
  text += ',';
  AppendJson(text, pair.second);
  text += ']';
}

template <class Element>
void AppendJson(std::string& text, const std::vector<Element>& list) {
  text += '[';
  const char* separator = "";
  for (const Element& element : list) {
    text += std::exchange(separator, ",");
    AppendJson(text, element);
  }
  text += ']';
}

inline void AppendJson(std::string& text, StringArrayBlock block) {
  std::vector<const char*> list;
  const auto* slot = block.strings;
  while (slot != nullptr && *slot != nullptr) list.push_back(*slot++);
  AppendJson(text, list);
}

inline void AppendJson(std::string& text, IntArrayBlock block) {
  std::vector<std::int32_t> list;
  if (block.numbers != nullptr && block.numbers[0] > 0) {
    list.assign(block.numbers + 1, block.numbers + 1 + block.numbers[0]);
  }
  AppendJson(text, list);
}

inline void AppendJson(std::string& text, PairArrayBlock block) {
  std::vector<std::pair<const char*, const char*>> list;
  // After a NULL key, the slot for its value may not exist.
  const auto* slot = block.strings;
  for (; slot != nullptr && slot[0] != nullptr && slot[1] != nullptr; slot += 2) {
    list.emplace_back(slot[0], slot[1]);
  }
  AppendJson(text, list);
}

inline void AppendJson(std::string& text, const host::Value& value) {
  std::visit([&](const auto& content) { AppendJson(text, content); }, value);
}

template <class T>
std::string ToJsonText(const T& value) {
  std::string text;
  AppendJson(text, value);
  return text;
}

}  // namespace cadrova::tools
