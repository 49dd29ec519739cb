#include "lookup/families.h"

#include <algorithm>
#include <type_traits>

#include "cadrova/cadrova.h"
#include "common/text.h"
#include "existence_tests.h"
#include "failure.h"

namespace cadrova::tools {
namespace {

using host::IntArray;
using host::MapArray;
using host::StringArray;

template <auto function, class T>
constexpr LookupFunction MakeLookupFunction() {
  if constexpr (std::is_invocable_r_v<T, decltype(function), std::string, T>) {
    return {[](const std::string& key, const Value& default_value) -> Value {
              return function(key, std::get<T>(default_value));
            },
            true};
  } else if constexpr (std::is_invocable_r_v<T, decltype(function), std::string>) {
    return {[](const std::string& key, const Value&) -> Value { return function(key); }, false};
  } else {
    static_assert(std::is_null_pointer_v<decltype(function)>, "the kinds are in another order");
    return {};
  }
}

// In the order of the kinds. nullptr if the family has no lookup of the kind.
template <auto of_bool, auto of_int, auto of_float, auto of_string, auto of_string_array,
          auto of_int_array, auto of_map_array>
constexpr std::array<LookupFunction, kKindCount> kLookups = {
    MakeLookupFunction<of_bool, bool>(),
    MakeLookupFunction<of_int, int>(),
    MakeLookupFunction<of_float, float>(),
    MakeLookupFunction<of_string, std::string>(),
    MakeLookupFunction<of_string_array, StringArray>(),
    MakeLookupFunction<of_int_array, IntArray>(),
    MakeLookupFunction<of_map_array, MapArray>()};

using namespace android;

constexpr Family kFamilies[] = {
    {.name = "default",
     .infix = "Cust",
     .is_reported = false,
     .lookups = kLookups<getCustBooleanFeature, getCustIntFeature, getCustFloatFeature,
                         getCustStringFeature, getCustStringArrayFeature, getCustIntArrayFeature,
                         getCustMapArrayFeature>},
    {.name = "region",
     .infix = "RegionCust",
     .is_reported = false,
     .lookups =
         kLookups<getRegionCustBooleanFeature, getRegionCustIntFeature, getRegionCustFloatFeature,
                  getRegionCustStringFeature, getRegionCustStringArrayFeature,
                  getRegionCustIntArrayFeature, getRegionCustMapArrayFeature>},
    {.name = "carrier",
     .infix = "CotaCust",
     .is_reported = false,
     .lookups = kLookups<getCotaCustBooleanFeature, getCotaCustIntFeature, getCotaCustFloatFeature,
                         getCotaCustStringFeature, getCotaCustStringArrayFeature,
                         getCotaCustIntArrayFeature, getCotaCustMapArrayFeature>},
    {.name = "carrier-region",
     .infix = "CotaRegionCust",
     .is_reported = true,
     .lookups = kLookups<getCotaRegionCustBooleanFeature, getCotaRegionCustIntFeature,
                         getCotaRegionCustFloatFeature, getCotaRegionCustStringFeature,
                         getCotaRegionCustStringArrayFeature, getCotaRegionCustIntArrayFeature,
                         getCotaRegionCustMapArrayFeature>},
    {.name = "sim",
     .infix = "SimCust",
     .is_reported = true,
     .lookups = kLookups<getSimCustBooleanFeature, getSimCustIntFeature, nullptr,
                         getSimCustStringFeature, getSimCustStringArrayFeature,
                         getSimCustIntArrayFeature, getSimCustMapArrayFeature>},
};

struct KindInfo {
  Kind kind;
  const char* infix;  // in the names of functions
};

constexpr KindInfo kKinds[] = {
    {Kind::kBool, "Boolean"},
    {Kind::kInt, "Int"},
    {Kind::kFloat, "Float"},
    {Kind::kString, "String"},
    {Kind::kStringArray, "StringArray"},
    {Kind::kIntArray, "IntArray"},
    {Kind::kMapArray, "MapArray"},
};
static_assert(std::size(kKinds) == kKindCount);

std::string NameOf(const KindInfo& info) { return ToString(info.kind); }

}  // namespace

std::string Family::FunctionName(Kind kind) const {
  return std::string("get") + infix + std::ranges::find(kKinds, kind, &KindInfo::kind)->infix +
         "Feature";
}

std::span<const Family> Families() { return kFamilies; }

const Family& FindFamily(const std::string& name) {
  const auto* const found = std::ranges::find(kFamilies, name, &Family::name);
  if (found == std::end(kFamilies)) {
    throw Failure("unknown family '" + name + "'; use one of: " + FamilyNames());
  }
  return *found;
}

Kind FindKind(const std::string& name) {
  const auto* const found = std::ranges::find(kKinds, name, NameOf);
  if (found == std::end(kKinds)) {
    throw Failure("unknown kind '" + name + "'; use one of: " + KindNames());
  }
  return found->kind;
}

std::string FamilyNames() { return Join(kFamilies, ", ", &Family::name); }
std::string KindNames() { return Join(kKinds, ", ", NameOf); }

Value ZeroOf(Kind kind) {
  static const Value zeros[] = {false,         0,          0.0F,      std::string(),
                                StringArray(), IntArray(), MapArray()};
  static_assert(std::size(zeros) == kKindCount);
  return zeros[static_cast<std::size_t>(kind)];
}

ExistenceTest* ExistenceTestOf(Kind kind, bool is_sim) {
  const Value zero = ZeroOf(kind);
#define TEST(test, Type) \
  if (!is_sim && std::holds_alternative<Type>(zero)) return test;
#define SIM_TEST(test, Type) \
  if (is_sim && std::holds_alternative<Type>(zero)) return test;
  CADROVA_EXISTENCE_TESTS(TEST, SIM_TEST)
#undef TEST
#undef SIM_TEST
  return ExistenceTestOf(kind, false);
}

Value ReadFromMap(const std::string& map, const std::string& key, const Value& default_value) {
  switch (host::KindOf(default_value)) {
    case Kind::kBool:
      return getBooleanFromRust(map, key, std::get<bool>(default_value));
    case Kind::kInt:
      return getIntFromRust(map, key, std::get<int>(default_value));
    case Kind::kFloat:
      return getFloatFromRust(map, key, std::get<float>(default_value));
    case Kind::kString:
      return getStringFromRust(map, key, std::get<std::string>(default_value));
    case Kind::kStringArray:
      return getStringArrayFromRust(map, key);
    case Kind::kIntArray:
      return getIntArrayFromRust(map, key);
    case Kind::kMapArray:
      return getMapFromRust(map, key);
  }
  return default_value;
}

}  // namespace cadrova::tools
