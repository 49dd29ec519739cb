#include "fleet/feature_index.h"

#include <algorithm>
#include <map>
#include <set>
#include <string_view>
#include <tuple>

namespace cadrova::tools {

using host::Contents;
using host::Kind;

std::vector<Feature> IndexFeatures(std::initializer_list<const Contents*> all_contents) {
  struct KeyInfo {
    std::set<Kind> kinds;  // of all items except empty lists
    std::vector<const Contents::Item*> items;
  };
  std::map<std::string_view, KeyInfo> keys;
  for (const Contents* contents : all_contents) {
    for (const Contents::Item& item : contents->items) {
      auto& [kinds, items] = keys[item.key];
      if (item.kinds.size() == 1) kinds.insert(item.kinds[0]);
      items.push_back(&item);
    }
  }
  std::vector<Feature> features;
  for (auto& [key, info] : keys) {
    for (const auto* item : info.items) {
      const bool is_known =
          std::ranges::any_of(item->kinds, [&](Kind kind) { return info.kinds.contains(kind); });
      if (!is_known) info.kinds.insert(item->kinds.begin(), item->kinds.end());
    }
    for (const Kind kind : info.kinds) {
      Feature& feature = features.emplace_back(Feature{std::string(key), kind, {}});
      auto items = info.items;
      std::erase_if(items, [&](const auto* item) {
        return std::ranges::find(item->kinds, kind) == item->kinds.end();
      });
      // Maps that occur in several contents are listed once.
      std::ranges::sort(items, {}, [](const auto* item) {
        return std::tuple(std::string_view(item->map), item->place.line, item->place.column);
      });
      const auto duplicates = std::ranges::unique(items, {}, &Contents::Item::map);
      items.erase(duplicates.begin(), duplicates.end());
      for (const auto* item : items) {
        feature.maps.push_back(item->map);
        feature.places.push_back(item->place);
      }
    }
  }
  return features;
}

std::vector<std::string> MapNames(const Contents& contents) {
  std::vector<std::string> names(contents.maps.size());
  std::ranges::transform(contents.maps, names.begin(), &Contents::Map::name);
  return names;
}

std::vector<std::string> Keys(const Contents& contents) {
  std::set<std::string> keys;
  for (const Contents::Item& item : contents.items) keys.insert(item.key);
  return {keys.begin(), keys.end()};
}

}  // namespace cadrova::tools
