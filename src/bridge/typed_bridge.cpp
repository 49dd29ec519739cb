// Converts what the core returns to standard-library values, and releases each block as the core
// requires.

#include <cstdlib>
#include <cstring>

#include "bridge/call_core.h"
#include "cadrova/cadrova.h"
#include "parser_core.h"

namespace android {

using namespace cadrova_cpp;
using ::cadrova::core::IsTrue;
using ::cadrova::core::LowestBit;

bool getBooleanFromRust(std::string map, std::string key, bool default_value) {
  return IsTrue(CallCore(get_bool_from_map, map, key, LowestBit(default_value)));
}

int getIntFromRust(std::string map, std::string key, int default_value) {
  return CallCore(get_int_from_map, map, key, default_value);
}

float getFloatFromRust(std::string map, std::string key, float default_value) {
  return CallCore(get_float_from_map, map, key, default_value);
}

std::string getStringFromRust(std::string map, std::string key, std::string default_value) {
  char* const block = CallCore(get_str_from_map, map, key, default_value);
  std::string value(block, std::strlen(block));
  std::free(block);
  return value;
}

// The functions below do not reserve memory for lists: the count comes from the core, and a wrong
// count must not decide the size of an allocation.

std::vector<std::string> getStringArrayFromRust(std::string map, std::string key) {
  std::vector<std::string> list;
  char** const block = CallCore(get_str_arr_from_map, map, key);
  if (block == nullptr) return list;
  for (char** slot = block; *slot != nullptr; ++slot) {
    list.push_back(std::string(*slot));
    std::free(*slot);
  }
  std::free(block);
  return list;
}

std::vector<int> getIntArrayFromRust(std::string map, std::string key) {
  std::vector<int> list;
  std::int32_t* const block = CallCore(get_int_arr_from_map, map, key);
  if (block == nullptr) return list;
  const std::int32_t count = block[0];
  for (std::int32_t i = 0; i < count; ++i) list.push_back(block[1 + i]);
  std::free(block);
  return list;
}

std::vector<std::pair<std::string, std::string>> getMapFromRust(std::string map, std::string key) {
  std::vector<std::pair<std::string, std::string>> list;
  char** const block = CallCore(get_map_arr_from_map, map, key);
  if (block == nullptr) return list;
  // After a NULL key, the slot for its value may not exist.
  for (char** slot = block; slot[0] != nullptr && slot[1] != nullptr; slot += 2) {
    list.emplace_back(slot[0], slot[1]);
  }
  std::free(block);  // The core owns the strings.
  return list;
}

}  // namespace android
