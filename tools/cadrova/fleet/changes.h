// The devices that get different results from different data.
#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

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

// The elements that only one of two lists contains, as JSON, in the order of the lists. An element
// that a list contains twice counts twice.
struct ElementChanges {
  std::vector<std::string> removed, added;
};
// Nothing if the values are no lists.
std::optional<ElementChanges> CompareElements(const Value& before, const Value& after);

}  // namespace cadrova::tools
