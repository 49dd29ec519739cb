// Which devices get another result from other data.
#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "fleet/feature_index.h"
#include "fleet/results.h"

namespace cadrova::tools {

// What some devices got, and what they get now.
struct Change {
  const Result* before;
  const Result* after;
  std::vector<std::pair<std::size_t, std::size_t>> devices;  // region and carrier in the fleet
};

// The changes between two results of one feature. They refer to the results.
std::vector<Change> FindChanges(const FleetChains& chains, const Results& before,
                                const Results& after);

// The results of each feature over the data that the core has now; none for a kind that the family
// lacks.
std::vector<std::optional<Results>> CollectAll(const FleetChains& chains,
                                               const std::vector<Feature>& features);

}  // namespace cadrova::tools
