// The core's existence tests in one list, for code that defines or selects one of them. TEST and
// SIM_TEST are macros that take the name of the function and the type of the values. SIM_TEST is
// for the tests of SIM data.
#pragma once

#define CADROVA_EXISTENCE_TESTS(TEST, SIM_TEST)     \
  TEST(get_bool_item_exist, bool)                   \
  TEST(get_int_item_exist, std::int32_t)            \
  TEST(get_float_item_exist, float)                 \
  TEST(get_str_item_exist, std::string)             \
  TEST(get_str_arr_item_exist, StringArray)         \
  TEST(get_int_arr_item_exist, IntArray)            \
  TEST(get_map_arr_item_exist, MapArray)            \
  SIM_TEST(sim_get_bool_item_exist, bool)           \
  SIM_TEST(sim_get_int_item_exist, std::int32_t)    \
  SIM_TEST(sim_get_str_item_exist, std::string)     \
  SIM_TEST(sim_get_str_arr_item_exist, StringArray) \
  SIM_TEST(sim_get_int_arr_item_exist, IntArray)    \
  SIM_TEST(sim_get_map_arr_item_exist, MapArray)
