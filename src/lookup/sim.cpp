// SIM lookups: what the SIM of the device's carrier says, or else any SIM's customization, or else
// the carrier-and-region lookup of the same kind; and the hand-over of SIM customization.
//
//   1. "SIM_" and the carrier code
//   2. "SIM_DEFAULT"; a carrier code DEFAULT names that map too, and it is asked twice
//   3. the whole carrier-and-region chain, which prints its own line
//
// There is no lookup for floats: the core has no SIM existence test for them.

#include "bridge/ask.h"
#include "lookup/lookup.h"

namespace android {
namespace {

constexpr std::size_t kLineSize = 64;
template <class Value>
using SimLine = Line<Value, kLineSize>;

// The place of each map's line.
enum : unsigned {
  kInCarrierSim = 0 * kLineSize,
  kInAnySim = 1 * kLineSize,
  kNowhere = 2 * kLineSize
};

Answer Sim(cadrova_existence_test* exists, const std::string& key) {
  std::string sim_map = Joined("SIM_", CarrierCode());
  if (Holds(exists, sim_map, key)) return {std::move(sim_map), kInCarrierSim};
  std::string any_sim_map = "SIM_DEFAULT";
  if (Holds(exists, any_sim_map, key)) return {std::move(any_sim_map), kInAnySim};
  return {"", kNowhere};
}

template <auto last_resort, class Value, std::size_t Size, std::size_t Count, class... Given>
Value LookupInSim(Lines<Value, Size, Count>& lines, cadrova_existence_test* exists,
                  const std::string& key, const Given&... default_value) {
  const Answer answer = Sim(exists, key);
  if (answer.line == kNowhere) return last_resort(key, default_value...);
  return Report<Value>(answer, lines->text, key, default_value...);
}

}  // namespace

// A "do not exist" line here says that the carrier's SIM map lacks the item. It is printed where
// "SIM_DEFAULT" does hold it, and is meant to be.

bool getSimCustBooleanFeature(std::string key, bool default_value) {
  static constexpr SimLine<bool> kLines[] = {
      "getSimCustBooleanFeature exist with the carrier : %d \n",
      "getSimCustBooleanFeature do not exist with the carrier : %d \n"};
  return LookupInSim<getCotaRegionCustBooleanFeature>(kLines, sim_get_bool_item_exist, key,
                                                      default_value);
}

int getSimCustIntFeature(std::string key, int default_value) {
  static constexpr SimLine<int> kLines[] = {
      "getSimCustIntFeature exist with the carrier : %d \n",
      "getSimCustIntFeature do not exist with the carrier : %d \n"};
  return LookupInSim<getCotaRegionCustIntFeature>(kLines, sim_get_int_item_exist, key,
                                                  default_value);
}

std::string getSimCustStringFeature(std::string key) {
  static constexpr SimLine<std::string> kLines[] = {
      "getSimCustStringFeature exist with the carrier : %s \n",
      "getSimCustStringFeature do not exist with the carrier : %s \n"};
  return LookupInSim<getCotaRegionCustStringFeature>(kLines, sim_get_str_item_exist, key, "");
}

std::vector<std::string> getSimCustStringArrayFeature(std::string key) {
  static constexpr SimLine<StringArray> kLines[] = {
      "getSimCustStringArrayFeature exist with the carrier ! ",
      "getSimCustStringArrayFeature do not exist with the carrier ! "};
  return LookupInSim<getCotaRegionCustStringArrayFeature>(kLines, sim_get_str_arr_item_exist, key);
}

std::vector<int> getSimCustIntArrayFeature(std::string key) {
  static constexpr SimLine<IntArray> kLines[] = {
      "getSimCustIntArrayFeature exist with the carrier ! ",
      "getSimCustIntArrayFeature do not exist with the carrier ! "};
  return LookupInSim<getCotaRegionCustIntArrayFeature>(kLines, sim_get_int_arr_item_exist, key);
}

std::vector<std::pair<std::string, std::string>> getSimCustMapArrayFeature(std::string key) {
  static constexpr SimLine<MapArray> kLines[] = {
      "getSimCustMapArrayFeature exist with the carrier ! ",
      "getSimCustMapArrayFeature do not exist with the carrier ! "};
  return LookupInSim<getCotaRegionCustMapArrayFeature>(kLines, sim_get_map_arr_item_exist, key);
}

void setSimCadrova(std::string first, std::string second) {
  Ask(cxx_sim_set_the_cadrova, "SIM_DEFAULT", first, second);
  // Only now is the carrier code read, and handed over bare: the "SIM_" that the lookups put in
  // front of it does not belong here.
  Ask(cxx_sim_set_the_cadrova, CarrierCode(), first, second);
}

}  // namespace android
