// SIM lookups: consult the SIM map of the device's carrier, then "SIM_DEFAULT", then make the
// carrier-and-region lookup of the same kind. Also the function that passes SIM data to the core.

#include "lookup/lookup.h"

namespace android {
namespace {

using namespace cadrova_cpp;

std::string SimMap() { return Concatenated("SIM_", CarrierCode()); }

// Intentionally, the line for "SIM_DEFAULT" says "do not exist": it means the SIM map of the
// carrier.
template <class Value>
struct Lines {
  Line<Value> in_sim, in_sim_default;
};

// If the carrier code is DEFAULT, "SIM_DEFAULT" is consulted twice.
template <class Value, class... Default>
Value LookUp(Lines<Value> lines, Value (*look_up_in_carrier_and_region)(std::string, Default...),
             const std::string& key, const Default&... default_value) {
  const std::string sim_map = SimMap();
  if (Contains(KindTraits<Value>::exists_in_sim, sim_map, key)) {
    return PrintAndRead(lines.in_sim, sim_map, key, default_value...);
  }
  if (Contains(KindTraits<Value>::exists_in_sim, "SIM_DEFAULT", key)) {
    return PrintAndRead(lines.in_sim_default, "SIM_DEFAULT", key, default_value...);
  }
  return look_up_in_carrier_and_region(key, default_value...);
}

}  // namespace

bool getSimCustBooleanFeature(std::string key, bool default_value) {
  return LookUp<bool>(
      {.in_sim = "getSimCustBooleanFeature exist with the carrier : %d \n",
       .in_sim_default = "getSimCustBooleanFeature do not exist with the carrier : %d \n"},
      getCotaRegionCustBooleanFeature, key, default_value);
}

int getSimCustIntFeature(std::string key, int default_value) {
  return LookUp<int>(
      {.in_sim = "getSimCustIntFeature exist with the carrier : %d \n",
       .in_sim_default = "getSimCustIntFeature do not exist with the carrier : %d \n"},
      getCotaRegionCustIntFeature, key, default_value);
}

std::string getSimCustStringFeature(std::string key) {
  return LookUp<std::string>(
      {.in_sim = "getSimCustStringFeature exist with the carrier : %s \n",
       .in_sim_default = "getSimCustStringFeature do not exist with the carrier : %s \n"},
      getCotaRegionCustStringFeature, key, std::string());
}

std::vector<std::string> getSimCustStringArrayFeature(std::string key) {
  return LookUp<StringArray>(
      {.in_sim = "getSimCustStringArrayFeature exist with the carrier ! ",
       .in_sim_default = "getSimCustStringArrayFeature do not exist with the carrier ! "},
      getCotaRegionCustStringArrayFeature, key);
}

std::vector<int> getSimCustIntArrayFeature(std::string key) {
  return LookUp<IntArray>(
      {.in_sim = "getSimCustIntArrayFeature exist with the carrier ! ",
       .in_sim_default = "getSimCustIntArrayFeature do not exist with the carrier ! "},
      getCotaRegionCustIntArrayFeature, key);
}

std::vector<std::pair<std::string, std::string>> getSimCustMapArrayFeature(std::string key) {
  return LookUp<MapArray>(
      {.in_sim = "getSimCustMapArrayFeature exist with the carrier ! ",
       .in_sim_default = "getSimCustMapArrayFeature do not exist with the carrier ! "},
      getCotaRegionCustMapArrayFeature, key);
}

void setSimCadrova(std::string first, std::string second) {
  CallCore(cxx_sim_set_the_cadrova, "SIM_DEFAULT", first, second);
  // The carrier code is read after the first call, and passed without the prefix "SIM_".
  CallCore(cxx_sim_set_the_cadrova, CarrierCode(), first, second);
}

}  // namespace android
