/// The seven kinds of value, as types.
#pragma once

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <string>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

namespace cadrova::host {

using StringArray = std::vector<std::string>;
using IntArray = std::vector<std::int32_t>;
using MapArray = std::vector<std::pair<std::string, std::string>>;

/// A value of any kind.
using Value = std::variant<bool, std::int32_t, float, std::string, StringArray, IntArray, MapArray>;

/// The kinds, in the order of the alternatives of `Value`.
enum class Kind { kBool, kInt, kFloat, kString, kStringArray, kIntArray, kMapArray };

template <Kind kind>
using TypeOf = std::variant_alternative_t<static_cast<std::size_t>(kind), Value>;
static_assert(std::is_same_v<TypeOf<Kind::kBool>, bool> &&
              std::is_same_v<TypeOf<Kind::kInt>, std::int32_t> &&
              std::is_same_v<TypeOf<Kind::kFloat>, float> &&
              std::is_same_v<TypeOf<Kind::kString>, std::string> &&
              std::is_same_v<TypeOf<Kind::kStringArray>, StringArray> &&
              std::is_same_v<TypeOf<Kind::kIntArray>, IntArray> &&
              std::is_same_v<TypeOf<Kind::kMapArray>, MapArray> && std::variant_size_v<Value> == 7);

inline Kind KindOf(const Value& value) { return static_cast<Kind>(value.index()); }

/// The name of `kind`, as the cadrova command spells it: "string-array".
constexpr const char* ToString(Kind kind) {
  switch (kind) {
    case Kind::kBool:
      return "bool";
    case Kind::kInt:
      return "int";
    case Kind::kFloat:
      return "float";
    case Kind::kString:
      return "string";
    case Kind::kStringArray:
      return "string-array";
    case Kind::kIntArray:
      return "int-array";
    case Kind::kMapArray:
      return "map-array";
  }
  return "";
}

template <class Traits>
std::basic_ostream<char, Traits>& operator<<(std::basic_ostream<char, Traits>& stream, Kind kind) {
  return stream << ToString(kind);
}

}  // namespace cadrova::host
