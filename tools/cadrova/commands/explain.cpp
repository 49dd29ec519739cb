#include <algorithm>
#include <iterator>
#include <map>
#include <set>
#include <utility>

#include "commands/command.h"
#include "commands/format_option.h"
#include "commands/shared_options.h"
#include "common/text.h"
#include "failure.h"
#include "fleet/feature_index.h"
#include "fleet/suggestions.h"
#include "lookup/data_source.h"
#include "lookup/explanation.h"
#include "output/console.h"
#include "output/explanation_text.h"
#include "output/json.h"

namespace cadrova::tools {
namespace {

// The maps that contain the key but are not in the chain. Maps with a name similar to one in the
// chain come first.
std::vector<std::string> OtherMaps(const host::Contents& contents,
                                   const std::vector<std::string>& chain, const std::string& key) {
  std::vector<std::pair<Suggestion, std::string>> ranked;  // a map in the chain, and the other map
  for (const auto& item : contents.items) {
    if (item.key != key || std::ranges::find(chain, item.map) != chain.end()) continue;
    std::vector<Suggestion> similar(chain.size());
    std::ranges::transform(chain, similar.begin(),
                           [&](const std::string& map) { return Compare(item.map, map); });
    ranked.emplace_back(*std::ranges::min_element(similar), item.map);
  }
  std::ranges::sort(ranked, {}, [](const auto& entry) {
    const auto& [suggestion, map] = entry;
    return std::tuple(suggestion.has_other_words, suggestion.distance, map);
  });
  std::vector<std::string> lines(ranked.size());
  std::ranges::transform(ranked, lines.begin(), [](const auto& entry) {
    const auto& [suggestion, map] = entry;
    const bool is_similar = !suggestion.has_other_words;
    return DisplayName(map) + (is_similar ? ", similar to " + DisplayName(suggestion.name) : "");
  });
  return lines;
}

// Similar keys, each with the first map of the chain that contains it, or else with any map.
std::vector<std::string> SimilarKeys(const host::Contents& contents,
                                     const std::vector<std::string>& chain,
                                     const std::string& key) {
  std::map<std::string, std::set<std::pair<std::ptrdiff_t, std::string>>> maps;  // by key
  for (const auto& item : contents.items) {
    if (item.key == key) continue;
    const auto position = std::ranges::find(chain, item.map) - chain.begin();
    maps[item.key].emplace(position, item.map);
  }
  std::vector<std::string> keys(maps.size());
  std::ranges::transform(maps, keys.begin(), [](const auto& entry) { return entry.first; });
  auto suggestions = Suggest(key, keys);
  std::ranges::sort(suggestions, {}, [&](const Suggestion& suggestion) {
    return std::tuple(suggestion.has_other_words, suggestion.distance,
                      maps[suggestion.name].begin()->first, suggestion.name);
  });
  std::vector<std::string> lines;
  for (const Suggestion& suggestion : suggestions) {
    const auto& containing = maps[suggestion.name];
    lines.push_back(DisplayName(suggestion.name) + " in " +
                    DisplayName(containing.begin()->second) +
                    (containing.size() == 1 ? "" : " and other maps"));
  }
  return lines;
}

// The kinds of the items under `key`. They are those in the data, or else, if the core can't list
// it, in the maps that this device consults.
std::vector<Kind> KindsOf(const std::string& key, const host::Contents* contents) {
  std::set<Kind> kinds;
  if (contents == nullptr) {
    const Explanation explanation = Explain(MakeQuery(FindFamily("sim"), Kind::kInt, key), nullptr);
    for (const ChainEntry& entry : explanation.chain) {
      kinds.insert(entry.kinds.begin(), entry.kinds.end());
    }
  } else {
    host::Contents of_key;
    std::ranges::copy_if(contents->items, std::back_inserter(of_key.items),
                         [&](const auto& item) { return item.key == key; });
    for (const Feature& feature : IndexFeatures({&of_key})) kinds.insert(feature.kind);
  }
  return {kinds.begin(), kinds.end()};
}

class ExplainCommand : public Command {
 public:
  void DeclareOptions(Options& options) override {
    options.AddRequired("KEY|FAMILY", key_or_family_,
                        "Key of the feature, or one of: " + FamilyNames(), ValueType::kKeyOrFamily);
    options.Add("KIND", given_kind_, "", "With FAMILY: " + KindNames(), ValueType::kKind);
    options.Add("KEY", key_, "", "With FAMILY: key of the feature", ValueType::kKey);
    options.Add("DEFAULT", default_, "",
                "With FAMILY: result for a missing item (default: false, 0, 0 or \"\")");
    options.Add("--family", family_, "FAMILY", "Only this family (default: all)",
                ValueType::kFamily);
    options.Add("--kind", kind_, "KIND", "Only this kind (default: those in the data)",
                ValueType::kKind);
    device_.DeclareOptions(options);
    sim_.DeclareOptions(options);
    format_.DeclareOptions(options);
    options.AddFlag("--steps", steps_, "Print the calls in order");
  }

