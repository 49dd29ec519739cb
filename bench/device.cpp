// A core and a property store that return at once, so that the benchmarks measure the library.
// Either all maps contain the item, or none does.

#include "device.h"

#include <android-base/properties.h>

#include <cstdlib>
#include <cstring>

#include "existence_tests.h"
#include "parser_core.h"

bench::Device bench::device;
using bench::device;

#pragma GCC visibility push(default)

std::string android::base::GetProperty(const std::string& key, const std::string&) {
  return key == "ro.orvel.region" ? device.region : device.carrier;
}

extern "C" {

cadrova_core_bool get_bool_from_map(const std::string&, const std::string&,
                                    cadrova_core_bool default_value) {
  return default_value;
}
std::int32_t get_int_from_map(const std::string&, const std::string&, std::int32_t default_value) {
  return default_value;
}
float get_float_from_map(const std::string&, const std::string&, float default_value) {
  return default_value;
}
char* get_str_from_map(const std::string&, const std::string&, const std::string& default_value) {
  return strdup(default_value.c_str());
}

char** get_str_arr_from_map(const std::string&, const std::string&) {
  char** const block = static_cast<char**>(std::malloc(4 * sizeof(char*)));
  for (int i = 0; i < 3; ++i) block[i] = strdup(device.element.c_str());
  block[3] = nullptr;
  return block;
}

// No case calls these.
std::int32_t* get_int_arr_from_map(const std::string&, const std::string&) { return nullptr; }
char** get_map_arr_from_map(const std::string&, const std::string&) { return nullptr; }

#define EXISTENCE_TEST(name, Value) \
  cadrova_core_bool name(const std::string&, const std::string&) { return device.contains_item; }
CADROVA_EXISTENCE_TESTS(EXISTENCE_TEST, EXISTENCE_TEST)

void cxx_sim_set_the_cadrova(const std::string&, const std::string&, const std::string&) {}

}  // extern "C"

#pragma GCC visibility pop
