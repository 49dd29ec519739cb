#include "fleet/changes.h"

#include <algorithm>
#include <map>
#include <variant>

#include "common/json_text.h"
#include "common/text.h"

namespace cadrova::tools {

std::vector<Change> FindChanges(const FleetChains& chains, const Results& before,
                                const Results& after) {
  const auto is_changed = [&](ChainMaps chain) {
    return !IsSame(before.Get(chain), after.Get(chain));
  };
  std::vector<Change> changes;
  if (std::ranges::none_of(chains.DistinctChains({&before, &after}), is_changed)) return changes;
  constexpr std::size_t kNoChange = -1;
  std::map<std::pair<const Result*, const Result*>, std::size_t> numbers;
  for (std::size_t region = 0; region < chains.fleet().regions.size(); ++region) {
    for (std::size_t carrier = 0; carrier < chains.fleet().carriers.size(); ++carrier) {
      if (!chains.fleet().Has(region, carrier)) continue;
      const ChainMaps chain = chains.Get(region, carrier);
      const std::pair results(&before.Get(chain), &after.Get(chain));
      const auto [number, is_new] = numbers.try_emplace(results, kNoChange);
      if (is_new && is_changed(chain)) {
        number->second = changes.size();
        changes.push_back({results.first, results.second, {}});
      }
      if (number->second != kNoChange)
        changes[number->second].devices.emplace_back(region, carrier);
    }
  }
  return changes;
}

std::optional<ElementChanges> CompareElements(const Value& before, const Value& after) {
  const auto compare = [&]<class T>(const T& old_list) -> std::optional<ElementChanges> {
    if constexpr (kIsList<T>) {
      ElementChanges changes;
      for (const auto& element : old_list) changes.removed.push_back(ToJsonText(element));
      for (const auto& element : std::get<T>(after)) {
        const std::string text = ToJsonText(element);
        const auto found = std::ranges::find(changes.removed, text);
        if (found == changes.removed.end()) {
          changes.added.push_back(text);
        } else {
          changes.removed.erase(found);
        }
      }
      return changes;
    }
    return std::nullopt;
  };
  return std::visit(compare, before);
}

}  // namespace cadrova::tools
