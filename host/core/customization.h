// Customization data as the stand-in parser core holds it.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <variant>
#include <vector>

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

struct Mistake {
  std::uint32_t line;
  std::uint32_t column;
  std::string what;
};

// Items by map name and feature key.
class Customization {
 public:
  struct Entry {
    std::string map;
    Item item;
  };
  // A lookup asks several maps for one key, so all items of a key stand together, sorted by map.
  using ItemsOfKey = std::pair<const std::string, std::vector<Entry>>;

  // Reads a TOML document: a table is a map, and the tables and dotted keys inside it make feature
  // keys joined with dots.
  static std::variant<Customization, Mistake> Parse(std::string_view toml);

  // All items under `key`, or NULL. They stay where they are as others are set.
  const ItemsOfKey* Find(const std::string& key) const;

  // The item in `map` among those of a key, which may be NULL, or NULL.
  static const Item* In(const std::string& map, const ItemsOfKey* items);

  const Item* Find(const std::string& map, const std::string& key) const {
    return In(map, Find(key));
  }

  void Set(const std::string& map, const std::string& key, Item item);

 private:
  // A power of two of buckets stays one as the table grows, and spares every lookup a division.
  std::unordered_map<std::string, std::vector<Entry>> entries_{1024};
};

// `text` as the item it would be as a TOML value, or else as a string.
Item ItemFromText(const std::string& text);

}  // namespace cadrova::host
