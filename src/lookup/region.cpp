// Region lookups: what the device's region says, or else the default map.
//
//   1. the map named by the region code
//   2. "DEFAULT", without a test

#include "lookup/lookup.h"

namespace android {
namespace {

constexpr std::size_t kLineSize = 64;
template <class Value>
using RegionLine = Line<Value, kLineSize>;

// The place of each map's line.
enum : unsigned { kInRegion = 0 * kLineSize, kInDefault = 1 * kLineSize };

Answer Region(cadrova_existence_test* exists, const std::string& key) {
  Answer answer = {RegionCode(), kInRegion};
  if (!Holds(exists, answer.map, key)) answer = {"DEFAULT", kInDefault};
  return answer;
}

}  // namespace

bool getRegionCustBooleanFeature(std::string key, bool default_value) {
  static constexpr RegionLine<bool> kLines[] = {
      "getRegionCustBooleanFeature exist with the region : %d \n",
      "getRegionCustBooleanFeature do not exist with the region : %d \n"};
  return Lookup(kLines, Region, get_bool_item_exist, key, default_value);
}

int getRegionCustIntFeature(std::string key, int default_value) {
  static constexpr RegionLine<int> kLines[] = {
      "getRegionCustIntFeature exist with the region : %d \n",
      "getRegionCustIntFeature do not exist with the region : %d \n"};
  return Lookup(kLines, Region, get_int_item_exist, key, default_value);
}

float getRegionCustFloatFeature(std::string key, float default_value) {
  static constexpr RegionLine<float> kLines[] = {
      "getRegionCustFloatFeature exist with the region : %f \n",
      "getRegionCustFloatFeature do not exist with the region : %f \n"};
  return Lookup(kLines, Region, get_float_item_exist, key, default_value);
}

std::string getRegionCustStringFeature(std::string key, std::string default_value) {
  static constexpr RegionLine<std::string> kLines[] = {
      "getRegionCustStringFeature exist with the region : %s \n",
      "getRegionCustStringFeature do not exist with the region : %s \n"};
  return Lookup(kLines, Region, get_str_item_exist, key, default_value);
}

std::vector<std::string> getRegionCustStringArrayFeature(std::string key) {
  static constexpr RegionLine<StringArray> kLines[] = {
      "getRegionCustStringArrayFeature exist with the region ! ",
      "getRegionCustStringArrayFeature do not exist with the region ! "};
  return Lookup(kLines, Region, get_str_arr_item_exist, key);
}

std::vector<int> getRegionCustIntArrayFeature(std::string key) {
  static constexpr RegionLine<IntArray> kLines[] = {
      "getRegionCustIntArrayFeature exist with the region ! ",
      "getRegionCustIntArrayFeature do not exist with the region ! "};
  return Lookup(kLines, Region, get_int_arr_item_exist, key);
}

std::vector<std::pair<std::string, std::string>> getRegionCustMapArrayFeature(std::string key) {
  static constexpr RegionLine<MapArray> kLines[] = {
      "getRegionCustMapArrayFeature exist with the region ! ",
      "getRegionCustMapArrayFeature do not exist with the region ! "};
  return Lookup(kLines, Region, get_map_arr_item_exist, key);
}

}  // namespace android
