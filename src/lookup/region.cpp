// Region lookups: consult the map of the device's region, then the default map.

#include "lookup/lookup.h"

namespace android {
namespace {

using namespace cadrova_cpp;

template <class Value>
struct Lines {
  Line<Value> in_region, in_default;
};

template <class Value, class... Default>
Value LookUp(Lines<Value> lines, const std::string& key, const Default&... default_value) {
  const std::string region = RegionCode();
  if (Contains(KindTraits<Value>::exists, region, key)) {
    return PrintAndRead(lines.in_region, region, key, default_value...);
  }
  return PrintAndRead(lines.in_default, "DEFAULT", key, default_value...);
}

}  // namespace

bool getRegionCustBooleanFeature(std::string key, bool default_value) {
  return LookUp<bool>(
      {.in_region = "getRegionCustBooleanFeature exist with the region : %d \n",
       .in_default = "getRegionCustBooleanFeature do not exist with the region : %d \n"},
      key, default_value);
}

int getRegionCustIntFeature(std::string key, int default_value) {
  return LookUp<int>({.in_region = "getRegionCustIntFeature exist with the region : %d \n",
                      .in_default = "getRegionCustIntFeature do not exist with the region : %d \n"},
                     key, default_value);
}

float getRegionCustFloatFeature(std::string key, float default_value) {
  return LookUp<float>(
      {.in_region = "getRegionCustFloatFeature exist with the region : %f \n",
       .in_default = "getRegionCustFloatFeature do not exist with the region : %f \n"},
      key, default_value);
}

std::string getRegionCustStringFeature(std::string key, std::string default_value) {
  return LookUp<std::string>(
      {.in_region = "getRegionCustStringFeature exist with the region : %s \n",
       .in_default = "getRegionCustStringFeature do not exist with the region : %s \n"},
      key, default_value);
}

std::vector<std::string> getRegionCustStringArrayFeature(std::string key) {
  return LookUp<StringArray>(
      {.in_region = "getRegionCustStringArrayFeature exist with the region ! ",
       .in_default = "getRegionCustStringArrayFeature do not exist with the region ! "},
      key);
}

std::vector<int> getRegionCustIntArrayFeature(std::string key) {
  return LookUp<IntArray>(
      {.in_region = "getRegionCustIntArrayFeature exist with the region ! ",
       .in_default = "getRegionCustIntArrayFeature do not exist with the region ! "},
      key);
}

std::vector<std::pair<std::string, std::string>> getRegionCustMapArrayFeature(std::string key) {
  return LookUp<MapArray>(
      {.in_region = "getRegionCustMapArrayFeature exist with the region ! ",
       .in_default = "getRegionCustMapArrayFeature do not exist with the region ! "},
      key);
}

}  // namespace android
