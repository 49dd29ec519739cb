#include "fleet/findings.h"

#include <algorithm>
#include <map>
#include <optional>
#include <set>
#include <tuple>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "common/json_text.h"
#include "common/text.h"
#include "fleet/feature_index.h"
#include "fleet/map_name_suggestions.h"
#include "fleet/results.h"
#include "fleet/suggestions.h"
#include "output/capture.h"
#include "output/progress.h"

namespace cadrova::tools {
namespace {

using host::Contents;
using host::Place;
using Item = Contents::Item;
using ItemsByKey = std::map<std::string, std::vector<const Item*>>;  // in the order of the file

constexpr FindingType kTypes[] = {
    {"syntax", true, "invalid TOML"},
    {"value", true, "a value of none of the seven kinds, or an invalid name"},
    {"kind-conflict", true, "a key of another kind than in DEFAULT or its first map"},
    {"sim-float", true, "a float in a SIM map, which no lookup reads"},
    {"unknown-map", true, "a map that no device consults"},
    {"similar-map", false, "a map whose name may be mistyped"},
    {"misspelt-key", false, "a key in only one map that is similar to another key"},
    {"not-in-default", false, "a key that is not in DEFAULT"},
    {"redundant-value", false, "a value that can be removed without changing a lookup"},
    {"empty-file", false, "a file without items"},
    {"unused-allow", false, "an entry of allow that no finding matches"},
};

// One function per type of finding.
class Checker {
 public:
  Checker(const Contents& contents, const Fleet& fleet) : contents_(contents), fleet_(fleet) {
    for (const Item& item : contents_.items) items_[item.key].push_back(&item);
    for (auto& [key, items] : items_) {
      std::ranges::sort(items, {},
                        [](const Item* item) { return std::tie(item->place.line, item->map); });
    }
    const auto maps = MapNames(contents);
    for (const Family& family : Families()) chains_.emplace_back(family, fleet, &maps);
  }

  void CheckEmptiness();
  void CheckKinds();
  void CheckKeys();
  void CheckMaps(bool has_derived_codes);
  void CheckRedundancy();

  std::vector<Finding> TakeFindings() { return std::move(findings_); }

 private:
  void Add(const char* type, Place place, const std::string& message, const std::string& map = "",
           const std::string& key = "") {
    findings_.push_back(MakeFinding(type, contents_.file, place, message, map, key));
  }
  void Add(const char* type, const Item& item, const std::string& message) {
    Add(type, item.place, message, item.map, item.key);
  }

