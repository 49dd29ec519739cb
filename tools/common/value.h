// The kinds of value as the tools name them.
#pragma once

#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace cadrova::tools {

using StringArray = std::vector<std::string>;
using IntArray = std::vector<int>;
using MapArray = std::vector<std::pair<std::string, std::string>>;
using Value = std::variant<bool, int, float, std::string, StringArray, IntArray, MapArray>;

// In the order of `Value`.
constexpr const char* kKindNames[] = {"bool",         "int",       "float",    "string",
                                      "string-array", "int-array", "map-array"};

template <class Kind>
constexpr bool kIsList = !std::is_arithmetic_v<Kind> && !std::is_same_v<Kind, std::string>;

}  // namespace cadrova::tools
