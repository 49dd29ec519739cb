// Cores that are not the fake one, so they can neither list their contents nor load files. A macro
// selects the one that is compiled:
//
//   CORE_STEADY    always returns the same
//   CORE_CHANGING  returns other values and contains other items at each call, and changes the
//   region CORE_ODD       returns other bytes than 0 and 1 as Booleans, NULL as lists, and items
//   that its
//                  existence tests do not find

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <type_traits>

#pragma GCC visibility push(default)
#include <android-base/properties.h>

#include "existence_tests.h"
#include "parser_core.h"
#pragma GCC visibility pop

namespace {

#ifdef CORE_ODD
constexpr bool kIsOdd = true;
#else
constexpr bool kIsOdd = false;
#endif

// The number of earlier calls, in a core that changes.
int Calls() {
#ifdef CORE_CHANGING
  static int calls = 0;
  return calls++;
#else
  return 0;
#endif
}

struct StringArray;
struct IntArray;
struct MapArray;

template <class T>
cadrova_core_bool Exists(const std::string& map, const std::string& key) {
  constexpr bool is_int = std::is_same_v<T, std::int32_t>;
  constexpr bool is_list = !std::is_arithmetic_v<T> && !std::is_same_v<T, std::string>;
#ifdef CORE_CHANGING
  if (key == "moved") android::base::SetProperty("ro.orvel.region", "EU");
#endif
  const bool is_ring = map == "SIM_X1" || map == "COTA_X1" || map == "EU" || map == "DEFAULT";
  const bool is_even = key == "even" && Calls() % 2 == 0, is_odd = key == "odd" && Calls() % 2 == 1;
  const bool exists = (is_int && ((key == "ring" && is_ring) || is_even || is_odd)) ||
                      (std::is_same_v<T, bool> && key == "on" && map == "EU") ||
                      (std::is_same_v<T, std::string> && key == "name" && map == "EU") ||
                      (is_list && key == "list" && map == "COTA_X1");
  return static_cast<cadrova_core_bool>(kIsOdd ? 254 + static_cast<int>(exists)
                                               : static_cast<int>(exists));
}

}  // namespace

#define TEST(name, Type)                                                   \
  cadrova_core_bool name(const std::string& map, const std::string& key) { \
    return Exists<Type>(map, key);                                         \
  }
CADROVA_EXISTENCE_TESTS(TEST, TEST)

cadrova_core_bool get_bool_from_map(const std::string&, const std::string& key,
                                    cadrova_core_bool default_value) {
  return key == "on" ? kIsOdd ? 3 : 1 : default_value;
}

std::int32_t get_int_from_map(const std::string& map, const std::string& key,
                              std::int32_t default_value) {
  if (kIsOdd && key == "name") return 13;  // Converted from a string.
  if (key == "nope") return default_value;
  return static_cast<std::int32_t>(map.size()) * 10 + Calls();
}

float get_float_from_map(const std::string&, const std::string&, float default_value) {
  return default_value;
}

char* get_str_from_map(const std::string&, const std::string& key,
                       const std::string& default_value) {
  return strdup(key == "name" ? "Ada" : default_value.c_str());
}

char** get_str_arr_from_map(const std::string&, const std::string&) { return nullptr; }

std::int32_t* get_int_arr_from_map(const std::string&, const std::string&) {
  auto* const block = static_cast<std::int32_t*>(std::calloc(2, sizeof(std::int32_t)));
  *block = kIsOdd ? -1 : 1;
  return block;
}

char** get_map_arr_from_map(const std::string&, const std::string&) {
  static char key[] = "key";
  auto** const block = static_cast<char**>(std::calloc(2, sizeof(char*)));
  *block = key;  // without a value
  return block;
}

void cxx_sim_set_the_cadrova(const std::string&, const std::string&, const std::string&) {
  std::abort();
}