  int Run() override {
    const std::string format = format_.Choose({{"--steps", steps_}});
    CheckArguments();
    device_.Apply();
    sim_.Apply();
    if (steps_) return PrintSteps();
    std::optional<host::Contents> contents;
    if (HasFakeCore()) contents = ListContents();
    const host::Contents* const data = contents ? &*contents : nullptr;
    std::vector<std::vector<Explanation>> by_kind;
    for (const auto& queries : QueriesByKind(data)) {
      auto& explanations = by_kind.emplace_back();
      for (const Query& query : queries) {
        explanations.push_back(Explain(query, data));
        device_.WarnOfCodes(explanations.back().recording);
      }
    }
    if (format == "json") {
      PrintJson(by_kind);
    } else {
      PrintText(by_kind, data);
    }
    if (!by_kind.empty()) return kSuccess;
    PrintError("cadrova: " + WhatIsMissing(data));
    return kNegative;
  }

 private:
  bool is_key_alone() const { return !given_kind_; }

  void CheckArguments() const {
    if (given_kind_ && !key_) throw Failure("give KEY; or FAMILY, KIND, KEY and perhaps DEFAULT");
    if (family_) FindFamily(*family_);
    if (kind_) FindKind(*kind_);
    if (is_key_alone() && steps_) throw Failure("--steps needs FAMILY, KIND and KEY");
    if (!is_key_alone() && (family_ || kind_)) {
      throw Failure("--family and --kind are only for KEY alone; FAMILY and KIND are given");
    }
  }

  Query GivenQuery() const {
    return MakeQuery(key_or_family_, given_kind_.value_or(""), key_.value_or(""), default_);
  }

  int PrintSteps() const {
    const Recording recording = Record(GivenQuery());
    device_.WarnOfCodes(recording);
    Print(Join(recording.calls, "\n") + '\n');
    return kSuccess;
  }

  std::vector<std::vector<Query>> QueriesByKind(const host::Contents* contents) const {
    if (!is_key_alone()) return {{GivenQuery()}};
    const std::string& key = key_or_family_;
    auto kinds = KindsOf(key, contents);
    if (kind_ && !kinds.empty()) kinds = {FindKind(*kind_)};
    if (family_ && kinds.size() == 1) return {{MakeQuery(*family_, ToString(kinds[0]), key)}};
    std::vector<std::vector<Query>> by_kind;
    for (const Kind kind : kinds) {
      std::vector<Query> queries;
      for (const Family& family : Families()) {
        const bool is_chosen = !family_ || &family == &FindFamily(*family_);
        if (is_chosen && family.Has(kind)) queries.push_back(MakeQuery(family, kind, key));
      }
      if (!queries.empty()) by_kind.push_back(std::move(queries));
    }
    return by_kind;
  }

  void PrintJson(const std::vector<std::vector<Explanation>>& by_kind) const {
    if (!is_key_alone()) return Print(ToJson(by_kind[0][0]) + '\n');
    JsonArrayPrinter array;
    for (const auto& explanations : by_kind) {
      for (const Explanation& explanation : explanations) array.Add(ToJson(explanation));
    }
    array.Finish();
  }

  static void PrintText(const std::vector<std::vector<Explanation>>& by_kind,
                        const host::Contents* contents) {
    const char* separator = "";
    for (const auto& explanations : by_kind) {
      std::optional<DataFacts> facts;
      if (contents != nullptr) facts = FactsOf(*contents, explanations.back());
      Print(std::exchange(separator, "\n") + ToText(explanations, facts ? &*facts : nullptr));
    }
  }

  static DataFacts FactsOf(const host::Contents& contents, const Explanation& explanation) {
    std::vector<std::string> chain(explanation.chain.size());
    std::ranges::transform(explanation.chain, chain.begin(), &ChainEntry::map);
    const std::string& key = explanation.query.key;
    return {contents.file, OtherMaps(contents, chain, key), SimilarKeys(contents, chain, key)};
  }

  // "no map contains rign; did you mean ring?"
  std::string WhatIsMissing(const host::Contents* contents) const {
    const std::string missing = "no map contains " + DisplayName(key_or_family_);
    if (contents == nullptr) return missing + " on this device";
    const auto similar = SuggestByPart(key_or_family_, Keys(*contents));
    return missing + (similar ? DidYouMean(*similar) : "");
  }

  std::string key_or_family_;
  std::optional<std::string> given_kind_, key_, default_, family_, kind_;
  DeviceOptions device_;
  SimOption sim_;
  FormatOption format_{
      {{"text", ""}, {"json", "Print one JSON object, or an array for KEY alone"}}};
  bool steps_ = false;
};

}  // namespace

std::unique_ptr<Command> MakeExplain() { return std::make_unique<ExplainCommand>(); }

}  // namespace cadrova::tools
