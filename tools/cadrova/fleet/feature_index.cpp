#include "fleet/feature_index.h"

#include <algorithm>
#include <map>
#include <set>

#include "common/value.h"

using cadrova::host::Inventory;
using cadrova::host::Kind;

std::vector<Feature> FeaturesOf(const Inventory& inventory) {
  struct Holders {
    std::set<Kind> kinds;  // that aren't only an empty list's
    std::vector<const Inventory::Item*> items;
  };
  std::map<std::string_view, Holders> holders;
  for (const Inventory::Item& item : inventory.items) {
    auto& [kinds, items] = holders[item.key];
    if (item.kinds.size() == 1) kinds.insert(item.kinds[0]);
    items.push_back(&item);
  }
  std::vector<Feature> features;
  for (auto& [key, held] : holders) {
    for (const auto* item : held.items) {
      const bool is_known =
          std::ranges::any_of(item->kinds, [&](Kind kind) { return held.kinds.contains(kind); });
      if (!is_known) held.kinds.insert(item->kinds.begin(), item->kinds.end());
    }
    for (const Kind kind : held.kinds) {
      Feature& feature = features.emplace_back();
      feature.key = key;
      feature.kind = cadrova::tools::kKindNames[static_cast<std::size_t>(kind)];
      for (const auto* item : held.items) {
        if (std::ranges::find(item->kinds, kind) != item->kinds.end()) {
          feature.maps.push_back(item->map);
        }
      }
      std::ranges::sort(feature.maps);
      const auto repeated = std::ranges::unique(feature.maps);
      feature.maps.erase(repeated.begin(), repeated.end());
    }
  }
  return features;
}

std::vector<std::string> MapsOf(const Inventory& inventory) {
  std::vector<std::string> names(inventory.maps.size());
  std::ranges::transform(inventory.maps, names.begin(), &Inventory::Map::name);
  return names;
}
