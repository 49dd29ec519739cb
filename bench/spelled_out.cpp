// The floor: the exports that the benchmarks call, written straight down, one function at a time,
// with no shared code and the same contract as the library: the same copies, calls and lines.

#include <android-base/properties.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <utility>
#include <vector>

#include "bridge/parser_core.h"
#include "cadrova/cadrova.h"

#pragma GCC diagnostic ignored "-Wformat-nonliteral"

namespace android {

using base::GetProperty;
using cadrova::IsYes;

int getIntFromRust(std::string map, std::string key, int default_value) {
  return get_int_from_map(std::string(map), std::string(key), default_value);
}

float getFloatFromRust(std::string map, std::string key, float default_value) {
  return get_float_from_map(std::string(map), std::string(key), default_value);
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

std::vector<std::pair<std::string, std::string>> getMapFromRust(std::string map, std::string key) {
  std::vector<std::pair<std::string, std::string>> list;
  char** block = get_map_arr_from_map(std::string(map), std::string(key));
  if (block == nullptr) return list;
  for (char** slot = block; slot[0] != nullptr && slot[1] != nullptr; slot += 2) {
    list.emplace_back(slot[0], slot[1]);
  }
  std::free(block);
  return list;
}

int getCustIntFeature(std::string key, int default_value) {
  return getIntFromRust("DEFAULT", key, default_value);
}

std::string getCustStringFeature(std::string key, std::string default_value) {
  return getStringFromRust("DEFAULT", key, default_value);
}

int getRegionCustIntFeature(std::string key, int default_value) {
  std::string region = GetProperty("ro.orvel.region", "");
  if (IsYes(get_int_item_exist(std::string(region), std::string(key)))) {
    std::printf("getRegionCustIntFeature exist with the region : %d \n",
                getIntFromRust(region, key, default_value));
    return getIntFromRust(region, key, default_value);
  }
  std::printf("getRegionCustIntFeature do not exist with the region : %d \n",
              getIntFromRust("DEFAULT", key, default_value));
  return getIntFromRust("DEFAULT", key, default_value);
}

float getRegionCustFloatFeature(std::string key, float default_value) {
  std::string region = GetProperty("ro.orvel.region", "");
  if (IsYes(get_float_item_exist(std::string(region), std::string(key)))) {
    std::printf("getRegionCustFloatFeature exist with the region : %f \n",
                getFloatFromRust(region, key, default_value));
    return getFloatFromRust(region, key, default_value);
  }
  std::printf("getRegionCustFloatFeature do not exist with the region : %f \n",
              getFloatFromRust("DEFAULT", key, default_value));
  return getFloatFromRust("DEFAULT", key, default_value);
}

std::string getRegionCustStringFeature(std::string key, std::string default_value) {
  std::string region = GetProperty("ro.orvel.region", "");
  if (IsYes(get_str_item_exist(std::string(region), std::string(key)))) {
    std::printf("getRegionCustStringFeature exist with the region : %s \n",
                getStringFromRust(region, key, default_value).c_str());
    return getStringFromRust(region, key, default_value);
  }
  std::printf("getRegionCustStringFeature do not exist with the region : %s \n",
              getStringFromRust("DEFAULT", key, default_value).c_str());
  return getStringFromRust("DEFAULT", key, default_value);
}

std::vector<std::string> getRegionCustStringArrayFeature(std::string key) {
  std::string region = GetProperty("ro.orvel.region", "");
  if (IsYes(get_str_arr_item_exist(std::string(region), std::string(key)))) {
    std::puts("getRegionCustStringArrayFeature exist with the region ! ");
    return getStringArrayFromRust(region, key);
  }
  std::puts("getRegionCustStringArrayFeature do not exist with the region ! ");
  return getStringArrayFromRust("DEFAULT", key);
}

std::vector<std::pair<std::string, std::string>> getRegionCustMapArrayFeature(std::string key) {
  std::string region = GetProperty("ro.orvel.region", "");
  if (IsYes(get_map_arr_item_exist(std::string(region), std::string(key)))) {
    std::puts("getRegionCustMapArrayFeature exist with the region ! ");
    return getMapFromRust(region, key);
  }
  std::puts("getRegionCustMapArrayFeature do not exist with the region ! ");
  return getMapFromRust("DEFAULT", key);
}

int getCotaCustIntFeature(std::string key, int default_value) {
  std::string carrier = GetProperty("persist.sys.cota.carrier", "");
  std::string carrier_map = "COTA_" + carrier;
  if (IsYes(get_int_item_exist(std::string(carrier_map), std::string(key)))) {
    std::printf("getCotaCustIntFeature exist with the carrier : %d \n",
                getIntFromRust(carrier_map, key, default_value));
    return getIntFromRust(carrier_map, key, default_value);
  }
  std::printf("getCotaCustIntFeature do not exist with the carrier : %d \n",
              getIntFromRust("DEFAULT", key, default_value));
  return getIntFromRust("DEFAULT", key, default_value);
}

float getCotaCustFloatFeature(std::string key, float default_value) {
  std::string carrier = GetProperty("persist.sys.cota.carrier", "");
  std::string carrier_map = "COTA_" + carrier;
  if (IsYes(get_float_item_exist(std::string(carrier_map), std::string(key)))) {
    std::printf("getCotaCustFloatFeature exist with the carrier : %f \n",
                getFloatFromRust(carrier_map, key, default_value));
    return getFloatFromRust(carrier_map, key, default_value);
  }
  std::printf("getCotaCustFloatFeature do not exist with the carrier : %f \n",
              getFloatFromRust("DEFAULT", key, default_value));
  return getFloatFromRust("DEFAULT", key, default_value);
}

std::string getCotaCustStringFeature(std::string key, std::string default_value) {
  std::string carrier = GetProperty("persist.sys.cota.carrier", "");
  std::string carrier_map = "COTA_" + carrier;
  if (IsYes(get_str_item_exist(std::string(carrier_map), std::string(key)))) {
    std::printf("getCotaCustStringFeature exist with the carrier : %s \n",
                getStringFromRust(carrier_map, key, default_value).c_str());
    return getStringFromRust(carrier_map, key, default_value);
  }
  std::printf("getCotaCustStringFeature do not exist with the carrier : %s \n",
              getStringFromRust("DEFAULT", key, default_value).c_str());
  return getStringFromRust("DEFAULT", key, default_value);
}

std::vector<std::string> getCotaCustStringArrayFeature(std::string key) {
  std::string carrier = GetProperty("persist.sys.cota.carrier", "");
  std::string carrier_map = "COTA_" + carrier;
  if (IsYes(get_str_arr_item_exist(std::string(carrier_map), std::string(key)))) {
    std::puts("getCotaCustStringArrayFeature exist with the carrier ! ");
    return getStringArrayFromRust(carrier_map, key);
  }
  std::puts("getCotaCustStringArrayFeature do not exist with the carrier ! ");
  return getStringArrayFromRust("DEFAULT", key);
}

std::vector<std::pair<std::string, std::string>> getCotaCustMapArrayFeature(std::string key) {
  std::string carrier = GetProperty("persist.sys.cota.carrier", "");
  std::string carrier_map = "COTA_" + carrier;
  if (IsYes(get_map_arr_item_exist(std::string(carrier_map), std::string(key)))) {
    std::puts("getCotaCustMapArrayFeature exist with the carrier ! ");
    return getMapFromRust(carrier_map, key);
  }
  std::puts("getCotaCustMapArrayFeature do not exist with the carrier ! ");
  return getMapFromRust("DEFAULT", key);
}

int getCotaRegionCustIntFeature(std::string key, int default_value) {
  std::string region = GetProperty("ro.orvel.region", "");
  std::string carrier = GetProperty("persist.sys.cota.carrier", "");
  std::string carrier_and_region_map = "COTA_" + carrier + "_" + region;
  std::string carrier_map = "COTA_" + carrier;
  if (IsYes(get_int_item_exist(std::string(carrier_and_region_map), std::string(key)))) {
    std::printf("getCotaRegionCustIntFeature exist with the carrier & region : %d \n",
                getIntFromRust(carrier_and_region_map, key, default_value));
    return getIntFromRust(carrier_and_region_map, key, default_value);
  }
  if (IsYes(get_int_item_exist(std::string(carrier_map), std::string(key)))) {
    std::printf("getCotaRegionCustIntFeature exist with the carrier : %d \n",
                getIntFromRust(carrier_map, key, default_value));
    return getIntFromRust(carrier_map, key, default_value);
  }
  if (IsYes(get_int_item_exist(std::string(region), std::string(key)))) {
    std::printf("getCotaRegionCustIntFeature exist with the region : %d \n",
                getIntFromRust(region, key, default_value));
    return getIntFromRust(region, key, default_value);
  }
  std::printf("getCotaRegionCustIntFeature do not exist with the carrier or region : %d \n",
              getIntFromRust("DEFAULT", key, default_value));
  return getIntFromRust("DEFAULT", key, default_value);
}

float getCotaRegionCustFloatFeature(std::string key, float default_value) {
  std::string region = GetProperty("ro.orvel.region", "");
  std::string carrier = GetProperty("persist.sys.cota.carrier", "");
  std::string carrier_and_region_map = "COTA_" + carrier + "_" + region;
  std::string carrier_map = "COTA_" + carrier;
  if (IsYes(get_float_item_exist(std::string(carrier_and_region_map), std::string(key)))) {
    std::printf("getCotaRegionCustFloatFeature exist with the carrier & region : %f \n",
                getFloatFromRust(carrier_and_region_map, key, default_value));
    return getFloatFromRust(carrier_and_region_map, key, default_value);
  }
  if (IsYes(get_float_item_exist(std::string(carrier_map), std::string(key)))) {
    std::printf("getCotaRegionCustFloatFeature exist with the carrier : %f \n",
                getFloatFromRust(carrier_map, key, default_value));
    return getFloatFromRust(carrier_map, key, default_value);
  }
  if (IsYes(get_float_item_exist(std::string(region), std::string(key)))) {
    std::printf("getCotaRegionCustFloatFeature exist with the region : %f \n",
                getFloatFromRust(region, key, default_value));
    return getFloatFromRust(region, key, default_value);
  }
  std::printf("getCotaRegionCustFloatFeature do not exist with the carrier or region : %f \n",
              getFloatFromRust("DEFAULT", key, default_value));
  return getFloatFromRust("DEFAULT", key, default_value);
}

std::string getCotaRegionCustStringFeature(std::string key, std::string default_value) {
  std::string region = GetProperty("ro.orvel.region", "");
  std::string carrier = GetProperty("persist.sys.cota.carrier", "");
  std::string carrier_and_region_map = "COTA_" + carrier + "_" + region;
  std::string carrier_map = "COTA_" + carrier;
  if (IsYes(get_str_item_exist(std::string(carrier_and_region_map), std::string(key)))) {
    std::printf("getCotaRegionCustStringFeature exist with the carrier & region : %s \n",
                getStringFromRust(carrier_and_region_map, key, default_value).c_str());
    return getStringFromRust(carrier_and_region_map, key, default_value);
  }
  if (IsYes(get_str_item_exist(std::string(carrier_map), std::string(key)))) {
    std::printf("getCotaRegionCustStringFeature exist with the carrier : %s \n",
                getStringFromRust(carrier_map, key, default_value).c_str());
    return getStringFromRust(carrier_map, key, default_value);
  }
  if (IsYes(get_str_item_exist(std::string(region), std::string(key)))) {
    std::printf("getCotaRegionCustStringFeature exist with the region : %s \n",
                getStringFromRust(region, key, default_value).c_str());
    return getStringFromRust(region, key, default_value);
  }
  std::printf("getCotaRegionCustStringFeature do not exist with the carrier or region : %s \n",
              getStringFromRust("DEFAULT", key, default_value).c_str());
  return getStringFromRust("DEFAULT", key, default_value);
}

std::vector<std::string> getCotaRegionCustStringArrayFeature(std::string key) {
  std::string region = GetProperty("ro.orvel.region", "");
  std::string carrier = GetProperty("persist.sys.cota.carrier", "");
  std::string carrier_and_region_map = "COTA_" + carrier + "_" + region;
  std::string carrier_map = "COTA_" + carrier;
  if (IsYes(get_str_arr_item_exist(std::string(carrier_and_region_map), std::string(key)))) {
    std::puts("getCotaRegionCustStringArrayFeature exist with the carrier & region ! ");
    return getStringArrayFromRust(carrier_and_region_map, key);
  }
  if (IsYes(get_str_arr_item_exist(std::string(carrier_map), std::string(key)))) {
    std::puts("getCotaRegionCustStringArrayFeature exist with the carrier ! ");
    return getStringArrayFromRust(carrier_map, key);
  }
  if (IsYes(get_str_arr_item_exist(std::string(region), std::string(key)))) {
    std::puts("getCotaRegionCustStringArrayFeature exist with the region ! ");
    return getStringArrayFromRust(region, key);
  }
  std::puts("getCotaRegionCustStringArrayFeature do not exist with the carrier or region ! ");
  return getStringArrayFromRust("DEFAULT", key);
}

std::vector<std::pair<std::string, std::string>> getCotaRegionCustMapArrayFeature(std::string key) {
  std::string region = GetProperty("ro.orvel.region", "");
  std::string carrier = GetProperty("persist.sys.cota.carrier", "");
  std::string carrier_and_region_map = "COTA_" + carrier + "_" + region;
  std::string carrier_map = "COTA_" + carrier;
  if (IsYes(get_map_arr_item_exist(std::string(carrier_and_region_map), std::string(key)))) {
    std::puts("getCotaCustMapArrayFeature exist with the carrier & region ! ");
    return getMapFromRust(carrier_and_region_map, key);
  }
  if (IsYes(get_map_arr_item_exist(std::string(carrier_map), std::string(key)))) {
    std::puts("getCotaRegionCustStringArrayFeature exist with the carrier ! ");
    return getMapFromRust(carrier_map, key);
  }
  if (IsYes(get_map_arr_item_exist(std::string(region), std::string(key)))) {
    std::puts("getCotaRegionCustStringArrayFeature exist with the region ! ");
    return getMapFromRust(region, key);
  }
  std::puts("getCotaCustMapArrayFeature do not exist with the carrier or region ! ");
  return getMapFromRust("DEFAULT", key);
}

int getSimCustIntFeature(std::string key, int default_value) {
  std::string carrier = GetProperty("persist.sys.cota.carrier", "");
  std::string sim_map = "SIM_" + carrier;
  if (IsYes(sim_get_int_item_exist(std::string(sim_map), std::string(key)))) {
    std::printf("getSimCustIntFeature exist with the carrier : %d \n",
                getIntFromRust(sim_map, key, default_value));
    return getIntFromRust(sim_map, key, default_value);
  }
  if (IsYes(sim_get_int_item_exist(std::string("SIM_DEFAULT"), std::string(key)))) {
    std::printf("getSimCustIntFeature do not exist with the carrier : %d \n",
                getIntFromRust("SIM_DEFAULT", key, default_value));
    return getIntFromRust("SIM_DEFAULT", key, default_value);
  }
  return getCotaRegionCustIntFeature(key, default_value);
}

std::string getSimCustStringFeature(std::string key) {
  std::string carrier = GetProperty("persist.sys.cota.carrier", "");
  std::string sim_map = "SIM_" + carrier;
  if (IsYes(sim_get_str_item_exist(std::string(sim_map), std::string(key)))) {
    std::printf("getSimCustStringFeature exist with the carrier : %s \n",
                getStringFromRust(sim_map, key, "").c_str());
    return getStringFromRust(sim_map, key, "");
  }
  if (IsYes(sim_get_str_item_exist(std::string("SIM_DEFAULT"), std::string(key)))) {
    std::printf("getSimCustStringFeature do not exist with the carrier : %s \n",
                getStringFromRust("SIM_DEFAULT", key, "").c_str());
    return getStringFromRust("SIM_DEFAULT", key, "");
  }
  return getCotaRegionCustStringFeature(key, "");
}

std::vector<std::string> getSimCustStringArrayFeature(std::string key) {
  std::string carrier = GetProperty("persist.sys.cota.carrier", "");
  std::string sim_map = "SIM_" + carrier;
  if (IsYes(sim_get_str_arr_item_exist(std::string(sim_map), std::string(key)))) {
    std::puts("getSimCustStringArrayFeature exist with the carrier ! ");
    return getStringArrayFromRust(sim_map, key);
  }
  if (IsYes(sim_get_str_arr_item_exist(std::string("SIM_DEFAULT"), std::string(key)))) {
    std::puts("getSimCustStringArrayFeature do not exist with the carrier ! ");
    return getStringArrayFromRust("SIM_DEFAULT", key);
  }
  return getCotaRegionCustStringArrayFeature(key);
}

std::vector<std::pair<std::string, std::string>> getSimCustMapArrayFeature(std::string key) {
  std::string carrier = GetProperty("persist.sys.cota.carrier", "");
  std::string sim_map = "SIM_" + carrier;
  if (IsYes(sim_get_map_arr_item_exist(std::string(sim_map), std::string(key)))) {
    std::puts("getSimCustMapArrayFeature exist with the carrier ! ");
    return getMapFromRust(sim_map, key);
  }
  if (IsYes(sim_get_map_arr_item_exist(std::string("SIM_DEFAULT"), std::string(key)))) {
    std::puts("getSimCustMapArrayFeature do not exist with the carrier ! ");
    return getMapFromRust("SIM_DEFAULT", key);
  }
  return getCotaRegionCustMapArrayFeature(key);
}

}  // namespace android
