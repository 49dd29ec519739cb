// Interposes the functions of the library. Each definition passes the call on and traces it.

#include <string>
#include <type_traits>
#include <utility>

#include "cadrova/cadrova.h"
#include "cadrova/value.h"
#include "interpose/call.h"
#include "traced_lookup.h"

namespace cadrova::tools {
namespace {

// Without a next definition, returns what the lookup of a missing item returns.
template <class Value>
Value Missing(std::string&) {
  return Value();
}
template <class Value>
Value Missing(std::string&, Value& default_value) {
  return std::move(default_value);
}

// A parameter of a class type is passed as a pointer to the caller's object, as a reference is. So
// this passes the object itself on: no copy is made, and nothing of it is left to destroy.
template <class T>
using Passed = std::conditional_t<std::is_class_v<T>, T&, T>;
template <class Value, class... Arguments>
auto Next(const Resolution& resolution, Value (*)(Arguments...)) {
  return reinterpret_cast<Value (*)(Passed<Arguments>...)>(resolution.next);
}

template <auto* own, class... Default>
auto Traced(const char* function, const void* caller, std::string& key, Default&... default_value) {
  const Resolution resolution = NextDefinition<own>::Find(caller);
  auto* const next = Next(resolution, own);
  using Value = decltype(next(key, default_value...));
  if (next == nullptr) {
    ReportNoDefinition(function);
    return Missing<Value>(key, default_value...);
  }
  const void* const frame = __builtin_frame_address(0);
  if (resolution.caller == Caller::kLibrary && TracedLookup::IsPartOfLookup(frame)) {
    return next(key, default_value...);
  }
  TracedLookup lookup(frame, function, key, default_value...);
  Value value = next(key, default_value...);
  lookup.Finish(value, default_value...);
  return value;
}

}  // namespace
}  // namespace cadrova::tools

using namespace cadrova::host;
using namespace cadrova::tools;

namespace android {

#define WITH_DEFAULT(name, Value)                                                   \
  Value name(std::string key, Value default_value) {                                \
    return Traced<name>(__func__, __builtin_return_address(0), key, default_value); \
  }
#define WITHOUT_DEFAULT(name, Value) \
  Value name(std::string key) { return Traced<name>(__func__, __builtin_return_address(0), key); }
#define COMMON_TO_FAMILIES(Family)                              \
  WITH_DEFAULT(get##Family##BooleanFeature, bool)               \
  WITH_DEFAULT(get##Family##IntFeature, int)                    \
  WITHOUT_DEFAULT(get##Family##StringArrayFeature, StringArray) \
  WITHOUT_DEFAULT(get##Family##IntArrayFeature, IntArray)       \
  WITHOUT_DEFAULT(get##Family##MapArrayFeature, MapArray)
#define FAMILY(Family)                           \
  COMMON_TO_FAMILIES(Family)                     \
  WITH_DEFAULT(get##Family##FloatFeature, float) \
  WITH_DEFAULT(get##Family##StringFeature, std::string)

FAMILY(Cust)
FAMILY(RegionCust)
FAMILY(CotaCust)
FAMILY(CotaRegionCust)
COMMON_TO_FAMILIES(SimCust)
WITHOUT_DEFAULT(getSimCustStringFeature, std::string)

void setSimCadrova(std::string first, std::string second) {
  const Resolution resolution = NextDefinition<setSimCadrova>::Find(__builtin_return_address(0));
  auto* const next = Next(resolution, setSimCadrova);
  if (next == nullptr) return ReportNoDefinition(__func__);
  TracedLookup lookup(__builtin_frame_address(0), __func__, first, second);
  next(first, second);
  lookup.FinishSetSim();
}

}  // namespace android
