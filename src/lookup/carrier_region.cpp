// Carrier-and-region lookups: the most specific map that holds the item.
//
//   1. "COTA_", the carrier code, "_" and the region code
//   2. "COTA_" and the carrier code
//   3. the map named by the region code
//   4. "DEFAULT", without a test
//
// An unset code is no special case: the names are composed and asked all the same.

#include <algorithm>

#include "lookup/lookup.h"

namespace android {
namespace {

constexpr std::size_t kLineSize = 96;
template <class Value>
using CarrierAndRegionLine = Line<Value, kLineSize>;

// The place of each map's line.
enum : unsigned {
  kInCarrierAndRegion = 0 * kLineSize,
  kInCarrier = 1 * kLineSize,
  kInRegion = 2 * kLineSize,
  kInDefault = 3 * kLineSize
};

Answer CarrierAndRegion(cadrova_existence_test* exists, const std::string& key) {
  std::string region = RegionCode();
  // Shifted by a byte, _COTA_X1 becomes COTA_X1_: before the region it makes the longer name, and
  // without its end the shorter one, so that no third name has to be made.
  std::string carrier_map = Joined("_COTA_", CarrierCode());
  std::shift_left(carrier_map.begin(), carrier_map.end(), 1);
  carrier_map.back() = '_';
  std::string carrier_and_region_map = Joined(carrier_map, region);
  carrier_map.pop_back();
  if (Holds(exists, carrier_and_region_map, key)) {
    return {std::move(carrier_and_region_map), kInCarrierAndRegion};
  }
  if (Holds(exists, carrier_map, key)) return {std::move(carrier_map), kInCarrier};
  if (Holds(exists, region, key)) return {std::move(region), kInRegion};
  return {"DEFAULT", kInDefault};
}

}  // namespace

bool getCotaRegionCustBooleanFeature(std::string key, bool default_value) {
  static constexpr CarrierAndRegionLine<bool> kLines[] = {
      "getCotaRegionCustBooleanFeature exist with the carrier & region : %d \n",
      "getCotaRegionCustBooleanFeature exist with the carrier : %d \n",
      "getCotaRegionCustBooleanFeature exist with the region : %d \n",
      "getCotaRegionCustBooleanFeature do not exist with the carrier or region : %d \n"};
  return Lookup(kLines, CarrierAndRegion, get_bool_item_exist, key, default_value);
}

int getCotaRegionCustIntFeature(std::string key, int default_value) {
  static constexpr CarrierAndRegionLine<int> kLines[] = {
      "getCotaRegionCustIntFeature exist with the carrier & region : %d \n",
      "getCotaRegionCustIntFeature exist with the carrier : %d \n",
      "getCotaRegionCustIntFeature exist with the region : %d \n",
      "getCotaRegionCustIntFeature do not exist with the carrier or region : %d \n"};
  return Lookup(kLines, CarrierAndRegion, get_int_item_exist, key, default_value);
}

float getCotaRegionCustFloatFeature(std::string key, float default_value) {
  static constexpr CarrierAndRegionLine<float> kLines[] = {
      "getCotaRegionCustFloatFeature exist with the carrier & region : %f \n",
      "getCotaRegionCustFloatFeature exist with the carrier : %f \n",
      "getCotaRegionCustFloatFeature exist with the region : %f \n",
      "getCotaRegionCustFloatFeature do not exist with the carrier or region : %f \n"};
  return Lookup(kLines, CarrierAndRegion, get_float_item_exist, key, default_value);
}

std::string getCotaRegionCustStringFeature(std::string key, std::string default_value) {
  static constexpr CarrierAndRegionLine<std::string> kLines[] = {
      "getCotaRegionCustStringFeature exist with the carrier & region : %s \n",
      "getCotaRegionCustStringFeature exist with the carrier : %s \n",
      "getCotaRegionCustStringFeature exist with the region : %s \n",
      "getCotaRegionCustStringFeature do not exist with the carrier or region : %s \n"};
  return Lookup(kLines, CarrierAndRegion, get_str_item_exist, key, default_value);
}

std::vector<std::string> getCotaRegionCustStringArrayFeature(std::string key) {
  static constexpr CarrierAndRegionLine<StringArray> kLines[] = {
      "getCotaRegionCustStringArrayFeature exist with the carrier & region ! ",
      "getCotaRegionCustStringArrayFeature exist with the carrier ! ",
      "getCotaRegionCustStringArrayFeature exist with the region ! ",
      "getCotaRegionCustStringArrayFeature do not exist with the carrier or region ! "};
  return Lookup(kLines, CarrierAndRegion, get_str_arr_item_exist, key);
}

std::vector<int> getCotaRegionCustIntArrayFeature(std::string key) {
  static constexpr CarrierAndRegionLine<IntArray> kLines[] = {
      "getCotaRegionCustIntArrayFeature exist with the carrier & region ! ",
      "getCotaRegionCustIntArrayFeature exist with the carrier ! ",
      "getCotaRegionCustIntArrayFeature exist with the region ! ",
      "getCotaRegionCustIntArrayFeature do not exist with the carrier or region ! "};
  return Lookup(kLines, CarrierAndRegion, get_int_arr_item_exist, key);
}

// These lines name other lookups, and are meant to: the first and last name the carrier family's,
// the two between are those of the string array lookup above.
std::vector<std::pair<std::string, std::string>> getCotaRegionCustMapArrayFeature(std::string key) {
  static constexpr CarrierAndRegionLine<MapArray> kLines[] = {
      "getCotaCustMapArrayFeature exist with the carrier & region ! ",
      "getCotaRegionCustStringArrayFeature exist with the carrier ! ",
      "getCotaRegionCustStringArrayFeature exist with the region ! ",
      "getCotaCustMapArrayFeature do not exist with the carrier or region ! "};
  return Lookup(kLines, CarrierAndRegion, get_map_arr_item_exist, key);
}

}  // namespace android
