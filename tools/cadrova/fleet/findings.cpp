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
#include "fleet/key_chains.h"
#include "fleet/map_name_suggestions.h"
#include "fleet/results.h"
#include "fleet/suggestions.h"
#include "lookup/data_source.h"
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
    {"empty-file", false, "a file without items, or traces without lookups"},
    {"unused-allow", false, "an entry of allow that no finding matches"},
    {"unheld-key", true, "a lookup whose maps do not contain the key"},
    {"wrong-kind", true, "a lookup whose maps contain the key as another kind"},
    {"unused-key", false, "a key that no traced program looks up"},
};

// One function per type of finding.
class Checker {
 public:
  Checker(const Contents& contents, const Fleet& fleet, std::span<const LookupLog> logs)
      : contents_(contents), fleet_(fleet), logs_(logs) {
    for (const Item& item : contents_.items) items_[item.key].push_back(&item);
    for (auto& [key, items] : items_) {
      std::ranges::sort(items, {},
                        [](const Item* item) { return std::tie(item->place.line, item->map); });
    }
    const auto maps = MapNames(contents);
    for (const Family& family : Families()) {
      const auto names = chains_.emplace_back(family, fleet, &maps).MapNames();
      maps_of_[&family].insert(names.begin(), names.end());
    }
    AddLogs();
  }

  void CheckEmptiness();
  void CheckKinds();
  void CheckKeys();
  void CheckMaps(bool has_derived_codes);
  void CheckRedundancy();
  void CheckLookups();
  void CheckUse();

  std::vector<Finding> TakeFindings() { return std::move(findings_); }

 private:
  void Add(const char* type, Place place, const std::string& message, const std::string& map = "",
           const std::string& key = "") {
    findings_.push_back(MakeFinding(type, contents_.file, place, message, map, key));
  }
  void Add(const char* type, const Item& item, const std::string& message) {
    Add(type, item.place, message, item.map, item.key);
  }

  // A SIM item that a program sets.
  struct SetItem {
    std::vector<Kind> kinds;  // all that are possible
    std::string place;        // in the trace
  };
  // Why a lookup may find nothing.
  struct Doubt {
    const char* type = nullptr;  // of finding; NULL if there is no doubt
    std::string message = {}, map = {};
  };

  void AddLogs();
  std::set<const Family*> FamiliesThatLookUp(const std::string& key) const;
  std::vector<const SetItem*> SetItems(const std::string& key) const;
  Doubt DoubtOf(const LookupLog::Lookup& lookup) const;

  const Contents& contents_;
  const Fleet& fleet_;
  const std::span<const LookupLog> logs_;
  ItemsByKey items_;
  std::vector<FleetChains> chains_;
  std::map<const Family*, std::unordered_set<std::string>> maps_of_;  // that devices consult
  ByLoggedKey<std::set<const Family*>> families_;                     // of the logged lookups
  ByLoggedKey<std::vector<SetItem>> set_items_;
  std::vector<Finding> findings_;
};

bool IsEmptyList(const Item& item) { return item.kinds.size() > 1; }

std::string WithArticle(Kind kind) {
  const std::string name = ToString(kind);
  return (name[0] == 'i' ? "an " : "a ") + name;
}

std::string KindName(const std::vector<Kind>& kinds) {
  return kinds.size() > 1 ? "an empty list" : WithArticle(kinds[0]);
}

std::vector<Kind> AllKinds() {
  std::vector<Kind> kinds(kKindCount);
  for (std::size_t kind = 0; kind < kKindCount; ++kind) kinds[kind] = static_cast<Kind>(kind);
  return kinds;
}

bool IsInMap(const std::string& map, const std::vector<const Item*>& items) {
  return std::ranges::find(items, map, &Item::map) != items.end();
}

// The first three, or "".
std::string DidYouMeanOneOf(const std::vector<Suggestion>& suggestions) {
  const auto shown = std::span(suggestions).first(std::min<std::size_t>(3, suggestions.size()));
  const auto name = [](const Suggestion& suggestion) { return DisplayName(suggestion.name); };
  return shown.empty() ? "" : "; did you mean " + Join(shown, " or ", name) + '?';
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
            DisplayName(key) + " is " + KindName(item->kinds) + " here, but " +
                KindName(deciding.kinds) + " in " + DisplayName(deciding.map) + ", line " +
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
  for (const auto& [family, names] : maps_of_) consulted.insert(names.begin(), names.end());
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
    // If no lookup of the key was logged, every family may look it up.
    const std::set<const Family*> families = FamiliesThatLookUp(key);
    std::vector<std::string_view> maps_of_items(items.size());
    std::ranges::transform(items, maps_of_items.begin(), &Item::map);
    KeyChains key_chains(maps_of_items);
    std::set<Kind> added;
    const auto add = [&](Kind kind, const std::vector<std::string>& maps) {
      added.insert(kind);
      for (const FleetChains& chains : chains_) {
        if (is_only_in_default || !chains.family().Has(kind)) continue;
        const bool is_judged = families.empty() || families.contains(&chains.family());
        key_chains.Add(chains, chains.Collect(kind, key, &maps), is_judged);
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
          "redundant: without " + DisplayName(key) + " here, " +
              (families.empty() ? "every lookup on every device returns the same"
                                : "the logged lookups return the same on every device"));
    }
  }
}

void Checker::AddLogs() {
  for (const LookupLog& log : logs_) {
    for (const auto& [family, kind, key, line] : log.lookups) {
      for (const Family& other : Families()) {
        const bool may_be_it = family == nullptr ? other.Has(kind) : family == &other;
        if (may_be_it) families_[key].insert(&other);
      }
    }
    for (const auto& [key, value, line] : log.sim_items) {
      const bool is_known = !key.is_cut && !value.is_cut;
      set_items_[key].push_back({is_known ? KindsOfSimItem(value.text) : AllKinds(),
                                 log.file + ':' + std::to_string(line)});
    }
  }
}

