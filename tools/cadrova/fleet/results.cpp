#include "fleet/results.h"

#include <algorithm>

#include "common/json_text.h"
#include "failure.h"
#include "lookup/recording.h"
#include "output/capture.h"
#include "output/progress.h"

namespace cadrova::tools {

bool IsSame(const Result& one, const Result& other) {
  // Compared as text, so that NaN is equal to NaN.
  return one.map.has_value() == other.map.has_value() &&
         ToJsonText(one.value) == ToJsonText(other.value);
}

std::pair<const Result*, std::size_t> Results::Find(MapIds chain) const {
  for (std::size_t position = 0; position < chain.size(); ++position) {
    const auto found = by_map_.find(chain[position]);
    if (found != by_map_.end()) return {&found->second, position};
  }
  return {&missing_, chain.size()};
}

bool Results::AreSame(const Results& others) const {
  const auto is_same = [&](const auto& entry) {
    const auto found = others.by_map_.find(entry.first);
    return found != others.by_map_.end() && IsSame(entry.second, found->second);
  };
  return by_map_.size() == others.by_map_.size() && std::ranges::all_of(by_map_, is_same);
}

FleetChains::FleetChains(const Family& family, const Fleet& fleet)
    : family_(family), fleet_(fleet) {
  const Query query = MakeQuery(family, Kind::kInt, "");
  Progress progress("recording the chain of each device");
  DiscardStdout([&] {
    for (std::size_t device = 0; device < fleet_.size(); ++device) {
      progress.Show(device, fleet_.size());
      SetCodes(device);
      const Chain chain = RecordWholeChain(query);
      if (!chain.IsRead()) throw Failure("the chain is unknown: no value was read from the core");
      for (const auto& [name, is_sim] : chain.maps()) {
        chains_.push_back(IdOf(name, is_sim, device));
      }
      ends_.push_back(chains_.size());
    }
  });
}

MapIds FleetChains::Get(std::size_t region, std::size_t carrier) const {
  const std::size_t device = region * fleet_.carriers.size() + carrier;
  return MapIds(chains_).subspan(ends_[device], ends_[device + 1] - ends_[device]);
}

std::vector<std::string> FleetChains::MapNames() const {
  std::vector<std::string> names(maps_.size());
  std::ranges::transform(maps_, names.begin(), &Map::name);
  return names;
}

Results FleetChains::Collect(Kind kind, const std::string& key,
                             const std::vector<std::string>* maps) const {
  const Query query = MakeQuery(family_, kind, key);
  std::vector<std::uint32_t> candidates;
  if (maps == nullptr) {
    for (std::uint32_t id = 0; id < maps_.size(); ++id) candidates.push_back(id);
  } else {
    for (const std::string& map : *maps) {
      for (const auto& ids : ids_) {
        if (const auto found = ids.find(map); found != ids.end()) {
          candidates.push_back(found->second);
        }
      }
    }
  }
  Results results;
  bool is_stable = true;
  DiscardStdout([&] {
    std::unordered_map<std::uint32_t, Result> by_map;
    Result missing = LookUpAsIfOnlyIn(nullptr, query, is_stable);
    // The last map of the chain, which lookups read without an existence test.
    if (missing.map) by_map.emplace(ids_[0].at(*missing.map), missing);
    for (const std::uint32_t id : candidates) {
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

std::uint32_t FleetChains::IdOf(const std::string& map, bool is_sim, std::size_t device) {
  const auto id = static_cast<std::uint32_t>(maps_.size());
  const auto [entry, is_new] = ids_[is_sim ? 1 : 0].try_emplace(map, id);
  if (is_new) maps_.push_back({map, is_sim, device});
  return entry->second;
}

void FleetChains::SetCodes(std::size_t device) const {
  OverrideProperty(kRegionCode, fleet_.regions[device / fleet_.carriers.size()]);
  OverrideProperty(kCarrierCode, fleet_.carriers[device % fleet_.carriers.size()]);
}

Result FleetChains::LookUpAsIfOnlyIn(const Map* map, const Query& query, bool& is_stable) const {
  SetCodes(map == nullptr ? 0 : map->device);
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
