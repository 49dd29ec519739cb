// The seven kinds of value in one table: for each, the core's existence test, the one for SIM data,
// the bridge function that reads an item, and the end of its diagnostic lines.
//
// Scalars and strings have a default, and their lines end with a `printf` conversion. Lists have no
// default, and their lines do not show the value.
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "cadrova/cadrova.h"
#include "parser_core.h"

namespace android::cadrova_cpp {

using StringArray = std::vector<std::string>;
using IntArray = std::vector<int>;
using MapArray = std::vector<std::pair<std::string, std::string>>;

// `Value` is the type of the kind's values.
template <class Value>
struct KindTraits;

template <>
struct KindTraits<bool> {
  static constexpr auto exists = get_bool_item_exist;
  static constexpr auto exists_in_sim = sim_get_bool_item_exist;
  static constexpr auto read = getBooleanFromRust;
  static constexpr std::string_view line_end = " : %d \n";
};

template <>
struct KindTraits<int> {
  static constexpr auto exists = get_int_item_exist;
  static constexpr auto exists_in_sim = sim_get_int_item_exist;
  static constexpr auto read = getIntFromRust;
  static constexpr std::string_view line_end = " : %d \n";
};

template <>
struct KindTraits<float> {
  static constexpr auto exists = get_float_item_exist;
  // The core has no SIM existence test for floats.
  static constexpr auto read = getFloatFromRust;
  static constexpr std::string_view line_end = " : %f \n";
};

template <>
struct KindTraits<std::string> {
  static constexpr auto exists = get_str_item_exist;
  static constexpr auto exists_in_sim = sim_get_str_item_exist;
  static constexpr auto read = getStringFromRust;
  static constexpr std::string_view line_end = " : %s \n";
};

template <>
struct KindTraits<StringArray> {
  static constexpr auto exists = get_str_arr_item_exist;
  static constexpr auto exists_in_sim = sim_get_str_arr_item_exist;
  static constexpr auto read = getStringArrayFromRust;
  static constexpr std::string_view line_end = " ! ";
};

template <>
struct KindTraits<IntArray> {
  static constexpr auto exists = get_int_arr_item_exist;
  static constexpr auto exists_in_sim = sim_get_int_arr_item_exist;
  static constexpr auto read = getIntArrayFromRust;
  static constexpr std::string_view line_end = " ! ";
};

template <>
struct KindTraits<MapArray> {
  static constexpr auto exists = get_map_arr_item_exist;
  static constexpr auto exists_in_sim = sim_get_map_arr_item_exist;
  static constexpr auto read = getMapFromRust;
  static constexpr std::string_view line_end = " ! ";
};

}  // namespace android::cadrova_cpp
