// Carrier lookups: what the device's carrier says, or else the default map.
//
//   1. "COTA_" and the carrier code
//   2. "DEFAULT", without a test

#include "lookup/lookup.h"

namespace android {
namespace {

constexpr std::size_t kLineSize = 64;
template <class Value>
using CarrierLine = Line<Value, kLineSize>;

// The place of each map's line.
enum : unsigned { kInCarrier = 0 * kLineSize, kInDefault = 1 * kLineSize };

Answer Carrier(cadrova_existence_test* exists, const std::string& key) {
  std::string carrier_map = Joined("COTA_", CarrierCode());
  if (Holds(exists, carrier_map, key)) return {std::move(carrier_map), kInCarrier};
  return {"DEFAULT", kInDefault};
}

}  // namespace

bool getCotaCustBooleanFeature(std::string key, bool default_value) {
  static constexpr CarrierLine<bool> kLines[] = {
      "getCotaCustBooleanFeature exist with the carrier : %d \n",
      "getCotaCustBooleanFeature do not exist with the carrier : %d \n"};
  return Lookup(kLines, Carrier, get_bool_item_exist, key, default_value);
}

int getCotaCustIntFeature(std::string key, int default_value) {
  static constexpr CarrierLine<int> kLines[] = {
      "getCotaCustIntFeature exist with the carrier : %d \n",
      "getCotaCustIntFeature do not exist with the carrier : %d \n"};
  return Lookup(kLines, Carrier, get_int_item_exist, key, default_value);
}

float getCotaCustFloatFeature(std::string key, float default_value) {
  static constexpr CarrierLine<float> kLines[] = {
      "getCotaCustFloatFeature exist with the carrier : %f \n",
      "getCotaCustFloatFeature do not exist with the carrier : %f \n"};
  return Lookup(kLines, Carrier, get_float_item_exist, key, default_value);
}

std::string getCotaCustStringFeature(std::string key, std::string default_value) {
  static constexpr CarrierLine<std::string> kLines[] = {
      "getCotaCustStringFeature exist with the carrier : %s \n",
      "getCotaCustStringFeature do not exist with the carrier : %s \n"};
  return Lookup(kLines, Carrier, get_str_item_exist, key, default_value);
}

std::vector<std::string> getCotaCustStringArrayFeature(std::string key) {
  static constexpr CarrierLine<StringArray> kLines[] = {
      "getCotaCustStringArrayFeature exist with the carrier ! ",
      "getCotaCustStringArrayFeature do not exist with the carrier ! "};
  return Lookup(kLines, Carrier, get_str_arr_item_exist, key);
}

std::vector<int> getCotaCustIntArrayFeature(std::string key) {
  static constexpr CarrierLine<IntArray> kLines[] = {
      "getCotaCustIntArrayFeature exist with the carrier ! ",
      "getCotaCustIntArrayFeature do not exist with the carrier ! "};
  return Lookup(kLines, Carrier, get_int_arr_item_exist, key);
}

std::vector<std::pair<std::string, std::string>> getCotaCustMapArrayFeature(std::string key) {
  static constexpr CarrierLine<MapArray> kLines[] = {
      "getCotaCustMapArrayFeature exist with the carrier ! ",
      "getCotaCustMapArrayFeature do not exist with the carrier ! "};
  return Lookup(kLines, Carrier, get_map_arr_item_exist, key);
}

}  // namespace android