std::set<const Family*> Checker::FamiliesThatLookUp(const std::string& key) const {
  std::set<const Family*> families;
  for (const auto* some : families_.Find(key)) families.insert(some->begin(), some->end());
  return families;
}

// At most one finding per key and kind.
void Checker::CheckLookups() {
  if (logs_.empty()) return;
  const auto has_lookups = [](const LookupLog& log) { return !log.lookups.empty(); };
  if (std::ranges::none_of(logs_, has_lookups)) {
    findings_.push_back(MakeFinding("empty-file", logs_[0].file, {}, "no trace contains a lookup"));
  }
  std::vector<std::string> keys;
  for (const auto& [key, items] : items_) keys.push_back(key);
  const SuggestionIndex index(keys);
  std::set<std::pair<std::string, Kind>> reported;
  for (const LookupLog& log : logs_) {
    for (const LookupLog::Lookup& lookup : log.lookups) {
      const std::string& key = lookup.key.text;
      // It is unknown whether a map contains a key that is cut.
      if (lookup.key.is_cut || reported.contains({key, lookup.kind})) continue;
      auto [type, message, map] = DoubtOf(lookup);
      if (type == nullptr) continue;
      // With very many findings, the search would take minutes.
      if (!items_.contains(key) && reported.size() < 10'000) {
        auto similar = index.Suggest(key);
        const bool is_fast = reported.size() * keys.size() < 1'000'000;
        if (similar.empty() && is_fast) similar = Suggest(key, keys);
        message += DidYouMeanOneOf(similar);
      }
      findings_.push_back(MakeFinding(type, log.file, {lookup.line, 0}, message, map, key));
      reported.emplace(key, lookup.kind);
    }
  }
}

Checker::Doubt Checker::DoubtOf(const LookupLog::Lookup& lookup) const {
  const auto& [family, kind, logged_key, line] = lookup;
  const std::string& key = logged_key.text;
  const auto found = items_.find(key);
  std::vector<const Item*> items, consulted;
  if (found != items_.end()) items = found->second;
  std::ranges::copy_if(items, std::back_inserter(consulted), [&](const Item* item) {
    return family == nullptr || maps_of_.at(family).contains(item->map);
  });
  std::vector<const SetItem*> set;
  if (family == nullptr || family == &FindFamily("sim")) set = SetItems(key);
  const auto has_kind = [&](const auto* item) {
    return std::ranges::find(item->kinds, kind) != item->kinds.end();
  };
  if (std::ranges::any_of(consulted, has_kind) || std::ranges::any_of(set, has_kind)) return {};
  const auto in_map = [&](const Item& item) {
    return DisplayName(item.map) + ", " + contents_.file + ':' + std::to_string(item.place.line);
  };
  const std::string name = DisplayName(key);
  const std::string but = name + " is looked up as " + WithArticle(kind) + ", but ";
  if (!consulted.empty()) {
    const Item& item = DecidingItem(consulted);
    return {"wrong-kind", but + "is " + KindName(item.kinds) + " in " + in_map(item), item.map};
  }
  if (!set.empty()) {
    return {"wrong-kind", but + "a program sets it to " + KindName(set[0]->kinds) +
                              " with setSimCadrova, " + set[0]->place};
  }
  if (!items.empty()) {
    return {"unheld-key",
            std::string("no map that ") + family->name + " lookups consult contains " + name +
                "; it is in " + in_map(*items[0]),
            items[0]->map};
  }
  const std::string only_sim =
      SetItems(key).empty() ? "" : "; only sim lookups find what setSimCadrova sets";
  return {"unheld-key", "no map in " + contents_.file + " contains " + name + only_sim};
}

std::vector<const Checker::SetItem*> Checker::SetItems(const std::string& key) const {
  std::vector<const SetItem*> items;
  for (const auto* some : set_items_.Find(key)) {
    for (const SetItem& item : *some) items.push_back(&item);
  }
  return items;
}

void Checker::CheckUse() {
  for (const auto& [key, items] : items_) {
    if (families_.Find(key).empty()) {
      Add("unused-key", items[0]->place, "no trace contains a lookup of " + DisplayName(key), "",
          key);
    }
  }
}

}  // namespace

std::vector<Finding> Sorted(std::vector<Finding> findings) {
  const auto rank = [](const Finding& finding) {
    return std::tuple<const std::string&, int, int, bool, const std::string&>(
        finding.file, finding.place.line, finding.place.column, !finding.is_error, finding.message);
  };
  std::ranges::sort(findings, {}, rank);
  std::vector<Finding> sorted;
  for (Finding& finding : findings) {
    const bool follows_error = !sorted.empty() && sorted.back().is_error &&
                               sorted.back().file == finding.file &&
                               sorted.back().place == finding.place;
    const bool is_about_item = !finding.map.empty();
    if (finding.is_error || !follows_error || !is_about_item) sorted.push_back(std::move(finding));
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
                                   bool has_derived_codes, std::span<const LookupLog> logs,
                                   bool reports_unused) {
  Checker checker(contents, fleet, logs);
  checker.CheckEmptiness();
  checker.CheckKinds();
  checker.CheckKeys();
  checker.CheckMaps(has_derived_codes);
  DiscardStdout([&] { checker.CheckRedundancy(); });
  checker.CheckLookups();
  if (reports_unused) checker.CheckUse();
  return checker.TakeFindings();
}

}  // namespace cadrova::tools
