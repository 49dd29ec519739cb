// The floor: the functions that the benchmarks call, written by hand. They share no code. They make
// the same copies and calls as the library, and print the same lines.

#include <android-base/properties.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <utility>
#include <vector>

#include "cadrova/cadrova.h"
#include "parser_core.h"

namespace android {

using base::GetProperty;
using cadrova::core::IsTrue;

int getIntFromRust(std::string map, std::string key, int default_value) {
  return get_int_from_map(std::string(map), std::string(key), default_value);
}

std::string getStringFromRust(std::string map, std::string key, std::string default_value) {
  char* block = get_str_from_map(std::string(map), std::string(key), std::string(default_value));
  std::string value(block);
  std::free(block);
  return value;
}

std::vector<std::string> getStringArrayFromRust(std::string map, std::string key) {
  std::vector<std::string> list;
  char** block = get_str_arr_from_map(std::string(map), std::string(key));
  if (block == nullptr) return list;
  for (char** slot = block; *slot != nullptr; ++slot) {
    list.push_back(std::string(*slot));
    std::free(*slot);
  }
  std::free(block);
  return list;
}

int getCustIntFeature(std::string key, int default_value) {
  return getIntFromRust("DEFAULT", key, default_value);
}

int getRegionCustIntFeature(std::string key, int default_value) {
  std::string region = GetProperty("ro.orvel.region", "");
  if (IsTrue(get_int_item_exist(std::string(region), std::string(key)))) {
    std::printf("getRegionCustIntFeature exist with the region : %d \n",
                getIntFromRust(region, key, default_value));
    return getIntFromRust(region, key, default_value);
  }
  std::printf("getRegionCustIntFeature do not exist with the region : %d \n",
              getIntFromRust("DEFAULT", key, default_value));
  return getIntFromRust("DEFAULT", key, default_value);
}

std::string getRegionCustStringFeature(std::string key, std::string default_value) {
  std::string region = GetProperty("ro.orvel.region", "");
  if (IsTrue(get_str_item_exist(std::string(region), std::string(key)))) {
    std::printf("getRegionCustStringFeature exist with the region : %s \n",
                getStringFromRust(region, key, default_value).c_str());
    return getStringFromRust(region, key, default_value);
  }
  std::printf("getRegionCustStringFeature do not exist with the region : %s \n",
              getStringFromRust("DEFAULT", key, default_value).c_str());
  return getStringFromRust("DEFAULT", key, default_value);
}

int getCotaCustIntFeature(std::string key, int default_value) {
  std::string carrier = GetProperty("persist.sys.cota.carrier", "");
  std::string carrier_map = "COTA_" + carrier;
  if (IsTrue(get_int_item_exist(std::string(carrier_map), std::string(key)))) {
    std::printf("getCotaCustIntFeature exist with the carrier : %d \n",
                getIntFromRust(carrier_map, key, default_value));
    return getIntFromRust(carrier_map, key, default_value);
  }
  std::printf("getCotaCustIntFeature do not exist with the carrier : %d \n",
              getIntFromRust("DEFAULT", key, default_value));
  return getIntFromRust("DEFAULT", key, default_value);
}

std::vector<std::string> getCotaCustStringArrayFeature(std::string key) {
  std::string carrier = GetProperty("persist.sys.cota.carrier", "");
  std::string carrier_map = "COTA_" + carrier;
  if (IsTrue(get_str_arr_item_exist(std::string(carrier_map), std::string(key)))) {
    std::puts("getCotaCustStringArrayFeature exist with the carrier ! ");
    return getStringArrayFromRust(carrier_map, key);
  }
  std::puts("getCotaCustStringArrayFeature do not exist with the carrier ! ");
  return getStringArrayFromRust("DEFAULT", key);
}

int getCotaRegionCustIntFeature(std::string key, int default_value) {
  std::string region = GetProperty("ro.orvel.region", "");
  std::string carrier = GetProperty("persist.sys.cota.carrier", "");
  std::string carrier_and_region_map = "COTA_" + carrier + "_" + region;
  std::string carrier_map = "COTA_" + carrier;
  if (IsTrue(get_int_item_exist(std::string(carrier_and_region_map), std::string(key)))) {
    std::printf("getCotaRegionCustIntFeature exist with the carrier & region : %d \n",
                getIntFromRust(carrier_and_region_map, key, default_value));
    return getIntFromRust(carrier_and_region_map, key, default_value);
  }
  if (IsTrue(get_int_item_exist(std::string(carrier_map), std::string(key)))) {
    std::printf("getCotaRegionCustIntFeature exist with the carrier : %d \n",
                getIntFromRust(carrier_map, key, default_value));
    return getIntFromRust(carrier_map, key, default_value);
  }
  if (IsTrue(get_int_item_exist(std::string(region), std::string(key)))) {
    std::printf("getCotaRegionCustIntFeature exist with the region : %d \n",
                getIntFromRust(region, key, default_value));
    return getIntFromRust(region, key, default_value);
  }
  std::printf("getCotaRegionCustIntFeature do not exist with the carrier or region : %d \n",
              getIntFromRust("DEFAULT", key, default_value));
  return getIntFromRust("DEFAULT", key, default_value);
}

int getSimCustIntFeature(std::string key, int default_value) {
  std::string carrier = GetProperty("persist.sys.cota.carrier", "");
  std::string sim_map = "SIM_" + carrier;
  if (IsTrue(sim_get_int_item_exist(std::string(sim_map), std::string(key)))) {
    std::printf("getSimCustIntFeature exist with the carrier : %d \n",
                getIntFromRust(sim_map, key, default_value));
    return getIntFromRust(sim_map, key, default_value);
  }
  if (IsTrue(sim_get_int_item_exist(std::string("SIM_DEFAULT"), std::string(key)))) {
    std::printf("getSimCustIntFeature do not exist with the carrier : %d \n",
                getIntFromRust("SIM_DEFAULT", key, default_value));
    return getIntFromRust("SIM_DEFAULT", key, default_value);
  }
  return getCotaRegionCustIntFeature(key, default_value);
}

}  // namespace android
