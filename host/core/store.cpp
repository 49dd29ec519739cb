#include "store.h"

namespace cadrova::host {

void Store::AppendTo(Contents& contents) const {
  contents.maps.insert(contents.maps.end(), maps_.begin(), maps_.end());
  contents.items.reserve(contents.items.size() + items_.size());
  for (const auto& [id, item] : items_) {
    std::vector<Kind> kinds = {static_cast<Kind>(item.value.index())};
    if (std::holds_alternative<EmptyList>(item.value)) {
      kinds = {Kind::kStringArray, Kind::kIntArray, Kind::kMapArray};
    }
    contents.items.push_back({id.map, id.key, std::move(kinds), item.place});
  }
}

}  // namespace cadrova::host
