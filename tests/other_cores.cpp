// Cores that are not the fake one, so they can neither list their contents nor load files. They
// read no floats. The macro CORE selects one:
//
//   steady     returns what it contains
//   changing   returns something else each time, and moves the device to another region
//   odd        has unusual Booleans and lists, prints, and finds less than it returns
//   busy       is the steady core with a thread that reads properties and makes lookups

#include <android-base/properties.h>

#include <atomic>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <new>
#include <string>
#include <thread>
#include <type_traits>

#include "cadrova/cadrova.h"

#pragma GCC visibility push(default)
#include "existence_tests.h"
#include "parser_core.h"
#pragma GCC visibility pop

namespace {

enum { steady, changing, odd, busy };
constexpr bool kIsChanging = CORE == changing, kIsOdd = CORE == odd;

struct StringArray;
struct IntArray;
struct MapArray;

// How often a changing core got this call.
int Calls(const std::string& call) {
  static std::map<std::string, int> calls;
  return kIsChanging ? calls[call]++ : 0;
}

struct BusyThread {
  ~BusyThread() {
    is_over = true;
    thread.join();
  }
  std::atomic<bool> is_over = false;
  std::thread thread = std::thread([this] {
    while (!is_over) {
      android::base::GetProperty("ro.core", "");
      android::getCustIntFeature("core", 1);
    }
  });
};

template <class T>
cadrova_core_bool Exists(const std::string& map, const std::string& key) {
  if (CORE == busy) static const BusyThread thread;
  if (kIsChanging && key == "moved") android::base::SetProperty("ro.orvel.region", "EU");
  bool exists = false;
  if constexpr (std::is_same_v<T, bool>) {
    exists = key == "on";
  } else if constexpr (std::is_same_v<T, std::string>) {
    exists = key == "name" && map != "COTA_X1";
  } else if constexpr (std::is_same_v<T, std::int32_t>) {
    exists = (key == "ring" && (map == "SIM_X1" || map == "COTA_X1" || map == "DEFAULT")) ||
             (key == "first" && Calls(key + map) == 0) || (key == "later" && Calls(key + map) != 0);
  } else {
    exists = !std::is_same_v<T, float> && map == "COTA_X1" &&
             (key == "list" || (key == "once" && Calls(key + map) == 1));
  }
  return exists ? (kIsOdd ? 3 : 1) : (kIsOdd ? 254 : 0);
}

}  // namespace

#define TEST(function, Type)                                                   \
  cadrova_core_bool function(const std::string& map, const std::string& key) { \
    return Exists<Type>(map, key);                                             \
  }
CADROVA_EXISTENCE_TESTS(TEST, TEST)

cadrova_core_bool get_bool_from_map(const std::string&, const std::string& key,
                                    cadrova_core_bool default_value) {
  if (kIsOdd) std::printf("core\n");
  return key == "on" ? (kIsOdd ? 3 : 1) : default_value;
}

// From a changing core, less each time: 600, 599, ...
std::int32_t get_int_from_map(const std::string& map, const std::string& key,
                              std::int32_t default_value) {
  if (kIsOdd && key == "name") return 13;  // converted
  if (key == "fades") return Calls(map) == 0 ? 5 : default_value;
  const auto value = static_cast<std::int32_t>(100 * map.size());
  return key == "ring" || key == "first" ? value - Calls(map) : default_value;
}

char* get_str_from_map(const std::string&, const std::string&, const std::string& default_value) {
  return strdup(default_value.c_str());
}

char** get_str_arr_from_map(const std::string&, const std::string&) { return nullptr; }
char** get_map_arr_from_map(const std::string&, const std::string&) { return nullptr; }

std::int32_t* get_int_arr_from_map(const std::string&, const std::string& key) {
  if (key != "name") return nullptr;
  return new (std::malloc(2 * sizeof(std::int32_t))) std::int32_t[]{1, 0};
}

void cxx_sim_set_the_cadrova(const std::string&, const std::string&, const std::string&) {
  std::abort();
}
