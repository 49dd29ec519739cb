// Carrier-and-region lookups: the most specific map that holds the item, or else the default map.

#include "lookup/lookup.h"

namespace android {
namespace {

using namespace cadrova_cpp;

template <class Value>
struct Lines {
  Line<Value> in_carrier_and_region, in_carrier, in_region, in_default;
};

// The names of the maps, as EU, COTA_X1 and COTA_X1_EU; the region code is read first. An unset
// code is no special case: the names are composed and asked all the same.
struct Maps {
  std::string region = RegionCode();
  std::string carrier = Concatenated("COTA_", CarrierCode());
  std::string carrier_and_region = Concatenated(carrier, Concatenated("_", region));
};

template <class Value, class... Default>
Value LookUp(Lines<Value> lines, const std::string& key, const Default&... default_value) {
  const Maps maps;
  if (Holds(KindTraits<Value>::exists, maps.carrier_and_region, key)) {
    return Report(lines.in_carrier_and_region, maps.carrier_and_region, key, default_value...);
  }
  if (Holds(KindTraits<Value>::exists, maps.carrier, key)) {
    return Report(lines.in_carrier, maps.carrier, key, default_value...);
  }
  if (Holds(KindTraits<Value>::exists, maps.region, key)) {
    return Report(lines.in_region, maps.region, key, default_value...);
  }
  return Report(lines.in_default, "DEFAULT", key, default_value...);
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

// These lines name other lookups, and are meant to: the first and last name the carrier family's,
// the two between are those of the string array lookup above.
std::vector<std::pair<std::string, std::string>> getCotaRegionCustMapArrayFeature(std::string key) {
  return LookUp<MapArray>(
      {.in_carrier_and_region = "getCotaCustMapArrayFeature exist with the carrier & region ! ",
       .in_carrier = "getCotaRegionCustStringArrayFeature exist with the carrier ! ",
       .in_region = "getCotaRegionCustStringArrayFeature exist with the region ! ",
       .in_default = "getCotaCustMapArrayFeature do not exist with the carrier or region ! "},
      key);
}

}  // namespace android