  const Contents& contents_;
  const Fleet& fleet_;
  ItemsByKey items_;
  std::vector<FleetChains> chains_;
  std::vector<Finding> findings_;
};

bool IsEmptyList(const Item& item) { return item.kinds.size() > 1; }

std::string KindName(const Item& item) {
  if (IsEmptyList(item)) return "an empty list";
  const std::string name = ToString(item.kinds[0]);
  return (name[0] == 'i' ? "an " : "a ") + name;
}

bool IsInMap(const std::string& map, const std::vector<const Item*>& items) {
  return std::ranges::find(items, map, &Item::map) != items.end();
}

std::string DidYouMean(const std::string& name) {
  return "; did you mean " + DisplayName(name) + '?';
}

// The item whose kind all items of its key must have: the item in DEFAULT, or else the first.
const Item& DecidingItem(const std::vector<const Item*>& items) {
  auto found = std::ranges::find_if(
      items, [](const Item* item) { return item->map == "DEFAULT" && !IsEmptyList(*item); });
  if (found == items.end()) {
    found = std::ranges::find_if_not(items, [](const Item* item) { return IsEmptyList(*item); });
  }
  return found == items.end() ? *items[0] : **found;
}

void Checker::CheckEmptiness() {
  if (contents_.items.empty()) Add("empty-file", Place(), "no map contains an item");
}

void Checker::CheckKinds() {
  for (const auto& [key, items] : items_) {
    const Item& deciding = DecidingItem(items);
    for (const Item* item : items) {
      const auto& kinds = item->kinds;
      if (std::ranges::find(kinds, deciding.kinds[0]) == kinds.end()) {
        Add("kind-conflict", *item,
            DisplayName(key) + " is " + KindName(*item) + " here, but " + KindName(deciding) +
                " in " + DisplayName(deciding.map) + ", line " +
                std::to_string(deciding.place.line));
      }
      if (item->map.starts_with("SIM_") && kinds[0] == Kind::kFloat) {
        Add("sim-float", *item,
            DisplayName(key) + " is a float; no lookup reads floats from SIM maps");
      }
    }
  }
}

// A key in only one map may be mistyped.
void Checker::CheckKeys() {
  std::vector<std::string> keys;
  keys.reserve(items_.size());
  for (const auto& [key, items] : items_) keys.push_back(key);
  const SuggestionIndex index(std::move(keys));
  const bool has_default =
      std::ranges::find(contents_.maps, kDefault, &Contents::Map::name) != contents_.maps.end();
  if (!has_default && !items_.empty()) {
    Add("not-in-default", Place(), "the file has no map DEFAULT");
  }
  for (const auto& [key, items] : items_) {
    const Item& first = *items[0];
    if (items.size() == 1) {
      const auto suggestions = index.Suggest(key);
      const auto meant = std::ranges::find_if(suggestions, [&](const Suggestion& suggestion) {
        const auto& others = items_.at(suggestion.name);
        return !IsInMap(first.map, others) && (others.size() > 1 || IsInMap("DEFAULT", others));
      });
      if (meant != suggestions.end()) {
        Add("misspelt-key", first,
            "only " + DisplayName(first.map) + " contains " + DisplayName(key) +
                DidYouMean(meant->name));
        continue;
      }
    }
    if (has_default && !IsInMap("DEFAULT", items)) {
      Add("not-in-default", first, DisplayName(key) + " is not in DEFAULT");
    }
  }
}

void Checker::CheckMaps(bool has_derived_codes) {
  std::unordered_set<std::string> consulted;
  for (const FleetChains& chains : chains_) {
    for (std::string& name : chains.MapNames()) consulted.insert(std::move(name));
  }
  auto maps = contents_.maps;
  std::ranges::sort(maps, {}, [](const auto& map) { return std::tie(map.place.line, map.name); });
  std::vector<std::string> names(maps.size());
  std::ranges::transform(maps, names.begin(), &Contents::Map::name);
  const MapNameSuggestions suggestions(names, has_derived_codes ? nullptr : &fleet_);
  for (const auto& [map, place] : maps) {
    const bool is_consulted = consulted.contains(map);
    if (is_consulted && !has_derived_codes) continue;
    const auto suggestion = suggestions.Suggest(map);
    const std::string did_you_mean = suggestion ? DidYouMean(*suggestion) : "";
    if (!is_consulted) {
      Add("unknown-map", place, "no device consults " + DisplayName(map) + did_you_mean, map);
    } else if (suggestion) {
      Add("similar-map", place, DisplayName(map) + " may be mistyped" + did_you_mean, map);
    }
  }
}

// The chains that the lookups of one key consult, with only the items that exist.
class KeyChains {
 public:
  struct Entry {
    std::size_t item;
    std::size_t value;  // a number; equal values have the same
  };
  using Chain = std::vector<Entry>;

  explicit KeyChains(const std::vector<const Item*>& items) : chains_of_(items.size()) {
    for (std::size_t i = 0; i < items.size(); ++i) numbers_.emplace(items[i]->map, i);
  }

  void Add(const FleetChains& chains, const Results& results) {
    for (const ChainMaps& maps : chains.DistinctChains({&results})) {
      Chain chain;
      for (const auto& [id, position] : maps) {
        const auto result = results.by_map().find(id);
        if (result == results.by_map().end()) continue;
        const std::size_t item = numbers_.at(chains.MapName(id));
        chain.push_back({item, NumberOf(result->second)});
        auto& [containing, distance] = chains_of_[item];
        containing.push_back(chains_.size());
        distance = std::max(distance, chains.length() - position);
      }
      chains_.push_back(std::move(chain));
      missing_values_.push_back(NumberOf(results.missing()));
    }
  }

