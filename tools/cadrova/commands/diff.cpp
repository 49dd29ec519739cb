// cadrova diff: what another customization file changes for every device.

#include <cstdlib>
#include <iterator>
#include <map>
#include <memory>

#include "commands/commands.h"
#include "commands/options.h"
#include "common/json_text.h"
#include "fleet/results.h"
#include "lookup/data_source.h"
#include "output/console.h"
#include "output/json.h"

using namespace cadrova::tools;

namespace {

// What some devices were answered, and are.
struct Change {
  const Answer* before;
  const Answer* after;
  std::vector<std::pair<std::size_t, std::size_t>> devices;  // region and carrier
};

std::vector<Change> Changes(const Chains& chains, const Answers& before, const Answers& after) {
  std::vector<Change> changes;
  if (before.AreLike(after)) return changes;
  std::map<std::pair<const Answer*, const Answer*>, std::size_t> places;
  constexpr std::size_t kNone = -1;
  for (std::size_t region = 0; region < chains.fleet().regions.size(); ++region) {
    for (std::size_t carrier = 0; carrier < chains.fleet().carriers.size(); ++carrier) {
      const Chain chain = chains.Of(region, carrier);
      const std::pair answers(&before.Of(chain), &after.Of(chain));
      const auto [place, is_new] = places.try_emplace(answers, kNone);
      if (is_new && !answers.first->IsLike(*answers.second)) {
        place->second = changes.size();
        changes.push_back({answers.first, answers.second, {}});
      }
      if (place->second != kNone) changes[place->second].devices.emplace_back(region, carrier);
    }
  }
  return changes;
}

// The shorter of which codes are meant and which are not.
std::string Codes(const std::vector<std::size_t>& meant, const std::vector<std::string>& codes,
                  const std::string& what) {
  if (meant.size() == codes.size() && codes.size() > 1) return "every " + what;
  const bool is_most = codes.size() > 4 && 2 * meant.size() > codes.size();
  std::string list;
  std::size_t next = 0;
  for (std::size_t code = 0; code < codes.size(); ++code) {
    const bool is_meant = next < meant.size() && meant[next] == code;
    if (is_meant) ++next;
    if (is_meant != is_most) list += (list.empty() ? "" : ", ") + Named(codes[code]);
  }
  return is_most ? "every " + what + " but " + list : list;
}

std::string Devices(const Change& change, const Fleet& fleet) {
  std::map<std::size_t, std::vector<std::size_t>> regions_of;
  for (const auto& [region, carrier] : change.devices) regions_of[carrier].push_back(region);
  std::map<std::vector<std::size_t>, std::vector<std::size_t>> carriers_in;
  for (const auto& [carrier, regions] : regions_of) carriers_in[regions].push_back(carrier);
  std::string text;
  for (const auto& [regions, carriers] : carriers_in) {
    text += (text.empty() ? "" : "; ") + Codes(carriers, fleet.carriers, "carrier") + " in " +
            Codes(regions, fleet.regions, "region");
  }
  return text;
}

std::string AsText(const Answer& answer) {
  return answer.map ? ToText(answer.value) + ' ' + Named(*answer.map) : "no map";
}

std::string AsText(const std::vector<Change>& changes, const Fleet& fleet) {
  std::string lines;
  for (const Change& change : changes) {
    lines += "  " + Coloured(AsText(*change.before), kRed) + " -> " +
             Coloured(AsText(*change.after), kGreen) + ": " + Devices(change, fleet) + '\n';
  }
  return lines;
}

Json AsJson(const Answer& answer) {
  return {{"value", ToJson(answer.value)}, {"map", answer.map ? Json(*answer.map) : Json()}};
}

void Add(JsonArray& array, const Feature& feature, const Chains& chains, const Change& change) {
  for (const auto& [region, carrier] : change.devices) {
    array.Add({{"family", chains.family()},
               {"kind", feature.kind},
               {"key", feature.key},
               {"region", chains.fleet().regions[region]},
               {"carrier", chains.fleet().carriers[carrier]},
               {"old", AsJson(*change.before)},
               {"new", AsJson(*change.after)}});
  }
}

// The answers of each feature, as things are with the core now; none of a kind that the family
// lacks.
std::vector<std::optional<Answers>> AskAll(const Chains& chains,
                                           const std::vector<Feature>& features) {
  std::vector<std::optional<Answers>> answers;
  answers.reserve(features.size());
  Progress progress("asking each feature");
  for (const auto& [key, kind, maps] : features) {
    progress.Show(answers.size(), features.size());
    answers.emplace_back();
    if (HasLookup(chains.family(), kind)) answers.back() = chains.Ask(kind, key, &maps);
  }
  return answers;
}

// One family's answers before and after.
struct Asked {
  Chains chains;
  std::vector<std::optional<Answers>> before, after;
};

struct Arguments {
  std::string before, after;
  std::optional<std::string> family;
  bool json = false;
};

void Run(const Arguments& given, const FleetArguments& fleets) {
  const DataFile before(given.before), after(given.after);
  before.Answer();
  auto inventory = List();
  after.Answer();
  auto others = List();
  std::ranges::move(others.maps, std::back_inserter(inventory.maps));
  std::ranges::move(others.items, std::back_inserter(inventory.items));
  const Fleet fleet = fleets.Take(MapsOf(inventory));
  const auto features = FeaturesOf(inventory);
  std::vector<std::string> families = {"carrier-region", "sim"};
  if (given.family) families = {*given.family};
  std::vector<Asked> asked;
  asked.reserve(families.size());
  for (const std::string& family : families) {
    Chains chains(family, fleet);
    auto answers = AskAll(chains, features);
    asked.push_back({std::move(chains), {}, std::move(answers)});
  }
  before.Answer();
  for (Asked& one : asked) one.before = AskAll(one.chains, features);

  bool is_any = false;
  std::optional<JsonArray> array;
  if (given.json) array.emplace();
  Progress progress("comparing");
  for (std::size_t i = 0; i < features.size(); ++i) {
    progress.Show(i, features.size());
    std::vector<std::pair<std::string, std::string>> texts;  // and the families each is of
    for (const auto& [chains, answers_before, answers_after] : asked) {
      if (!answers_before[i]) continue;
      const auto changes = Changes(chains, *answers_before[i], *answers_after[i]);
      if (changes.empty()) continue;
      is_any = true;
      if (given.json) {
        for (const Change& change : changes) Add(*array, features[i], chains, change);
        continue;
      }
      std::string text = AsText(changes, fleet);
      if (!texts.empty() && texts.back().first == text) {
        texts.back().second += " and ";
        texts.back().second += chains.family();
      } else {
        texts.emplace_back(std::move(text), chains.family());
      }
    }
    for (const auto& [text, by] : texts) {
      std::string feature = features[i].kind;
      feature.append(" ").append(Named(features[i].key)).append(" by ").append(by);
      Print(Coloured(feature, kBold) + '\n');
      Print(text);
    }
  }
  array.reset();
  if (is_any) std::exit(1);
}

}  // namespace

void AddDiff(CLI::App& app) {
  CLI::App& diff = *app.add_subcommand("diff", "Say which devices another file changes, and how");
  const auto given = std::make_shared<Arguments>();
  AddArgument(diff, "OLD", given->before, "", "A customization file")->required();
  AddArgument(diff, "NEW", given->after, "", "Another")->required();
  AddArgument(diff, "--family", given->family, "FAMILY",
              "By which it is asked; left out, by carrier-region and sim");
  const auto fleets = std::make_shared<FleetArguments>(diff);
  diff.add_flag("--json", given->json,
                "Print a JSON array of objects: family, kind, key, region, carrier, old, new");
  diff.footer("As: cadrova diff old.toml new.toml\n");
  diff.callback([=] { Run(*given, *fleets); });
}
