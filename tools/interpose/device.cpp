// These definitions replace those of the device for all callers, so they must be visible.
#pragma GCC visibility push(default)
#include <android-base/properties.h>

#include "parser_core.h"
#pragma GCC visibility pop

#include <cstring>
#include <string>
#include <type_traits>
#include <utility>

#include "common/text.h"
#include "existence_tests.h"
#include "interpose/call.h"
#include "interpose/next_definition.h"

namespace cadrova::tools {

constinit thread_local const void* running_device_call = nullptr;

namespace {

using Type = DeviceCall::Type;

// Exists while a call of the device runs on this thread. If a signal handler jumps out of the call,
// the frame is gone: the next call has a frame at the same place or above it.
class RunningCall {
 public:
  explicit RunningCall(const void* frame) : before_(std::exchange(running_device_call, frame)) {}
  RunningCall(const RunningCall&) = delete;
  RunningCall& operator=(const RunningCall&) = delete;
  ~RunningCall() { running_device_call = before_; }

  static bool Exists(const void* frame) {
    return running_device_call != nullptr && frame < running_device_call;
  }

 private:
  const void* const before_;
};

// What a call returns for a missing item.
template <class Returned, class... Rest>
Returned Missing(const DeviceCall& call, Caller caller, const Rest&... rest) {
  if constexpr (std::is_same_v<Returned, std::string>) {
    return call.key;
  } else if constexpr (std::is_same_v<Returned, char*>) {
    // Only the library is known to have the same string type.
    return strdup(caller == Caller::kLibrary ? (rest.c_str(), ...) : "");
  } else if constexpr (std::is_arithmetic_v<Returned> && sizeof...(rest) == 1) {
    return (rest, ...);
  } else {
    return Returned();
  }
}

void Show(DeviceCall& call, const auto& append) {
  using Append = std::remove_cvref_t<decltype(append)>;
  call.append = [](const void* context, TextBuffer& text) {
    return (*static_cast<const Append*>(context))(text);
  };
  call.context = &append;
  ObserveCall(call);
}

// Passes a call of `own` on to the next definition, and shows it to the observer. `call` is
// complete except for the returned value. The text shows this value as a `Shown`.
template <auto* own, class Shown, class... Rest>
auto PassOn(DeviceCall call, const char* function, const Rest&... rest) {
  const Resolution resolution = NextDefinition<own>::Find(call.caller);
  auto* const next = NextDefinition<own>::Function(resolution);
  using Returned = decltype(next(call.name, call.key, rest...));
  if (next == nullptr) {
    ReportNoDefinition(function);
    return Missing<Returned>(call, resolution.caller, rest...);
  }
  const void* const frame = __builtin_frame_address(0);
  if (RunningCall::Exists(frame) || !IsObserved(call.type, resolution.caller, call.caller)) {
    return next(call.name, call.key, rest...);
  }
  const auto run = [&] {
    const RunningCall running(frame);
    return next(call.name, call.key, rest...);
  };
  if constexpr (std::is_void_v<Returned>) {
    run();
    Show(call, [&](TextBuffer& text) {
      AppendCall(text, function, call.name, call.key, rest...);
      return text.Text().size();
    });
  } else {
    Returned returned = run();
    if constexpr (std::is_same_v<Returned, std::string>) {
      call.property = &returned;
    } else if constexpr (std::is_same_v<Returned, cadrova_core_bool>) {
      if (call.type != Type::kRead) call.exists = &returned;
    }
    Show(call, [&](TextBuffer& text) {
      AppendCall(text, function, call.name, call.key, rest...);
      text += std::string_view(" = ");
      const std::size_t value = text.Text().size();
      AppendJson(text, Shown{returned});
      return value;
    });
    return returned;
  }
}

template <auto* test>
ExistenceTest* FindTest(const void* caller) {
  return NextDefinition<test>::Function(NextDefinition<test>::Find(caller));
}

}  // namespace

bool CoreContains(ExistenceTest* test, const std::string& map, const std::string& key) {
  const RunningCall running(__builtin_frame_address(0));
  return test != nullptr && core::IsTrue(test(map, key));
}

}  // namespace cadrova::tools

using namespace cadrova::tools;

#define CALL(type, name, key) {type, name, key, __builtin_return_address(0)}
#define READ(test) {Type::kRead, map, key, __builtin_return_address(0), FindTest<test>}

std::string android::base::GetProperty(const std::string& key, const std::string& default_value) {
  return PassOn<android::base::GetProperty, const std::string&>(
      CALL(Type::kGetProperty, key, default_value), __func__);
}

#define TEST(name, Value)                                                          \
  cadrova_core_bool name(const std::string& map, const std::string& key) {         \
    return PassOn<name, cadrova_core_bool>(CALL(Type::kTest, map, key), __func__); \
  }
#define SIM_TEST(name, Value)                                                         \
  cadrova_core_bool name(const std::string& map, const std::string& key) {            \
    return PassOn<name, cadrova_core_bool>(CALL(Type::kSimTest, map, key), __func__); \
  }
CADROVA_EXISTENCE_TESTS(TEST, SIM_TEST)

cadrova_core_bool get_bool_from_map(const std::string& map, const std::string& key,
                                    cadrova_core_bool default_value) {
  return PassOn<get_bool_from_map, cadrova_core_bool>(READ(get_bool_item_exist), __func__,
                                                      default_value);
}

std::int32_t get_int_from_map(const std::string& map, const std::string& key,
                              std::int32_t default_value) {
  return PassOn<get_int_from_map, std::int32_t>(READ(get_int_item_exist), __func__, default_value);
}

float get_float_from_map(const std::string& map, const std::string& key, float default_value) {
  return PassOn<get_float_from_map, float>(READ(get_float_item_exist), __func__, default_value);
}

char* get_str_from_map(const std::string& map, const std::string& key,
                       const std::string& default_value) {
  return PassOn<get_str_from_map, const char*>(READ(get_str_item_exist), __func__, default_value);
}

char** get_str_arr_from_map(const std::string& map, const std::string& key) {
  return PassOn<get_str_arr_from_map, StringArrayBlock>(READ(get_str_arr_item_exist), __func__);
}

std::int32_t* get_int_arr_from_map(const std::string& map, const std::string& key) {
  return PassOn<get_int_arr_from_map, IntArrayBlock>(READ(get_int_arr_item_exist), __func__);
}

char** get_map_arr_from_map(const std::string& map, const std::string& key) {
  return PassOn<get_map_arr_from_map, PairArrayBlock>(READ(get_map_arr_item_exist), __func__);
}

void cxx_sim_set_the_cadrova(const std::string& name, const std::string& first,
                             const std::string& second) {
  PassOn<cxx_sim_set_the_cadrova, void>(CALL(Type::kSetSim, name, first), __func__, second);
}
