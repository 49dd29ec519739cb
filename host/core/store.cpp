#include "store.h"

#include <algorithm>

namespace cadrova::host {

void Store::AppendItems(std::vector<Contents::Item>& items) const {
  std::vector<const decltype(items_)::value_type*> sorted;
  sorted.reserve(items_.size());
  for (const auto& item : items_) sorted.push_back(&item);
  std::ranges::sort(sorted, {},
                    [](const auto* item) { return std::tie(item->first.map, item->first.key); });
  items.reserve(items.size() + sorted.size());
  for (const auto* entry : sorted) {
    const auto& [id, item] = *entry;
    std::vector<Kind> kinds = {static_cast<Kind>(item.value.index())};
    if (std::holds_alternative<EmptyList>(item.value)) {
      kinds = {Kind::kStringArray, Kind::kIntArray, Kind::kMapArray};
    }
    items.push_back({id.map, id.key, std::move(kinds), item.place});
  }
}

}  // namespace cadrova::host
