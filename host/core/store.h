// Items by map and key.
#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <unordered_map>
#include <utility>
#include <variant>
#include <vector>

#include "cadrova/host.h"
#include "cadrova/value.h"

namespace cadrova::host {

// An empty TOML array. Without elements its kind is unknown, so it exists as every list kind.
struct EmptyList {};

template <class>
struct WithEmptyList;
template <class... Types>
struct WithEmptyList<std::variant<Types...>> {
  using Type = std::variant<Types..., EmptyList>;
};

// A value in the store. Its alternatives are those of `Value`, in the same order, and EmptyList.
using StoredValue = WithEmptyList<Value>::Type;

// Made when the library is loaded, because a fork could leave a static object of a function half
// made in the child. Never destroyed: threads may still make lookups while the process exits.
inline const auto& kEmptyLists = *new std::tuple<StringArray, IntArray, MapArray>;

// The content of `value` if its kind is that of `Type`, or else NULL.
template <class Type>
const Type* As(const StoredValue& value) {
  if constexpr (std::is_same_v<Type, StringArray> || std::is_same_v<Type, IntArray> ||
                std::is_same_v<Type, MapArray>) {
    if (std::holds_alternative<EmptyList>(value)) return &std::get<Type>(kEmptyLists);
  }
  return std::get_if<Type>(&value);
}

// The places of maps by their names.
using MapPlaces = std::map<std::string, Place, std::less<>>;

class Store {
 public:
  struct Item {
    StoredValue value;
    Place place;  // In the file. None for an item that was set.
  };

  // The item under `key` in `map`, or NULL. The pointer stays valid when other items are set.
  const Item* Find(std::string_view map, std::string_view key) const {
    const auto found = items_.find(Id<std::string_view>{map, key});
    return found == items_.end() ? nullptr : &found->second;
  }

  // Adds an item without a value and returns it, or returns the item that is already there and
  // false. `map` must have been added, as for `Set`.
  std::pair<Item*, bool> Add(const std::string& map, std::string key, Place place) {
    const auto [found, is_new] =
        items_.try_emplace({map, std::move(key)}, Item{EmptyList(), place});
    return {&found->second, is_new};
  }

  void Set(const std::string& map, const std::string& key, StoredValue value, Place place = {}) {
    items_.insert_or_assign({map, key}, Item{std::move(value), place});
  }

  // Adds `map`, without items, if there is none of this name.
  void AddMap(const std::string& map, Place place = {}) { maps_.try_emplace(map, place); }

  const MapPlaces& Maps() const { return maps_; }

  // Appends all items to `items`, sorted by map and key.
  void AppendItems(std::vector<Contents::Item>& items) const;

 private:
  template <class String>
  struct Id {
    String map, key;
  };
  // Transparent, so that `Find` does not copy the names.
  struct Hash {
    using is_transparent = void;
    std::size_t operator()(const auto& id) const {
      const std::hash<std::string_view> hash;
      return 31 * hash(id.map) + hash(id.key);
    }
  };
  struct Equal {
    using is_transparent = void;
    bool operator()(const auto& one, const auto& other) const {
      return one.key == other.key && one.map == other.map;
    }
  };

  MapPlaces maps_;
  // The number of buckets is a power of two, also after the table grows. For such a number, libc++
  // finds a bucket without a division.
  std::unordered_map<Id<std::string>, Item, Hash, Equal> items_{1024};
};

// The data of a customization file.
struct LoadedFile {
  std::string name;
  Store store;
};

}  // namespace cadrova::host
