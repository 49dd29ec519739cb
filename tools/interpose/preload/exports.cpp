// Interposes the functions of the library. Each definition passes the call on and traces it.

#include <string>
#include <utility>

#include "cadrova/cadrova.h"
#include "cadrova/value.h"
#include "interpose/next_symbol.h"
#include "traced_lookup.h"

namespace cadrova::tools {
namespace {

template <auto* own, class... Default>
auto Traced(const char* function, std::string& key, Default&... default_value) {
  auto* const next = Next<own>::Find();
  if (TracedLookup::current != nullptr) return next(std::move(key), std::move(default_value)...);
  TracedLookup lookup(function, key, default_value...);
  auto value = next(std::move(key), std::move(default_value)...);
  lookup.Finish(value);
  return value;
}

}  // namespace
}  // namespace cadrova::tools

using namespace cadrova::host;
using namespace cadrova::tools;

namespace android {

#define WITH_DEFAULT(name, Value)                      \
  Value name(std::string key, Value default_value) {   \
    return Traced<name>(__func__, key, default_value); \
  }
#define WITHOUT_DEFAULT(name, Value) \
  Value name(std::string key) { return Traced<name>(__func__, key); }
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
  auto* const next = Next<setSimCadrova>::Find();
  if (TracedLookup::current != nullptr) return next(std::move(first), std::move(second));
  TracedLookup lookup(__func__, first, second);
  next(std::move(first), std::move(second));
  lookup.FinishSetSim();
}

}  // namespace android
