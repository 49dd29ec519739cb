#include "store.h"

namespace cadrova::host {

void Store::AppendItems(std::vector<Contents::Item>& items) const {
  items.reserve(items.size() + items_.size());
  for (const auto& [id, item] : items_) {
    std::vector<Kind> kinds = {static_cast<Kind>(item.value.index())};
    if (std::holds_alternative<EmptyList>(item.value)) {
      kinds = {Kind::kStringArray, Kind::kIntArray, Kind::kMapArray};
    }
    items.push_back({id.map, id.key, std::move(kinds), item.place});
  }
}

}  // namespace cadrova::host
