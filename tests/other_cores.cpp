// Cores that are not the fake one, so they can neither list their contents nor load files. A macro
// selects the one that is compiled:
//
//   CORE_STEADY    returns what it contains
//   CORE_CHANGING  returns something else each time, and moves the device to another region
//   CORE_ODD       has unusual Booleans and lists, prints, and finds less than it returns
//   CORE_BUSY      is the steady core, and has a thread that reads properties and makes lookups
//   CORE_PARTIAL   is the steady core without the functions for ints

#include <android-base/properties.h>

#include <atomic>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <string>
#include <thread>
#include <type_traits>

#include "cadrova/cadrova.h"

#pragma GCC visibility push(default)
#include "existence_tests.h"
#include "parser_core.h"
#pragma GCC visibility pop

namespace {

#ifdef CORE_CHANGING
constexpr bool kIsChanging = true;
#else
constexpr bool kIsChanging = false;
#endif
#ifdef CORE_ODD
constexpr bool kIsOdd = true;
#else
constexpr bool kIsOdd = false;
#endif

struct StringArray;
struct IntArray;
struct MapArray;

// How often a changing core got this call.
[[maybe_unused]] int Calls(const std::string& call) {
  static std::map<std::string, int> calls;
  return kIsChanging ? calls[call]++ : 0;
}

#ifdef CORE_BUSY
class BusyThread {
 public:
  ~BusyThread() {
    is_over_ = true;
    thread_.join();
  }

 private:
  std::atomic<bool> is_over_ = false;
  std::thread thread_ = std::thread([this] {
    while (!is_over_) {
      android::base::GetProperty("ro.core", "");
      android::getCustIntFeature("core", 1);
    }
  });
};
#endif

template <class T>
cadrova_core_bool Exists(const std::string& map, const std::string& key) {
  constexpr bool is_list = !std::is_arithmetic_v<T> && !std::is_same_v<T, std::string>;
  bool exists = false;
#ifdef CORE_BUSY
  static BusyThread busy_thread;
#endif
  if constexpr (std::is_same_v<T, std::int32_t>) {
    if (kIsChanging && key == "moved") android::base::SetProperty("ro.orvel.region", "EU");
    if (key == "ring") exists = map == "SIM_X1" || map == "COTA_X1" || map == "DEFAULT";
    if (key == "first") exists = Calls(key + map) == 0;
    if (key == "later") exists = Calls(key + map) != 0;
  } else if constexpr (std::is_same_v<T, bool>) {
    exists = key == "on";
  } else if constexpr (std::is_same_v<T, std::string>) {
    exists = key == "name" && (map == "EU" || map == "DEFAULT");
  } else if constexpr (is_list) {
    exists = key == "list" && map == "COTA_X1";
  }
  return exists ? (kIsOdd ? 3 : 1) : (kIsOdd ? 254 : 0);
}

}  // namespace

#define TEST(function, Type)                                                   \
  cadrova_core_bool function(const std::string& map, const std::string& key) { \
    return Exists<Type>(map, key);                                             \
  }
#ifdef CORE_PARTIAL
TEST(get_bool_item_exist, bool)
#else
CADROVA_EXISTENCE_TESTS(TEST, TEST)

// From a changing core, less each time: 600, 599, ...
std::int32_t get_int_from_map(const std::string& map, const std::string& key,
                              std::int32_t default_value) {
  if (kIsOdd && key == "name") return 13;  // converted
  if (key == "ring" || key == "first") {
    return static_cast<std::int32_t>(100 * map.size()) - Calls(map);
  }
  return key == "fades" && Calls(map) == 0 ? 5 : default_value;
}
#endif

cadrova_core_bool get_bool_from_map(const std::string&, const std::string& key,
                                    cadrova_core_bool default_value) {
  if (kIsOdd) std::printf("core\n");
  return key == "on" ? (kIsOdd ? 3 : 1) : default_value;
}

float get_float_from_map(const std::string&, const std::string&, float default_value) {
  return default_value;
}

char* get_str_from_map(const std::string&, const std::string& key,
                       const std::string& default_value) {
  return strdup(key == "name" ? "Ada" : default_value.c_str());
}

char** get_str_arr_from_map(const std::string&, const std::string&) { return nullptr; }

std::int32_t* get_int_arr_from_map(const std::string&, const std::string& key) {
  auto* const block = static_cast<std::int32_t*>(std::calloc(2, sizeof(std::int32_t)));
  *block = key == "name" ? 1 : -1;
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
