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

// The name of a map, a key or a code. It is unchanged if it has only letters, digits, "_", "." and
// "-"; otherwise it is quoted as in JSON. An empty name is "".
inline std::string DisplayName(const std::string& name) {
  constexpr std::string_view kPlain =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789_.-";
  const bool is_plain = !name.empty() && name.find_first_not_of(kPlain) == std::string::npos;
  return is_plain ? name : ToJsonText(name);
}

// Appends a function and its arguments: function("EU", "ring.seconds", 3)
void AppendCall(std::string& text, const char* function, const auto& first, const auto&... rest) {
  text += function;
  text += '(';
  AppendJson(text, first);
  ((text += ", ", AppendJson(text, rest)), ...);
  text += ')';
}

}  // namespace cadrova::tools
