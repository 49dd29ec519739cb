// The maps that lookups pass over, because they contain the key as another kind.
#pragma once

#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

#include "fleet/feature_index.h"
#include "fleet/results.h"

namespace cadrova::tools {

// A map that contains a key, but only as other kinds.
struct PassedOver {
  std::string map;
  std::string kinds;  // "string, not int"
};

// By the ids of the maps.
using PassedOverMaps = std::unordered_map<std::uint32_t, PassedOver>;

// Such maps for a feature with these results. With `maps`, only these maps are tested.
PassedOverMaps FindPassedOver(const FleetChains& chains, const Results& results, Kind kind,
                              const std::string& key,
                              const std::vector<std::string>* maps = nullptr);

// The maps that contain the key of a feature as other kinds. `features` are sorted by key.
std::vector<std::string> MapsOfOtherKinds(const std::vector<Feature>& features,
                                          std::size_t feature);

}  // namespace cadrova::tools
