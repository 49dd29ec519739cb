#include "fleet/key_chains.h"

#include <algorithm>
#include <functional>
#include <utility>

#include "common/json_text.h"

namespace cadrova::tools {

KeyChains::KeyChains(const std::vector<std::string_view>& maps) : chains_of_(maps.size()) {
  for (std::size_t i = 0; i < maps.size(); ++i) numbers_.emplace(maps[i], i);
}

void KeyChains::Add(const FleetChains& chains, const Results& results, bool is_judged) {
  for (const ChainMaps& maps : chains.DistinctChains({&results})) {
    Chain chain;
    for (const auto& [id, position] : maps) {
      const auto result = results.by_map().find(id);
      if (result == results.by_map().end()) continue;
      const std::size_t item = numbers_.at(chains.MapName(id));
      chain.push_back({item, NumberOf(result->second)});
      auto& [containing, distance] = chains_of_[item];
      if (is_judged) containing.push_back(chains_.size());
      distance = std::max(distance, chains.length() - position);
    }
    if (!is_judged) continue;
    chains_.push_back(std::move(chain));
    missing_values_.push_back(NumberOf(results.missing()));
  }
}

std::vector<std::size_t> KeyChains::FindRedundant(std::size_t item_in_default) const {
  std::vector<std::size_t> order, redundant;
  for (std::size_t item = 0; item < chains_of_.size(); ++item) {
    if (item != item_in_default && chains_of_[item].distance > 0) order.push_back(item);
  }
  std::ranges::sort(order, std::less(), [&](std::size_t item) {
    return std::pair(-static_cast<std::ptrdiff_t>(chains_of_[item].distance), item);
  });
  std::vector<bool> is_removed(chains_of_.size());
  // Repeated, because an item that was needed may no longer be so when others are removed.
  for (bool is_repeated = true; is_repeated;) {
    is_repeated = false;
    for (const std::size_t item : order) {
      const auto is_needed_in = [&](std::size_t chain) {
        return IsNeeded(item, chain, is_removed);
      };
      if (is_removed[item] || std::ranges::any_of(chains_of_[item].chains, is_needed_in)) continue;
      is_removed[item] = is_repeated = true;
      redundant.push_back(item);
    }
  }
  return redundant;
}

std::size_t KeyChains::NumberOf(const Result& result) {
  const std::string text = result.map ? ToJsonText(result.value) : "";
  return values_.try_emplace(text, values_.size()).first->second;
}

bool KeyChains::IsNeeded(std::size_t item, std::size_t number,
                         const std::vector<bool>& is_removed) const {
  const Chain& chain = chains_[number];
  const auto is_left = [&](const Entry& entry) { return !is_removed[entry.item]; };
  const auto source = std::ranges::find_if(chain, is_left);
  if (source->item != item) return false;
  // A chain may contain the same map twice.
  const auto next = std::find_if(source, chain.end(), [&](const Entry& entry) {
    return is_left(entry) && entry.item != item;
  });
  return source->value != (next == chain.end() ? missing_values_[number] : next->value);
}

}  // namespace cadrova::tools
