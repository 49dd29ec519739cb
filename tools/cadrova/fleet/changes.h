// The devices that get different results from different data.
#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "fleet/feature_index.h"
#include "fleet/results.h"

namespace cadrova::tools {

// The results of some devices before and after a change of the data.
struct Change {
  const Result* before;
  const Result* after;
  std::vector<std::pair<std::size_t, std::size_t>> devices;  // positions of region and carrier
};

// The changes of one feature. They contain pointers to `before` and `after`.
std::vector<Change> FindChanges(const FleetChains& chains, const Results& before,
                                const Results& after);

// The results of each feature with the current data of the core. None if the family has no lookup
// of the kind.
std::vector<std::optional<Results>> CollectAll(const FleetChains& chains,
                                               const std::vector<Feature>& features);

}  // namespace cadrova::tools
