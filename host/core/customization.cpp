#include "customization.h"

#include <algorithm>
#include <cmath>
#include <limits>

// toml++ asserts what it checks again and reports, such as that a key begins with a key's letter.
// Under NDEBUG it would take that for granted instead.
#undef NDEBUG
#define TOML_ASSERT(expression) static_assert(true)
#define TOML_EXCEPTIONS 0
#define TOML_MAX_NESTED_VALUES 32
#include <toml++/toml.h>

#include "file.h"
#include "toml_precheck.h"

namespace cadrova::host {
namespace {

// A mistake is reported in one line, whatever bytes it quotes.
Inventory::Place ToPlace(const toml::source_position& position) {
  return {static_cast<int>(position.line), static_cast<int>(position.column)};
}

Mistake At(const toml::source_position& position, std::string_view what) {
  const auto [line, column] = ToPlace(position);
  return {"", line, column, Printable(what)};
}

Mistake At(const toml::node& node, std::string_view what) { return At(node.source().begin, what); }

template <class Value>
using Outcome = std::variant<Value, Mistake>;

Outcome<std::int32_t> Int(const toml::value<std::int64_t>& node) {
  if (node.get() < std::numeric_limits<std::int32_t>::min() ||
      node.get() > std::numeric_limits<std::int32_t>::max()) {
    return At(node, std::to_string(node.get()) + " does not fit in 32 bits");
  }
  return static_cast<std::int32_t>(node.get());
}

Outcome<float> Float(const toml::value<double>& node) {
  const auto value = static_cast<float>(node.get());
  if (std::isinf(value) && !std::isinf(node.get())) return At(node, "beyond the range of a float");
  return value;
}

Outcome<std::string> String(const toml::value<std::string>& node) {
  if (node->find('\0') != std::string::npos) {
    return At(node, "a string can't hold a NUL byte, which would end it");
  }
  return *node;
}

// Every element of `array` through `convert`, up to the first mistake.
template <class Node, class Convert>
auto Each(const toml::array& array, Convert convert) {
  using Element = std::variant_alternative_t<0, decltype(convert(std::declval<const Node&>()))>;
  std::vector<Element> list;
  for (const toml::node& node : array) {
    auto outcome = convert(*node.as<Node>());
    if (auto* mistake = std::get_if<Mistake>(&outcome)) {
      return Outcome<std::vector<Element>>(std::move(*mistake));
    }
    list.push_back(std::move(std::get<0>(outcome)));
  }
  return Outcome<std::vector<Element>>(std::move(list));
}

Outcome<std::pair<std::string, std::string>> Pair(const toml::array& node) {
  if (node.size() != 2 || !node.is_homogeneous<std::string>()) {
    return At(node, "an array of arrays must hold pairs of strings");
  }
  auto outcome = Each<toml::value<std::string>>(node, String);
  if (auto* mistake = std::get_if<Mistake>(&outcome)) return std::move(*mistake);
  StringArray& strings = std::get<StringArray>(outcome);
  return std::pair(std::move(strings[0]), std::move(strings[1]));
}

template <class Value>
Outcome<Item> AsItem(Outcome<Value> outcome) {
  if (auto* mistake = std::get_if<Mistake>(&outcome)) return std::move(*mistake);
  return Item(std::move(std::get<0>(outcome)));
}

Outcome<Item> ToItem(const toml::node& node) {
  if (const auto* value = node.as_boolean()) return Item(value->get());
  if (const auto* value = node.as_integer()) return AsItem(Int(*value));
  if (const auto* value = node.as_floating_point()) return AsItem(Float(*value));
  if (const auto* value = node.as_string()) return AsItem(String(*value));
  if (const auto* array = node.as_array()) {
    if (array->empty()) return Item(EmptyList());
    if (array->is_homogeneous<std::string>()) {
      return AsItem(Each<toml::value<std::string>>(*array, String));
    }
    if (array->is_homogeneous<std::int64_t>()) {
      return AsItem(Each<toml::value<std::int64_t>>(*array, Int));
    }
    if (array->is_homogeneous<toml::array>()) return AsItem(Each<toml::array>(*array, Pair));
    return At(node, "an array must hold strings, integers or pairs of strings, and only one kind");
  }
  return At(node, "a date or time is no kind of value");
}

// Files everything below `table` under feature keys that begin with `prefix`.
std::optional<Mistake> Collect(const toml::table& table, const std::string& prefix,
                               const std::string& map, Customization& into) {
  for (const auto& [name, node] : table) {
    const std::string key = prefix + std::string(name.str());
    if (const auto* nested = node.as_table()) {
      if (auto mistake = Collect(*nested, key + '.', map, into)) return mistake;
      continue;
    }
    if (into.Find(map, key) != nullptr) {
      return At(name.source().begin, "feature key " + key + " stands twice in its map");
    }
    Outcome<Item> outcome = ToItem(node);
    if (auto* mistake = std::get_if<Mistake>(&outcome)) return std::move(*mistake);
    into.Set(map, key, std::move(std::get<Item>(outcome)), ToPlace(name.source().begin));
  }
  return std::nullopt;
}

Outcome<toml::table> Document(std::string_view toml) {
  if (auto mistake = WhatTomlCannotTake(toml)) return std::move(*mistake);
  toml::parse_result document = toml::parse(toml);
  if (!document) return At(document.error().source().begin, document.error().description());
  return std::move(document).table();
}

Outcome<Customization> ToCustomization(std::string_view toml) {
  auto document = Document(toml);
  if (auto* mistake = std::get_if<Mistake>(&document)) return std::move(*mistake);
  Customization customization;
  for (const auto& [name, node] : std::get<toml::table>(document)) {
    const auto* table = node.as_table();
    if (table == nullptr) {
      return At(name.source().begin,
                std::string(name.str()) + " stands outside every map; put it below a [MAP] line");
    }
    const std::string map(name.str());
    customization.AddMap(map, ToPlace(name.source().begin));
    if (auto mistake = Collect(*table, "", map, customization)) return std::move(*mistake);
  }
  return customization;
}

}  // namespace

std::variant<Customization, Mistake> Customization::Parse(std::string_view toml,
                                                          const std::string& file) {
  auto outcome = ToCustomization(toml);
  if (auto* mistake = std::get_if<Mistake>(&outcome)) {
    mistake->file = file;
  } else {
    std::get<Customization>(outcome).file_ = file;
  }
  return outcome;
}

void Customization::List(Inventory& inventory) const {
  inventory.maps.insert(inventory.maps.end(), maps_.begin(), maps_.end());
  inventory.items.reserve(inventory.items.size() + items_.size());
  for (const auto& [name, placed] : items_) {
    std::vector<Kind> kinds = {static_cast<Kind>(placed.item.index())};
    if (std::holds_alternative<EmptyList>(placed.item)) {
      kinds = {Kind::kStringArray, Kind::kIntArray, Kind::kMapArray};
    }
    inventory.items.push_back({name.map, name.key, std::move(kinds), placed.place});
  }
}

Item ItemFromText(const std::string& text) {
  const std::string line = "value = " + text;
  const auto document = Document(line);
  if (std::holds_alternative<Mistake>(document)) return text;
  const toml::node& node = *std::get<toml::table>(document).get("value");
  // A comment, a blank or another line behind the value belongs to the text, so it is a string.
  const auto columns = std::ranges::count_if(line, [](char byte) { return (byte & 0xC0) != 0x80; });
  const bool is_all = node.source().end.line == 1 && node.source().end.column == columns + 1;
  Outcome<Item> outcome = ToItem(node);
  const auto* item = std::get_if<Item>(&outcome);
  return is_all && item != nullptr ? *item : text;
}

}  // namespace cadrova::host
