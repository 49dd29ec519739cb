// Text that the tools print.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

#include "common/json_text.h"

namespace cadrova::tools {

// Whether values of type T are lists. Lists have no default.
template <class T>
constexpr bool kIsList = !std::is_arithmetic_v<T> && !std::is_same_v<T, std::string>;

// The elements of `range`, each as `projection` returns it, with `separator` between them.
template <class Range, class Projection = std::identity>
std::string Join(const Range& range, std::string_view separator = ", ",
                 const Projection& projection = {}) {
  std::string text;
  bool is_first = true;
  for (const auto& element : range) {
    if (!std::exchange(is_first, false)) text += separator;
    text += std::invoke(projection, element);
  }
  return text;
}

constexpr bool IsDigit(char byte) { return '0' <= byte && byte <= '9'; }

// Whether names with this byte need no quotes.
constexpr bool IsPlainInName(char byte) {
  return ('a' <= byte && byte <= 'z') || ('A' <= byte && byte <= 'Z') || IsDigit(byte) ||
         byte == '_' || byte == '.' || byte == '-';
}

// Appends the name of a map, a key or a code. It is unchanged if it has only letters, digits, "_",
// "." and "-"; otherwise it is quoted as in JSON. An empty name is "".
template <class Text>
void AppendDisplayName(Text& text, std::string_view name) {
  static constexpr host::ByteSet kQuoted([](char byte) { return !IsPlainInName(byte); });
  if (!name.empty() && kQuoted.Find(name) == name.size()) {
    text += name;
  } else {
    AppendJson(text, name);
  }
}

inline std::string DisplayName(const std::string& name) {
  std::string text;
  AppendDisplayName(text, name);
  return text;
}

// The name of a file or a key as part of a URI.
inline std::string PercentEncoded(const std::string& name) {
  constexpr char kDigits[] = "0123456789ABCDEF";
  std::string text;
  for (const char byte : name) {
    if (IsPlainInName(byte) || byte == '~' || byte == '/') {
      text += byte;
    } else {
      const auto code = static_cast<unsigned char>(byte);
      text += {'%', kDigits[code / 16], kDigits[code % 16]};
    }
  }
  return text;
}

// Appends a function and its arguments: function("EU", "ring.seconds", 3)
template <class Text>
void AppendCall(Text& text, const char* function, const auto& first, const auto&... rest) {
  text += std::string_view(function);
  text += '(';
  AppendJson(text, first);
  ((text += std::string_view(", "), AppendJson(text, rest)), ...);
  text += ')';
}

}  // namespace cadrova::tools
