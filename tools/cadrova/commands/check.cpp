// cadrova check: what is wrong in a customization file, or dead.

#include <algorithm>
#include <cstdlib>
#include <map>
#include <memory>
#include <set>
#include <tuple>
#include <utility>

#include "commands/commands.h"
#include "commands/options.h"
#include "common/json_text.h"
#include "common/value.h"
#include "file.h"
#include "fleet/results.h"
#include "fleet/suggestions.h"
#include "lookup/data_source.h"
#include "output/console.h"

using namespace cadrova::tools;
using cadrova::host::Inventory;

namespace {

using Item = Inventory::Item;

class Findings {
 public:
  explicit Findings(std::string file) : file_(std::move(file)) {}

  void AddError(Inventory::Place place, const std::string& what) { Add(place, true, what); }
  void AddWarning(Inventory::Place place, const std::string& what) { Add(place, false, what); }

  std::string ToText() const {
    std::string lines;
    std::pair<int, int> error;  // where the last one is
    for (const auto& [line, column, is_warning, what] : found_) {
      // What is wrong is of no use besides.
      if (is_warning && error == std::pair(line, column)) continue;
      if (!is_warning) error = {line, column};
      const cadrova::host::Mistake place = {file_, line, column, ""};
      lines += Coloured(cadrova::host::Printable(cadrova::host::ToString(place)), kBold) +
               (is_warning ? Coloured("warning: ", kYellow) : Coloured("error: ", kRed)) +
               cadrova::host::Printable(what) + '\n';
    }
    return lines;
  }

  bool has_errors() const { return has_errors_; }

 private:
  void Add(Inventory::Place place, bool is_error, const std::string& what) {
    found_.emplace(place.line, place.column, !is_error, what);
    has_errors_ = has_errors_ || is_error;
  }

