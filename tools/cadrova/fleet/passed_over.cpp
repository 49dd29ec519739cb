#include "fleet/passed_over.h"

#include <algorithm>
#include <functional>

#include "common/text.h"
#include "output/capture.h"

namespace cadrova::tools {

PassedOverMaps FindPassedOver(const FleetChains& chains, const Results& results, Kind kind,
                              const std::string& key, const std::vector<std::string>* maps) {
  PassedOverMaps found;
  if (maps != nullptr && maps->empty()) return found;
  DiscardStdout([&] {
    for (const std::uint32_t id : chains.IdsOf(maps)) {
      if (results.by_map().contains(id)) continue;
      std::vector<const char*> kinds;
      for (std::size_t i = 0; i < kKindCount; ++i) {
        const auto other = static_cast<Kind>(i);
        if (other == kind) continue;
        ExistenceTest* const test = ExistenceTestOf(other, chains.IsSim(id));
        if (CoreContains(test, chains.MapName(id), key)) kinds.push_back(ToString(other));
      }
      if (kinds.empty()) continue;
      found.emplace(id, PassedOver{chains.MapName(id), Join(kinds) + ", not " + ToString(kind)});
    }
  });
  return found;
}

std::vector<std::string> MapsOfOtherKinds(const std::vector<Feature>& features,
                                          std::size_t feature) {
  const auto& [key, kind, own_maps, own_places] = features[feature];
  std::vector<std::string> maps;
  for (const Feature& other : std::ranges::equal_range(features, key, {}, &Feature::key)) {
    std::ranges::set_difference(other.maps, own_maps, std::back_inserter(maps));
  }
  std::ranges::sort(maps);
  const auto duplicates = std::ranges::unique(maps);
  maps.erase(duplicates.begin(), duplicates.end());
  return maps;
}

}  // namespace cadrova::tools
