// Carrier lookups: consult the map of the device's carrier, then the default map.

#include "lookup/lookup.h"

namespace android {
namespace {

using namespace cadrova_cpp;

template <class Value>
struct Lines {
  Line<Value> in_carrier, in_default;
};

template <class Value, class... Default>
Value LookUp(Lines<Value> lines, const std::string& key, const Default&... default_value) {
  const std::string carrier_map = CarrierMap();
  if (Contains(KindTraits<Value>::exists, carrier_map, key)) {
    return PrintAndRead(lines.in_carrier, carrier_map, key, default_value...);
  }
  return PrintAndRead(lines.in_default, "DEFAULT", key, default_value...);
}

}  // namespace

bool getCotaCustBooleanFeature(std::string key, bool default_value) {
  return LookUp<bool>(
      {.in_carrier = "getCotaCustBooleanFeature exist with the carrier : %d \n",
       .in_default = "getCotaCustBooleanFeature do not exist with the carrier : %d \n"},
      key, default_value);
}

int getCotaCustIntFeature(std::string key, int default_value) {
  return LookUp<int>({.in_carrier = "getCotaCustIntFeature exist with the carrier : %d \n",
                      .in_default = "getCotaCustIntFeature do not exist with the carrier : %d \n"},
                     key, default_value);
}

float getCotaCustFloatFeature(std::string key, float default_value) {
  return LookUp<float>(
      {.in_carrier = "getCotaCustFloatFeature exist with the carrier : %f \n",
       .in_default = "getCotaCustFloatFeature do not exist with the carrier : %f \n"},
      key, default_value);
}

std::string getCotaCustStringFeature(std::string key, std::string default_value) {
  return LookUp<std::string>(
      {.in_carrier = "getCotaCustStringFeature exist with the carrier : %s \n",
       .in_default = "getCotaCustStringFeature do not exist with the carrier : %s \n"},
      key, default_value);
}

std::vector<std::string> getCotaCustStringArrayFeature(std::string key) {
  return LookUp<StringArray>(
      {.in_carrier = "getCotaCustStringArrayFeature exist with the carrier ! ",
       .in_default = "getCotaCustStringArrayFeature do not exist with the carrier ! "},
      key);
}

std::vector<int> getCotaCustIntArrayFeature(std::string key) {
  return LookUp<IntArray>(
      {.in_carrier = "getCotaCustIntArrayFeature exist with the carrier ! ",
       .in_default = "getCotaCustIntArrayFeature do not exist with the carrier ! "},
      key);
}

std::vector<std::pair<std::string, std::string>> getCotaCustMapArrayFeature(std::string key) {
  return LookUp<MapArray>(
      {.in_carrier = "getCotaCustMapArrayFeature exist with the carrier ! ",
       .in_default = "getCotaCustMapArrayFeature do not exist with the carrier ! "},
      key);
}

}  // namespace android
