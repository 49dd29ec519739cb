#include "commands/shared_options.h"

#include <algorithm>
#include <utility>

#include "cadrova/cadrova.h"
#include "common/text.h"
#include "failure.h"
#include "lookup/data_source.h"
#include "lookup/recording.h"

namespace cadrova::tools {
namespace {

std::vector<std::string> SplitCodes(const std::string& text) {
  std::vector<std::string> codes;
  std::size_t begin = 0;
  for (std::size_t comma = 0; comma != std::string::npos; begin = comma + 1) {
    comma = text.find(',', begin);
    std::string code = text.substr(begin, comma - begin);
    if (std::ranges::find(codes, code) == codes.end()) codes.push_back(std::move(code));
  }
  return codes;
}

}  // namespace

void DataOption::DeclareOptions(Options& options) {
  options.Add("--data", file_, "FILE", "Customization file for the fake core");
}

void DataOption::Apply() const {
  if (file_) LoadData(*file_);
}

void QueryOptions::DeclareOptions(Options& options) {
  options.AddRequired("FAMILY", family_, FamilyNames());
  options.AddRequired("KIND", kind_, KindNames());
  options.AddRequired("KEY", key_, "Key of the feature");
  options.Add("DEFAULT", default_, "", "Result for a missing item (default: false, 0, 0 or \"\")");
  data_.DeclareOptions(options);
  options.Add("--region", region_, "CODE", "Region code (default: from the property store)");
  options.Add("--carrier", carrier_, "CODE", "Carrier code (default: from the property store)");
  options.AddRepeatable("--sim", sim_items_, "KEY=VALUE",
                        "SIM item to set in the fake core; repeatable");
}

Query QueryOptions::Apply() const {
  const Query query = MakeQuery(family_, kind_, key_, default_);
  data_.Apply();
  if (region_) OverrideProperty(kRegionCode, *region_);
  if (carrier_) OverrideProperty(kCarrierCode, *carrier_);
  if (!sim_items_.empty() && !HasFakeCore()) {
    throw Failure("--sim needs the fake core; this core may keep the item for other programs");
  }
  for (const std::string& item : sim_items_) {
    const std::size_t equals = item.find('=');
    if (equals == std::string::npos) throw Failure("--sim: '" + item + "' is not KEY=VALUE");
    android::setSimCadrova(item.substr(0, equals), item.substr(equals + 1));
  }
  return query;
}

void FleetOptions::DeclareOptions(Options& options) {
  options.Add("--regions", regions_, "CODES",
              "Regions, comma-separated (default: all in the data)");
  options.Add("--carriers", carriers_, "CODES",
              "Carriers, comma-separated (default: all in the data)");
}

Fleet FleetOptions::ToFleet(const std::vector<std::string>& map_names) const {
  Fleet fleet = FleetOf(map_names);
  if (regions_) fleet.regions = SplitCodes(*regions_);
  if (carriers_) fleet.carriers = SplitCodes(*carriers_);
  return fleet;
}

void RefuseCombination(const std::vector<std::pair<std::string, bool>>& options) {
  std::vector<std::string> given;
  for (const auto& [name, is_given] : options) {
    if (is_given) given.push_back(name);
  }
  if (given.size() > 1) throw Failure(Join(given, " and ") + " can't be combined");
}

}  // namespace cadrova::tools
