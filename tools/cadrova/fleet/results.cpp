#include "fleet/results.h"

#include <algorithm>
#include <map>
#include <string_view>
#include <unordered_set>

#include "common/json_text.h"
#include "common/text.h"
#include "failure.h"
#include "lookup/recording.h"
#include "output/capture.h"
#include "output/progress.h"

namespace cadrova::tools {
namespace {

// Two different codes that no map name of the library contains.
constexpr char kRegionMark = '\x01', kCarrierMark = '\x02';

}  // namespace

bool IsSame(const Result& one, const Result& other) {
  // Compared as text, so that NaN is equal to NaN.
  return one.map.has_value() == other.map.has_value() &&
         ToJsonText(one.value) == ToJsonText(other.value);
}

std::pair<const Result*, std::uint32_t> Results::Find(ChainMaps chain, std::uint32_t first) const {
  for (const auto& [id, position] : chain) {
    if (position < first) continue;
    const auto found = by_map_.find(id);
    if (found != by_map_.end()) return {&found->second, position};
  }
  return {&missing_, kNoPosition};
}

FleetChains::FleetChains(const Family& family, const Fleet& fleet,
                         const std::vector<std::string>* maps)
    : family_(family), fleet_(fleet) {
  DiscardStdout([&] { RecordPatterns(); });
  ComposeChains(maps);
}

void FleetChains::RecordPatterns() {
  OverrideProperty(kRegionCode, std::string(1, kRegionMark));
  OverrideProperty(kCarrierCode, std::string(1, kCarrierMark));
  const Chain chain = RecordWholeChain(MakeQuery(family_, Kind::kInt, ""));
  if (!chain.IsRead()) throw Failure("the chain is unknown: no value was read from the core");
  for (const auto& [name, is_sim] : chain.maps()) {
    const bool has_region = name.find(kRegionMark) != std::string::npos;
    const bool has_carrier = name.find(kCarrierMark) != std::string::npos;
    patterns_.push_back({name, is_sim, has_region, has_carrier});
  }
  CompareSample();
}

// Compares devices until each code of a device was in one of them. The devices of a diagonal have
// different regions and different carriers.
void FleetChains::CompareSample() const {
  std::vector<bool> regions(fleet_.regions.size()), carriers(fleet_.carriers.size());
  std::size_t left = regions.size() + carriers.size();
  for (std::size_t diagonal = 0; diagonal < carriers.size() && left > 0; ++diagonal) {
    for (std::size_t region = 0; region < regions.size(); ++region) {
      const std::size_t carrier = (region + diagonal) % carriers.size();
      if (!fleet_.Has(region, carrier) || (regions[region] && carriers[carrier])) continue;
      CompareWithLibrary(region, carrier);
      left -= (regions[region] ? 0U : 1U) + (carriers[carrier] ? 0U : 1U);
      regions[region] = carriers[carrier] = true;
    }
  }
}

void FleetChains::CompareWithLibrary(std::size_t region, std::size_t carrier) const {
  SetCodes(region, carrier);
  const Chain chain = RecordWholeChain(MakeQuery(family_, Kind::kInt, ""));
  const auto is_same = [&](const ConsultedMap& map, const Pattern& pattern) {
    return map.name == NameOf(pattern, region, carrier) && map.is_sim == pattern.is_sim;
  };
  if (std::ranges::equal(chain.maps(), patterns_, is_same)) return;
  throw Failure("the library composes the map names of region " +
                DisplayName(fleet_.regions[region]) + " and carrier " +
                DisplayName(fleet_.carriers[carrier]) +
                " in another way than those of other codes");
}

std::string FleetChains::NameOf(const Pattern& pattern, std::size_t region,
                                std::size_t carrier) const {
  std::string name;
  for (const char byte : pattern.name) {
    if (byte == kRegionMark) {
      name += fleet_.regions[region];
    } else if (byte == kCarrierMark) {
      name += fleet_.carriers[carrier];
    } else {
      name += byte;
    }
  }
  return name;
}

void FleetChains::ComposeChains(const std::vector<std::string>* maps) {
  std::unordered_set<std::string_view> existing;
  if (maps != nullptr) existing.insert(maps->begin(), maps->end());
  constexpr std::uint32_t kNoMap = -1;
  const auto id_of = [&](const Pattern& pattern, std::size_t region, std::size_t carrier) {
    const std::string name = NameOf(pattern, region, carrier);
    if (maps != nullptr && !existing.contains(name)) return kNoMap;
    const auto next = static_cast<std::uint32_t>(maps_.size());
    const auto [entry, is_new] = ids_[pattern.is_sim ? 1 : 0].try_emplace(name, next);
    if (is_new) maps_.push_back({name, pattern.is_sim, region, carrier});
    Map& map = maps_[entry->second];
    if (pattern.has_both()) {
      map.devices.push_back(region * fleet_.carriers.size() + carrier);
    } else if (pattern.has_region) {
      map.regions.push_back(region);
    } else if (pattern.has_carrier) {
      map.carriers.push_back(carrier);
    }
    return entry->second;
  };
  // The ids of maps with at most one code in their names, by pattern and code.
  std::vector<std::vector<std::optional<std::uint32_t>>> known(patterns_.size());
  for (auto& ids : known) ids.resize(std::max(fleet_.regions.size(), fleet_.carriers.size()));
  Progress progress("composing the chain of each device");
  for (std::size_t region = 0; region < fleet_.regions.size(); ++region) {
    progress.Show(region, fleet_.regions.size());
    for (std::size_t carrier = 0; carrier < fleet_.carriers.size(); ++carrier) {
      for (std::uint32_t i = 0; i < patterns_.size() && fleet_.Has(region, carrier); ++i) {
        const Pattern& pattern = patterns_[i];
        auto& id = known[i][pattern.has_region ? region : pattern.has_carrier ? carrier : 0];
        if (!id || pattern.has_both()) id = id_of(pattern, region, carrier);
        if (*id != kNoMap) chains_.push_back({*id, i});
      }
      ends_.push_back(chains_.size());
    }
  }
}

// Devices differ only if one of the maps is named by their codes. So each such code is compared
// with each other one, and with one of the rest; devices with a map of their own are compared
// alone.
std::vector<ChainMaps> FleetChains::DistinctChains(
    std::initializer_list<const Results*> results) const {
  std::vector<std::uint32_t> regions(fleet_.regions.size()), carriers(fleet_.carriers.size());
  std::uint32_t region_count = 1, carrier_count = 1;  // 0 is the number of the rest
  std::vector<std::size_t> devices;
  for (const Results* some : results) {
    for (const auto& [id, result] : some->by_map()) {
      const Map& map = maps_[id];
      for (const std::size_t region : map.regions) {
        if (regions[region] == 0) regions[region] = region_count++;
      }
      for (const std::size_t carrier : map.carriers) {
        if (carriers[carrier] == 0) carriers[carrier] = carrier_count++;
      }
      devices.insert(devices.end(), map.devices.begin(), map.devices.end());
    }
  }
  std::ranges::sort(devices);
  std::vector<ChainMaps> chains;
  chains.reserve(devices.size());
  for (const std::size_t device : devices) {
    chains.push_back(Get(device / carriers.size(), device % carriers.size()));
  }
  std::size_t missing = std::size_t{region_count} * carrier_count;
  std::vector<bool> is_known(missing);
  for (std::size_t region = 0; region < regions.size() && missing > 0; ++region) {
    for (std::size_t carrier = 0; carrier < carriers.size(); ++carrier) {
      auto known = is_known[regions[region] * std::size_t{carrier_count} + carriers[carrier]];
      if (known || !fleet_.Has(region, carrier)) continue;
      if (std::ranges::binary_search(devices, region * carriers.size() + carrier)) continue;
      known = true;
      --missing;
      chains.push_back(Get(region, carrier));
    }
  }
  return chains;
}

std::vector<std::string> FleetChains::MapNames() const {
  std::vector<std::string> names(maps_.size());
  std::ranges::transform(maps_, names.begin(), &Map::name);
  return names;
}

std::vector<std::uint32_t> FleetChains::IdsOf(const std::vector<std::string>* names) const {
  std::vector<std::uint32_t> found;
  if (names == nullptr) {
    for (std::uint32_t id = 0; id < maps_.size(); ++id) found.push_back(id);
    return found;
  }
  for (const std::string& name : *names) {
    for (const auto& ids : ids_) {
      if (const auto id = ids.find(name); id != ids.end()) found.push_back(id->second);
    }
  }
  return found;
}

Results FleetChains::Collect(Kind kind, const std::string& key,
                             const std::vector<std::string>* maps) const {
  const Query query = MakeQuery(family_, kind, key);
  Results results;
  bool is_stable = true;
  DiscardStdout([&] {
    std::unordered_map<std::uint32_t, Result> by_map;
    if (!maps_.empty()) SetCodes(maps_[0].region, maps_[0].carrier);
    Result missing = LookUpAsIfOnlyIn(nullptr, query, is_stable);
    // The last map of the chain, which lookups read without an existence test.
    if (missing.map) by_map.emplace(ids_[0].at(*missing.map), missing);
    for (const std::uint32_t id : IdsOf(maps)) {
      const Map& map = maps_[id];
      if (by_map.contains(id)) continue;
      if (!CoreContains(ExistenceTestOf(kind, map.is_sim), map.name, key)) continue;
      Result result = LookUpAsIfOnlyIn(&map, query, is_stable);
      if (result.map == map.name) {
        by_map.emplace(id, std::move(result));
      } else {
        is_stable = false;
      }
    }
    results = Results(std::move(by_map), std::move(missing), is_stable);
  });
  return results;
}

void FleetChains::SetCodes(std::size_t region, std::size_t carrier) const {
  OverrideProperty(kRegionCode, fleet_.regions[region]);
  OverrideProperty(kCarrierCode, fleet_.carriers[carrier]);
}

Result FleetChains::LookUpAsIfOnlyIn(const Map* map, const Query& query, bool& is_stable) const {
  if (map != nullptr) SetCodes(map->region, map->carrier);
  Chain chain;
  Result result;
  std::string first_reading;
  const auto observe = [&](DeviceCall& call) {
    const bool is_map = map != nullptr && call.name == map->name &&
                        (call.type == DeviceCall::Type::kSimTest) == map->is_sim;
    if (call.exists != nullptr && !is_map) *call.exists = 0;
    if (call.type == DeviceCall::Type::kRead) {
      const std::string reading = ReturnedValue(call);
      if (first_reading.empty()) first_reading = reading;
      if (reading != first_reading) is_stable = false;
    }
    chain.Add(call);
  };
  Observe(observe, [&] { result.value = query.Run(); });
  if (const auto* source = SourceOf(chain, result.value, query)) result.map = source->name;
  return result;
}

}  // namespace cadrova::tools
