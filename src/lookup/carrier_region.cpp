// Carrier-and-region lookups: consult the maps from the most to the least specific, then the
// default map.

#include "lookup/lookup.h"

namespace android {
namespace {

using namespace cadrova_cpp;

// For example COTA_X1_EU, composed of COTA_X1 and EU.
std::string CarrierAndRegionMap(const std::string& carrier_map, const std::string& region) {
  return Concatenated(carrier_map, Concatenated("_", region));
}

template <class Value>
struct Lines {
  Line<Value> in_carrier_and_region, in_carrier, in_region, in_default;
};

template <class Value, class... Default>
Value LookUp(Lines<Value> lines, const std::string& key, const Default&... default_value) {
  // The region code is read first. An unset code is not a special case.
  const std::string region_map = RegionCode();
  const std::string carrier_map = CarrierMap();
  const std::string carrier_and_region_map = CarrierAndRegionMap(carrier_map, region_map);
  if (Contains(KindTraits<Value>::exists, carrier_and_region_map, key)) {
    return PrintAndRead(lines.in_carrier_and_region, carrier_and_region_map, key, default_value...);
  }
  if (Contains(KindTraits<Value>::exists, carrier_map, key)) {
    return PrintAndRead(lines.in_carrier, carrier_map, key, default_value...);
  }
  if (Contains(KindTraits<Value>::exists, region_map, key)) {
    return PrintAndRead(lines.in_region, region_map, key, default_value...);
  }
  return PrintAndRead(lines.in_default, "DEFAULT", key, default_value...);
}

}  // namespace

bool getCotaRegionCustBooleanFeature(std::string key, bool default_value) {
  return LookUp<bool>(
      {.in_carrier_and_region =
           "getCotaRegionCustBooleanFeature exist with the carrier & region : %d \n",
       .in_carrier = "getCotaRegionCustBooleanFeature exist with the carrier : %d \n",
       .in_region = "getCotaRegionCustBooleanFeature exist with the region : %d \n",
       .in_default =
           "getCotaRegionCustBooleanFeature do not exist with the carrier or region : %d \n"},
      key, default_value);
}

int getCotaRegionCustIntFeature(std::string key, int default_value) {
  return LookUp<int>(
      {.in_carrier_and_region =
           "getCotaRegionCustIntFeature exist with the carrier & region : %d \n",
       .in_carrier = "getCotaRegionCustIntFeature exist with the carrier : %d \n",
       .in_region = "getCotaRegionCustIntFeature exist with the region : %d \n",
       .in_default = "getCotaRegionCustIntFeature do not exist with the carrier or region : %d \n"},
      key, default_value);
}

float getCotaRegionCustFloatFeature(std::string key, float default_value) {
  return LookUp<float>(
      {.in_carrier_and_region =
           "getCotaRegionCustFloatFeature exist with the carrier & region : %f \n",
       .in_carrier = "getCotaRegionCustFloatFeature exist with the carrier : %f \n",
       .in_region = "getCotaRegionCustFloatFeature exist with the region : %f \n",
       .in_default =
           "getCotaRegionCustFloatFeature do not exist with the carrier or region : %f \n"},
      key, default_value);
}

std::string getCotaRegionCustStringFeature(std::string key, std::string default_value) {
  return LookUp<std::string>(
      {.in_carrier_and_region =
           "getCotaRegionCustStringFeature exist with the carrier & region : %s \n",
       .in_carrier = "getCotaRegionCustStringFeature exist with the carrier : %s \n",
       .in_region = "getCotaRegionCustStringFeature exist with the region : %s \n",
       .in_default =
           "getCotaRegionCustStringFeature do not exist with the carrier or region : %s \n"},
      key, default_value);
}

std::vector<std::string> getCotaRegionCustStringArrayFeature(std::string key) {
  return LookUp<StringArray>(
      {.in_carrier_and_region =
           "getCotaRegionCustStringArrayFeature exist with the carrier & region ! ",
       .in_carrier = "getCotaRegionCustStringArrayFeature exist with the carrier ! ",
       .in_region = "getCotaRegionCustStringArrayFeature exist with the region ! ",
       .in_default =
           "getCotaRegionCustStringArrayFeature do not exist with the carrier or region ! "},
      key);
}

std::vector<int> getCotaRegionCustIntArrayFeature(std::string key) {
  return LookUp<IntArray>(
      {.in_carrier_and_region =
           "getCotaRegionCustIntArrayFeature exist with the carrier & region ! ",
       .in_carrier = "getCotaRegionCustIntArrayFeature exist with the carrier ! ",
       .in_region = "getCotaRegionCustIntArrayFeature exist with the region ! ",
       .in_default = "getCotaRegionCustIntArrayFeature do not exist with the carrier or region ! "},
      key);
}

// Intentionally, these lines name other functions: the first and the last line name the carrier
// lookup for map arrays, the two other lines name the string array lookup above.
std::vector<std::pair<std::string, std::string>> getCotaRegionCustMapArrayFeature(std::string key) {
  return LookUp<MapArray>(
      {.in_carrier_and_region = "getCotaCustMapArrayFeature exist with the carrier & region ! ",
       .in_carrier = "getCotaRegionCustStringArrayFeature exist with the carrier ! ",
       .in_region = "getCotaRegionCustStringArrayFeature exist with the region ! ",
       .in_default = "getCotaCustMapArrayFeature do not exist with the carrier or region ! "},
      key);
}

}  // namespace android
