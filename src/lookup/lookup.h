// The way of one lookup: a family resolves which map answers, and a kind reports and reads that
// map. Neither knows the other; an exported function joins the two.
#pragma once

#include <cstdio>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "bridge/parser_core.h"
#include "cadrova/cadrova.h"
#include "lookup/device.h"
#include "lookup/line.h"

namespace android {

using StringArray = std::vector<std::string>;
using IntArray = std::vector<int>;
using MapArray = std::vector<std::pair<std::string, std::string>>;

// The map that answers, and which of the lookup's lines says so, as its offset among them in bytes.
struct Answer {
  std::string map;
  unsigned line;
};

// A family: asks its maps in order, with the existence test of the kind in question.
using Family = Answer(cadrova_existence_test* exists, const std::string& key);

// A kind is known by its value's type; this is how the bridge reads it.
template <class Value>
inline constexpr std::nullptr_t kRead = nullptr;
template <>
inline constexpr auto kRead<bool> = getBooleanFromRust;
template <>
inline constexpr auto kRead<int> = getIntFromRust;
template <>
inline constexpr auto kRead<float> = getFloatFromRust;
template <>
inline constexpr auto kRead<std::string> = getStringFromRust;
template <>
inline constexpr auto kRead<StringArray> = getStringArrayFromRust;
template <>
inline constexpr auto kRead<IntArray> = getIntArrayFromRust;
template <>
inline constexpr auto kRead<MapArray> = getMapFromRust;

template <class Value>
inline constexpr bool kIsList = !std::is_arithmetic_v<Value> && !std::is_same_v<Value, std::string>;

// A default as it is handed on; lists have none.
template <class Value>
using Default = std::conditional_t<std::is_arithmetic_v<Value>, Value, const Value&>;

template <class Number>
Number Printable(Number number) {
  return number;
}
inline const char* Printable(const std::string& text) { return text.c_str(); }

// Scalars and strings are read, printed and read again: the line shows the first reading, and the
// caller gets the second.
template <class Value>
  requires(!kIsList<Value>)
[[gnu::always_inline]] inline Value Report(const Answer& answer, const char* lines,
                                           const std::string& key, Default<Value> default_value) {
  {
    const Value first_reading = kRead<Value>(answer.map, key, default_value);
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"  // `Line` has checked it.
    std::printf(lines + answer.line, Printable(first_reading));
#pragma GCC diagnostic pop
  }
  return kRead<Value>(answer.map, key, default_value);
}

// Lists are announced, then read once.
template <class Value>
  requires kIsList<Value>
[[gnu::always_inline]] inline Value Report(const Answer& answer, const char* lines,
                                           const std::string& key) {
  std::puts(lines + answer.line);
  return kRead<Value>(answer.map, key);
}

// Compiled once a kind. The caller's arguments come first, where they already are, so that an
// exported function does no more than to name the others.
template <class Value, class... Given>
[[gnu::noinline]] Value ResolveAndReport(const std::string& key, Given... default_value,
                                         const char* lines, Family* family,
                                         cadrova_existence_test* exists) {
  const Answer answer = family(exists, key);
  return Report<Value>(answer, lines, key, default_value...);
}

// The table that an exported function holds: its lines, in the order of the family's maps.
template <class Value, std::size_t Size, std::size_t Count>
using Lines = const Line<Value, Size>[Count];

template <class Value, std::size_t Size, std::size_t Count>
  requires kIsList<Value>
Value Lookup(Lines<Value, Size, Count>& lines, Family* family, cadrova_existence_test* exists,
             const std::string& key) {
  return ResolveAndReport<Value>(key, lines->text, family, exists);
}

template <class Value, std::size_t Size, std::size_t Count>
Value Lookup(Lines<Value, Size, Count>& lines, Family* family, cadrova_existence_test* exists,
             const std::string& key, Default<Value> default_value) {
  return ResolveAndReport<Value, Default<Value>>(key, default_value, lines->text, family, exists);
}

}  // namespace android