  std::string file_;
  std::set<std::tuple<int, int, bool, std::string>> found_;
  bool has_errors_ = false;
};

std::string Kinds(const Item& item) {
  if (item.kinds.size() > 1) return "an empty list";
  return kKindNames[static_cast<std::size_t>(item.kinds[0])];
}

// The items under one key, in the order of the file.
using Holders = std::vector<const Item*>;

// Where the key's kind is settled: in DEFAULT, or where it stands first.
const Item& Settled(const Holders& holders) {
  const auto is_settled = [](const Item* item) { return item->kinds.size() == 1; };
  const auto in_default = [&](const Item* item) {
    return item->map == "DEFAULT" && is_settled(item);
  };
  auto found = std::ranges::find_if(holders, in_default);
  if (found == holders.end()) found = std::ranges::find_if(holders, is_settled);
  return found == holders.end() ? *holders[0] : **found;
}

void CheckKinds(const Holders& holders, Findings& findings) {
  const Item& settled = Settled(holders);
  for (const Item* item : holders) {
    const bool is_same = std::ranges::find(item->kinds, settled.kinds[0]) != item->kinds.end();
    if (!is_same) {
      findings.AddError(item->place, Named(item->key) + " is " + Kinds(*item) + " here, but " +
                                         Kinds(settled) + " in " + Named(settled.map));
    }
    if (item->map.starts_with("SIM_") && item->kinds[0] == cadrova::host::Kind::kFloat) {
      findings.AddError(item->place,
                        Named(item->key) + " is a float, for which nothing asks a SIM map");
    }
  }
}

// Keys that only one map holds, and DEFAULT doesn't, may be misspelt.
void CheckKeys(const std::map<std::string, Holders>& holders_of, Findings& findings) {
  std::vector<std::string> keys;
  keys.reserve(holders_of.size());
  for (const auto& [key, holders] : holders_of) keys.push_back(key);
  const NearNames near(std::move(keys));
  for (const auto& [key, holders] : holders_of) {
    const auto is_in = [&](const std::string& map, const Holders& items) {
      return std::ranges::find(items, map, &Item::map) != items.end();
    };
    const Item& first = *holders[0];
    const bool is_in_default = is_in("DEFAULT", holders);
    if (holders.size() == 1) {
      const auto others = near.Of(key);
      const auto meant = std::ranges::find_if(others, [&](const std::string& other) {
        const Holders& items = holders_of.at(other);
        return !is_in(first.map, items) && (items.size() > 1 || is_in("DEFAULT", items));
      });
      if (meant != others.end()) {
        findings.AddWarning(first.place, "only " + Named(first.map) + " holds " + Named(key) +
                                             "; did you mean " + Named(*meant) + '?');
        continue;
      }
    }
    if (!is_in_default) {
      findings.AddWarning(first.place, Named(key) + " is not in DEFAULT");
    }
  }
}

// The maps that some device asks.
std::set<std::string> AskedMaps(const std::vector<Chains>& families) {
  std::set<std::string> asked;
  for (const Chains& chains : families) {
    for (std::string& name : chains.Names()) asked.insert(std::move(name));
  }
  return asked;
}

void CheckMaps(const Inventory& inventory, const std::vector<Chains>& families,
               bool codes_are_given, Findings& findings) {
  const auto asked = AskedMaps(families);
  std::optional<NearNames> near;
  std::map<std::string, std::string> folded;
  std::vector<Inventory::Map> maps = inventory.maps;
  std::ranges::sort(maps, {}, [](const auto& map) { return map.place.line; });
  for (const auto& [map, place] : maps) {
    if (!asked.contains(map)) {
      if (!near) near.emplace(std::vector(asked.begin(), asked.end()));
      const auto others = near->Of(map);
      findings.AddError(place,
                        "no device asks " + Named(map) +
                            (others.empty() ? "" : "; did you mean " + Named(others[0]) + '?'));
    }
    const auto [same, is_new] = folded.try_emplace(Folded(map), map);
    if (!is_new && !codes_are_given && !same->first.empty()) {
      findings.AddWarning(place, Named(map) + " differs from " + Named(same->second) +
                                     " only by case, order or signs");
    }
  }
}

using Names = std::set<std::pair<std::string, std::string>>;  // of items: map and key

// Adds the items without which some device gets another answer.
void AddNeeded(const Feature& feature, const Chains& chains, Names& needed) {
  const Answers answers = chains.Ask(feature.kind, feature.key, &feature.maps);
  std::set<std::pair<const Answer*, const Answer*>> compared;
  for (std::size_t region = 0; region < chains.fleet().regions.size(); ++region) {
    for (std::size_t carrier = 0; carrier < chains.fleet().carriers.size(); ++carrier) {
      Chain chain = chains.Of(region, carrier);
      const Answer& answer = answers.Take(chain);
      if (!answer.map) continue;
      // The chain may have the map once more.
      const Answer* without = &answer;
      while (without->map == answer.map && !chain.empty()) without = &answers.Take(chain);
      if (!compared.emplace(&answer, without).second) continue;
      if (without->map == answer.map || !answer.IsLike(*without)) {
        needed.emplace(*answer.map, feature.key);
      }
    }
  }
}

// DEFAULT is what others differ from: no item of it is said to be needless.
void CheckNeed(const Inventory& inventory, const std::vector<Chains>& families,
               Findings& findings) {
  const auto features = FeaturesOf(inventory);
  Names needed;
  Progress progress("asking each feature");
  for (std::size_t i = 0; i < features.size(); ++i) {
    progress.Show(i, features.size());
    for (const Chains& chains : families) {
      if (HasLookup(chains.family(), features[i].kind)) AddNeeded(features[i], chains, needed);
    }
  }
  const auto asked = AskedMaps(families);
  for (const auto& [map, key, kinds, place] : inventory.items) {
    if (map == "DEFAULT" || !asked.contains(map) || needed.contains({map, key})) continue;
    findings.AddWarning(place, "every device gets the same " + Named(key) + " without this");
  }
}

struct Arguments {
  std::optional<std::string> file;
};

void Run(const Arguments& given, const FleetArguments& fleets) {
  if (given.file) {
    if (const auto mistake = TryFile(*given.file)) {
      if (mistake->line == 0) cadrova::host::Stop(*mistake);
      Findings findings(mistake->file);
      findings.AddError({mistake->line, mistake->column}, mistake->reason);
      Print(findings.ToText());
      std::exit(1);
    }
  }
  const auto inventory = List();
  const Fleet fleet = fleets.Take(MapsOf(inventory));
  std::vector<Chains> families;
  families.reserve(4);
  for (const char* family : {"region", "carrier", "carrier-region", "sim"}) {
    families.emplace_back(family, fleet);
  }
  std::map<std::string, Holders> holders_of;
  for (const Item& item : inventory.items) holders_of[item.key].push_back(&item);
  Findings findings(inventory.file);
  for (auto& [key, holders] : holders_of) {
    std::ranges::sort(holders, {}, [](const Item* item) { return item->place.line; });
    CheckKinds(holders, findings);
  }
  CheckKeys(holders_of, findings);
  CheckMaps(inventory, families, fleets.are_given(), findings);
  CheckNeed(inventory, families, findings);
  Print(findings.ToText());
  if (findings.has_errors()) std::exit(1);
}

}  // namespace

void AddCheck(CLI::App& app) {
  CLI::App& check = *app.add_subcommand("check", "Say what is wrong in a file, or dead");
  const auto given = std::make_shared<Arguments>();
  AddArgument(check, "FILE", given->file, "", "A customization file; left out, the core's own");
  const auto fleets = std::make_shared<FleetArguments>(check);
  check.footer("As: cadrova check data.toml --regions ,EU,JP --carriers ,X1,N7\n");
  check.callback([=] { Run(*given, *fleets); });
}
