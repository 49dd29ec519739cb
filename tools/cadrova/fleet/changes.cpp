#include "fleet/changes.h"

#include <map>

#include "output/progress.h"

namespace cadrova::tools {

std::vector<Change> FindChanges(const FleetChains& chains, const Results& before,
                                const Results& after) {
  std::vector<Change> changes;
  if (before.AreSame(after)) return changes;
  constexpr std::size_t kNoChange = -1;
  std::map<std::pair<const Result*, const Result*>, std::size_t> numbers;
  for (std::size_t region = 0; region < chains.fleet().regions.size(); ++region) {
    for (std::size_t carrier = 0; carrier < chains.fleet().carriers.size(); ++carrier) {
      const MapIds chain = chains.Get(region, carrier);
      const std::pair results(&before.Get(chain), &after.Get(chain));
      const auto [number, is_new] = numbers.try_emplace(results, kNoChange);
      if (is_new && !IsSame(*results.first, *results.second)) {
        number->second = changes.size();
        changes.push_back({results.first, results.second, {}});
      }
      if (number->second != kNoChange)
        changes[number->second].devices.emplace_back(region, carrier);
    }
  }
  return changes;
}

std::vector<std::optional<Results>> CollectAll(const FleetChains& chains,
                                               const std::vector<Feature>& features) {
  std::vector<std::optional<Results>> results(features.size());
  Progress progress("looking up each feature");
  for (std::size_t i = 0; i < features.size(); ++i) {
    progress.Show(i, features.size());
    const auto& [key, kind, maps] = features[i];
    if (chains.family().Has(kind)) results[i] = chains.Collect(kind, key, &maps);
  }
  return results;
}

}  // namespace cadrova::tools
