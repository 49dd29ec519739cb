// Libraries for the traced programs. A macro selects the one that is compiled:
//
//   TRACED_LOOK_UP             the lookups of traced.cpp that do not return
//   TRACED_CORE                a core that contains one item, for the programs of traced.cpp
//   TRACED_CALLS_LIBBASE       reads a property
//   TRACED_CALLS_CORE          calls the core directly
//   TRACED_BRINGS_CORE         calls a lookup, and has a core of its own for the library
//   TRACED_CALLS_WEAK          calls a lookup only if it is defined
//   TRACED_FOREIGN_CORE        a core with another type of string
//   TRACED_CALLS_FOREIGN_CORE  calls that core
//
// Each library that calls something exports `look_up`.

#include <cstdint>
#include <cstring>
#include <string>
#include <utility>

#pragma GCC visibility push(default)

#ifdef TRACED_LOOK_UP
#include "cadrova/cadrova.h"

void LookUpAtDepth(int depth, int value) {
  volatile char room[200] = {};
  if (depth > 0) {
    LookUpAtDepth(depth - 1, value);
  } else {
    android::getCustIntFeature("ring", value);
  }
  room[0] = room[1];  // Otherwise the compiler makes a loop.
}

#elif defined(TRACED_CORE)
#include <android-base/properties.h>

#include "cadrova/cadrova.h"
#include "parser_core.h"

extern void (*hook)();  // In the program. What the next call of this core does.
extern bool looks_up_at_exit;

void RunHook() {
  if (auto* const action = std::exchange(hook, nullptr)) action();
}

cadrova_core_bool get_int_item_exist(const std::string&, const std::string& key) {
  RunHook();
  return static_cast<cadrova_core_bool>(key == "ring");
}
cadrova_core_bool sim_get_int_item_exist(const std::string& map, const std::string& key) {
  return get_int_item_exist(map, key);
}
std::int32_t get_int_from_map(const std::string&, const std::string& key, std::int32_t value) {
  RunHook();
  return key == "ring" ? 5 : value;
}
void cxx_sim_set_the_cadrova(const std::string&, const std::string&, const std::string&) {}
std::string android::base::GetProperty(const std::string&, const std::string&) { return ""; }

const struct StaticObject {
  ~StaticObject() {
    if (looks_up_at_exit) android::getCustIntFeature("static-object", 1);
  }
} static_object;

[[gnu::destructor]] void LookUpInDestructor() {
  if (looks_up_at_exit) android::getCustIntFeature("destructor", 1);
}

#elif defined(TRACED_CALLS_LIBBASE)
#include <android-base/properties.h>

extern "C" int look_up(std::string key, int) {
  return static_cast<int>(android::base::GetProperty(key, "default").size());
}

#elif defined(TRACED_CALLS_CORE)
#include "parser_core.h"

extern "C" int look_up(std::string key, int value) { return get_int_from_map("EU", key, value); }

#elif defined(TRACED_BRINGS_CORE)
#include "cadrova/cadrova.h"
#include "parser_core.h"

cadrova_core_bool get_int_item_exist(const std::string&, const std::string&) { return 1; }
std::int32_t get_int_from_map(const std::string&, const std::string&, std::int32_t) { return 42; }

extern "C" int look_up(std::string key, int value) {
  return android::getCustIntFeature(key, value);
}

#elif defined(TRACED_CALLS_WEAK)
namespace android {
[[gnu::weak]] int getCustIntFeature(std::string key, int default_value);
}

extern "C" int look_up(std::string key, int value) {
  return android::getCustIntFeature == nullptr ? value : android::getCustIntFeature(key, value);
}

#else
struct Text {
  long size;
  const char* bytes;
};
extern "C" int get_int_from_map(const Text& map, const Text& key, int value);

#ifdef TRACED_FOREIGN_CORE
int get_int_from_map(const Text& map, const Text& key, int value) {
  return map.size == 7 && std::memcmp(map.bytes, "DEFAULT", 7) == 0 && key.size == 4 ? 5 : value;
}
#else
extern "C" int look_up(std::string key, int value) {
  const Text map = {7, "DEFAULT"}, text = {static_cast<long>(key.size()), key.data()};
  return get_int_from_map(map, text, value);
}
#endif
#endif