  // The items that can be removed together. Each is tested as if those before it were removed, so
  // the test begins with the items that are nearest the device.
  std::vector<std::size_t> FindRedundant(std::size_t item_in_default) const {
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
        if (is_removed[item] || std::ranges::any_of(chains_of_[item].chains, is_needed_in))
          continue;
        is_removed[item] = is_repeated = true;
        redundant.push_back(item);
      }
    }
    return redundant;
  }

 private:
  struct ChainsOfItem {
    std::vector<std::size_t> chains;
    std::size_t distance = 0;  // the longest one to the end of a chain
  };

  std::size_t NumberOf(const Result& result) {
    const std::string text = result.map ? ToJsonText(result.value) : "";
    return values_.try_emplace(text, values_.size()).first->second;
  }

  // Whether a device with this chain gets another value without the item.
  bool IsNeeded(std::size_t item, std::size_t number, const std::vector<bool>& is_removed) const {
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

  std::unordered_map<std::string_view, std::size_t> numbers_;  // of the items, by map
  std::vector<Chain> chains_;
  std::vector<std::size_t> missing_values_;  // of each chain, if no map contains the item
  std::vector<ChainsOfItem> chains_of_;      // by item
  std::unordered_map<std::string, std::size_t> values_;
};

// Items of DEFAULT are never reported: DEFAULT contains the values that other maps replace.
void Checker::CheckRedundancy() {
  const auto features = IndexFeatures({&contents_});
  Progress progress("looking up each feature");
  for (auto feature = features.begin(); feature != features.end();) {
    progress.Show(static_cast<std::size_t>(feature - features.begin()), features.size());
    const std::string& key = feature->key;
    const auto& items = items_.at(key);
    const auto in_default = std::ranges::find(items, kDefault, &Item::map) - items.begin();
    const bool is_only_in_default = items.size() == 1 && in_default == 0;
    KeyChains key_chains(items);
    std::set<Kind> added;
    const auto add = [&](Kind kind, const std::vector<std::string>& maps) {
      added.insert(kind);
      for (const FleetChains& chains : chains_) {
        if (is_only_in_default || !chains.family().Has(kind)) continue;
        key_chains.Add(chains, chains.Collect(kind, key, &maps));
      }
    };
    for (; feature != features.end() && feature->key == key; ++feature) {
      add(feature->kind, feature->maps);
    }
    // Lookups of the other list kinds find only the empty lists.
    std::vector<std::string> maps;
    std::set<Kind> kinds;
    for (const Item* item : items) {
      if (!IsEmptyList(*item)) continue;
      maps.push_back(item->map);
      kinds.insert(item->kinds.begin(), item->kinds.end());
    }
    for (const Kind kind : kinds) {
      if (!added.contains(kind)) add(kind, maps);
    }
    for (const std::size_t item : key_chains.FindRedundant(static_cast<std::size_t>(in_default))) {
      Add("redundant-value", *items[item],
          "redundant: without " + DisplayName(key) +
              " here, every lookup on every device returns the same");
    }
  }
}

}  // namespace

std::vector<Finding> Sorted(std::vector<Finding> findings) {
  const auto rank = [](const Finding& finding) {
    return std::tuple(finding.place.line, finding.place.column, !finding.is_error, finding.message);
  };
  std::ranges::sort(findings, {}, rank);
  std::vector<Finding> sorted;
  for (Finding& finding : findings) {
    const bool follows_error =
        !sorted.empty() && sorted.back().is_error && sorted.back().place == finding.place;
    if (finding.is_error || !follows_error) sorted.push_back(std::move(finding));
  }
  return sorted;
}

std::span<const FindingType> FindingTypes() { return kTypes; }

Finding MakeFinding(const std::string& type, const std::string& file, Place place,
                    const std::string& message, const std::string& map, const std::string& key) {
  const auto* const found = std::ranges::find(kTypes, type, &FindingType::name);
  return {found, found->is_error, file, place, message, map, key};
}

std::vector<Finding> CheckContents(const Contents& contents, const Fleet& fleet,
                                   bool has_derived_codes) {
  Checker checker(contents, fleet);
  checker.CheckEmptiness();
  checker.CheckKinds();
  checker.CheckKeys();
  checker.CheckMaps(has_derived_codes);
  DiscardStdout([&] { checker.CheckRedundancy(); });
  return checker.TakeFindings();
}

}  // namespace cadrova::tools
