// These definitions replace those of the device for all callers, so they must be visible.
#pragma GCC visibility push(default)
#include <android-base/properties.h>

#include "parser_core.h"
#pragma GCC visibility pop

#include <functional>
#include <string>
#include <type_traits>
#include <utility>

#include "common/text.h"
#include "existence_tests.h"
#include "interpose/call.h"
#include "interpose/next_symbol.h"

namespace cadrova::tools {
namespace {

using Type = DeviceCall::Type;

// True while a call of the device runs. Calls that the device itself makes are not observed.
thread_local bool is_in_device = false;

auto CallDevice(auto* function, const auto&... arguments) {
  const struct Scope {
    bool before = std::exchange(is_in_device, true);
    ~Scope() { is_in_device = before; }
  } scope;
  return function(arguments...);
}

// `append` appends the text of the call. It runs only if the observer uses the text.
void ShowToObserver(DeviceCall& call, const auto& append) {
  if (observer == nullptr) return;
  call.append_to = std::ref(append);  // By reference, which allocates nothing.
  observer(call);
}

// Passes a call of `own` on to the next definition, and shows it to the observer. `call` is
// complete except for the returned value. The text shows this value as a `Shown`.
template <auto* own, class Shown, class... Rest>
auto PassOn(DeviceCall call, const char* function, const Rest&... rest) {
  auto* const next = Next<own>::Find();
  if (is_in_device) return next(call.name, call.key, rest...);
  auto returned = CallDevice(next, call.name, call.key, rest...);
  if constexpr (std::is_same_v<decltype(returned), std::string>) {
    call.property = &returned;
  } else if constexpr (std::is_same_v<decltype(returned), cadrova_core_bool>) {
    if (call.type != Type::kRead) call.exists = &returned;
  }
  ShowToObserver(call, [&](std::string& text) {
    AppendCall(text, function, call.name, call.key, rest...);
    text += " = ";
    AppendJson(text, Shown{returned});
  });
  return returned;
}

DeviceCall Test(Type type, const std::string& map, const std::string& key) {
  return {.type = type, .name = map, .key = key};
}

DeviceCall Read(const std::string& map, const std::string& key, ExistenceTest* test) {
  return {.type = Type::kRead, .name = map, .key = key, .test = test};
}

}  // namespace

bool CoreContains(ExistenceTest* test, const std::string& map, const std::string& key) {
  return cadrova::core::IsTrue(CallDevice(test, map, key));
}

}  // namespace cadrova::tools

using namespace cadrova::tools;

std::string android::base::GetProperty(const std::string& key, const std::string& default_value) {
  return PassOn<android::base::GetProperty, std::string>({.type = Type::kGetProperty,
                                                          .name = key,
                                                          .key = default_value,
                                                          .caller = __builtin_return_address(0)},
                                                         __func__);
}

#define TEST(name, Value)                                                          \
  cadrova_core_bool name(const std::string& map, const std::string& key) {         \
    return PassOn<name, cadrova_core_bool>(Test(Type::kTest, map, key), __func__); \
  }
#define SIM_TEST(name, Value)                                                         \
  cadrova_core_bool name(const std::string& map, const std::string& key) {            \
    return PassOn<name, cadrova_core_bool>(Test(Type::kSimTest, map, key), __func__); \
  }
CADROVA_EXISTENCE_TESTS(TEST, SIM_TEST)

cadrova_core_bool get_bool_from_map(const std::string& map, const std::string& key,
                                    cadrova_core_bool default_value) {
  return PassOn<get_bool_from_map, cadrova_core_bool>(Read(map, key, get_bool_item_exist), __func__,
                                                      default_value);
}

std::int32_t get_int_from_map(const std::string& map, const std::string& key,
                              std::int32_t default_value) {
  return PassOn<get_int_from_map, std::int32_t>(Read(map, key, get_int_item_exist), __func__,
                                                default_value);
}

float get_float_from_map(const std::string& map, const std::string& key, float default_value) {
  return PassOn<get_float_from_map, float>(Read(map, key, get_float_item_exist), __func__,
                                           default_value);
}

char* get_str_from_map(const std::string& map, const std::string& key,
                       const std::string& default_value) {
  return PassOn<get_str_from_map, const char*>(Read(map, key, get_str_item_exist), __func__,
                                               default_value);
}

char** get_str_arr_from_map(const std::string& map, const std::string& key) {
  return PassOn<get_str_arr_from_map, StringArrayBlock>(Read(map, key, get_str_arr_item_exist),
                                                        __func__);
}

std::int32_t* get_int_arr_from_map(const std::string& map, const std::string& key) {
  return PassOn<get_int_arr_from_map, IntArrayBlock>(Read(map, key, get_int_arr_item_exist),
                                                     __func__);
}

char** get_map_arr_from_map(const std::string& map, const std::string& key) {
  return PassOn<get_map_arr_from_map, PairArrayBlock>(Read(map, key, get_map_arr_item_exist),
                                                      __func__);
}

void cxx_sim_set_the_cadrova(const std::string& name, const std::string& first,
                             const std::string& second) {
  auto* const next = Next<cxx_sim_set_the_cadrova>::Find();
  if (is_in_device) return next(name, first, second);
  CallDevice(next, name, first, second);
  DeviceCall call = {.type = Type::kSetSim, .name = name, .key = first};
  const char* const function = __func__;
  ShowToObserver(call, [&](std::string& text) { AppendCall(text, function, name, first, second); });
}
