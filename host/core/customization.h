// Customization data as the stand-in parser core holds it.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <unordered_map>
#include <utility>
#include <variant>
#include <vector>

#include "cadrova/host.h"

namespace cadrova::host {

using StringArray = std::vector<std::string>;
using IntArray = std::vector<std::int32_t>;
using MapArray = std::vector<std::pair<std::string, std::string>>;

// An empty list has no element to tell its kind by, and so is of every list kind.
struct EmptyList {};

// One item; the alternative is its kind.
using Item = std::variant<bool, std::int32_t, float, std::string, StringArray, IntArray, MapArray,
                          EmptyList>;

// The item as a value of kind `Value`, or NULL where it is of another kind.
template <class Value>
const Value* As(const Item& item) {
  if constexpr (requires(const Value& list) { list.front(); } &&
                !std::is_same_v<Value, std::string>) {
    static const Value empty;
    if (std::holds_alternative<EmptyList>(item)) return &empty;
  }
  return std::get_if<Value>(&item);
}

// Items by map name and feature key.
class Customization {
 public:
  // Reads a TOML document: a table is a map, and the tables and dotted keys inside it make feature
  // keys joined with dots. `file` is what a mistake calls the document.
  static std::variant<Customization, Mistake> Parse(std::string_view toml, const std::string& file);

  // The item under `key` in `map`, or NULL. It stays where it is as others are set.
  const Item* Find(std::string_view map, std::string_view key) const {
    const auto found = items_.find(Name<std::string_view>{map, key});
    return found == items_.end() ? nullptr : &found->second.item;
  }

  // Adds every map and item to `inventory`, in no order.
  void List(Inventory& inventory) const;

  // What the document was called.
  const std::string& file() const { return file_; }

  void AddMap(const std::string& map, Inventory::Place place) { maps_.push_back({map, place}); }

  void Set(const std::string& map, const std::string& key, Item item, Inventory::Place place = {}) {
    items_.insert_or_assign({map, key}, Placed{std::move(item), place});
  }

 private:
  struct Placed {
    Item item;
    Inventory::Place place;
  };
  template <class String>
  struct Name {
    String map, key;
  };
  // Names are found by views of them.
  struct Hash {
    using is_transparent = void;
    std::size_t operator()(const auto& name) const {
      const std::hash<std::string_view> hash;
      return 31 * hash(name.map) + hash(name.key);
    }
  };
  struct Equal {
    using is_transparent = void;
    bool operator()(const auto& one, const auto& other) const {
      return one.key == other.key && one.map == other.map;
    }
  };

  std::string file_;
  std::vector<Inventory::Map> maps_;  // of the document
  // A power of two of buckets stays one as the table grows, and spares every lookup a division.
  std::unordered_map<Name<std::string>, Placed, Hash, Equal> items_{1024};
};

// `text` as the item it would be as a TOML value, or else as a string.
Item ItemFromText(const std::string& text);

}  // namespace cadrova::host
