#include "fleet/findings.h"

#include <algorithm>
#include <map>
#include <optional>
#include <set>
#include <tuple>
#include <utility>

#include "common/text.h"
#include "fleet/feature_index.h"
#include "fleet/results.h"
#include "fleet/suggestions.h"
#include "output/progress.h"

namespace cadrova::tools {
namespace {

using host::Contents;
using host::Place;
using Item = Contents::Item;
using ItemsByKey = std::map<std::string, std::vector<const Item*>>;  // in the order of the file

// One function per type of finding.
class Checker {
 public:
  Checker(const Contents& contents, const Fleet& fleet) : contents_(contents) {
    for (const Item& item : contents_.items) items_[item.key].push_back(&item);
    for (auto& [key, items] : items_) {
      std::ranges::sort(items, {},
                        [](const Item* item) { return std::tie(item->place.line, item->map); });
    }
    for (const Family& family : Families()) {
      if (family.is_checked) chains_.emplace_back(family, fleet);
    }
    for (const FleetChains& chains : chains_) {
      for (std::string& name : chains.MapNames()) consulted_.insert(std::move(name));
    }
  }

  void CheckKinds();
  void CheckKeys();
  void CheckMaps();
  void CheckMapsOfSimilarNames();
  void CheckRedundancy();

  std::vector<Finding> TakeFindings() { return std::move(findings_); }

 private:
  using MapAndKey = std::pair<std::string, std::string>;

  void AddError(Place place, const std::string& message) {
    findings_.push_back({place, true, message});
  }
  void AddWarning(Place place, const std::string& message) {
    findings_.push_back({place, false, message});
  }
  void AddNeeded(const Feature& feature, const FleetChains& chains, std::set<MapAndKey>& needed);

  const Contents& contents_;
  ItemsByKey items_;
  std::vector<FleetChains> chains_;
  std::set<std::string> consulted_;  // names of maps
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

void Checker::CheckKinds() {
  for (const auto& [key, items] : items_) {
    const Item& deciding = DecidingItem(items);
    for (const Item* item : items) {
      const auto& kinds = item->kinds;
      if (std::ranges::find(kinds, deciding.kinds[0]) == kinds.end()) {
        AddError(item->place, DisplayName(key) + " is " + KindName(*item) + " here, but " +
                                  KindName(deciding) + " in " + DisplayName(deciding.map));
      }
      if (item->map.starts_with("SIM_") && kinds[0] == Kind::kFloat) {
        AddError(item->place,
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
  for (const auto& [key, items] : items_) {
    const Item& first = *items[0];
    if (items.size() == 1) {
      const auto suggestions = index.Suggest(key);
      const auto meant = std::ranges::find_if(suggestions, [&](const Suggestion& suggestion) {
        const auto& others = items_.at(suggestion.name);
        return !IsInMap(first.map, others) && (others.size() > 1 || IsInMap("DEFAULT", others));
      });
      if (meant != suggestions.end()) {
        AddWarning(first.place, "only " + DisplayName(first.map) + " contains " + DisplayName(key) +
                                    DidYouMean(meant->name));
        continue;
      }
    }
    if (!IsInMap("DEFAULT", items)) {
      AddWarning(first.place, DisplayName(key) + " is not in DEFAULT");
    }
  }
}

void Checker::CheckMaps() {
  std::optional<SuggestionIndex> index;
  for (const auto& [map, place] : contents_.maps) {
    if (consulted_.contains(map)) continue;
    if (!index) index.emplace(std::vector(consulted_.begin(), consulted_.end()));
    const auto suggestions = index->Suggest(map);
    AddError(place, "no device consults " + DisplayName(map) +
                        (suggestions.empty() ? "" : DidYouMean(suggestions[0].name)));
  }
}

void Checker::CheckMapsOfSimilarNames() {
  auto maps = contents_.maps;
  std::ranges::sort(maps, {}, [](const auto& map) { return std::tie(map.place.line, map.name); });
  std::map<std::string, std::string> names;
  for (const auto& [map, place] : maps) {
    const auto [first, is_new] = names.try_emplace(SortedWords(map), map);
    if (is_new || first->first.empty()) continue;
    AddWarning(place, DisplayName(map) + " differs from " + DisplayName(first->second) +
                          " only in case, word order or separators");
  }
}

// Adds each item whose removal changes a lookup of the family on some device.
void Checker::AddNeeded(const Feature& feature, const FleetChains& chains,
                        std::set<MapAndKey>& needed) {
  const Results results = chains.Collect(feature.kind, feature.key, &feature.maps);
  std::set<std::pair<const Result*, const Result*>> compared;
  for (std::size_t region = 0; region < chains.fleet().regions.size(); ++region) {
    for (std::size_t carrier = 0; carrier < chains.fleet().carriers.size(); ++carrier) {
      MapIds chain = chains.Get(region, carrier);
      const auto [result, position] = results.Find(chain);
      if (!result->map) continue;
      // A chain may contain the same map twice.
      const Result* without = result;
      for (std::size_t next = position; without->map == result->map && next < chain.size();) {
        chain = chain.subspan(next + 1);
        std::tie(without, next) = results.Find(chain);
      }
      if (compared.emplace(result, without).second && !IsSame(*result, *without)) {
        needed.emplace(*result->map, feature.key);
      }
    }
  }
}

// Items of DEFAULT are never reported: DEFAULT contains the values that other maps replace.
void Checker::CheckRedundancy() {
  const auto features = IndexFeatures(contents_);
  std::set<MapAndKey> needed;
  Progress progress("looking up each feature");
  for (std::size_t i = 0; i < features.size(); ++i) {
    progress.Show(i, features.size());
    for (const FleetChains& chains : chains_) {
      if (chains.family().Has(features[i].kind)) AddNeeded(features[i], chains, needed);
    }
  }
  for (const auto& [map, key, kinds, place] : contents_.items) {
    if (map == "DEFAULT" || !consulted_.contains(map) || needed.contains({map, key})) continue;
    AddWarning(place, "redundant: without " + DisplayName(key) +
                          " here, every lookup on every device returns the same");
  }
}

}  // namespace

std::vector<Finding> Sorted(std::vector<Finding> findings) {
  const auto rank = [](const Finding& finding) {
    const auto& [place, is_error, message] = finding;
    return std::tuple(place.line, place.column, !is_error, message);
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

std::vector<Finding> CheckContents(const Contents& contents, const Fleet& fleet,
                                   bool has_derived_codes) {
  Checker checker(contents, fleet);
  checker.CheckKinds();
  checker.CheckKeys();
  checker.CheckMaps();
  if (has_derived_codes) checker.CheckMapsOfSimilarNames();
  checker.CheckRedundancy();
  return Sorted(checker.TakeFindings());
}

}  // namespace cadrova::tools
