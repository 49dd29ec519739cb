#include <algorithm>
#include <map>
#include <set>

#include "commands/command.h"
#include "commands/format_option.h"
#include "commands/shared_options.h"
#include "common/text.h"
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

std::string ToExplanationText(const Explanation& explanation) {
  if (!HasFakeCore()) return ToText(explanation, nullptr);
  const auto contents = ListContents();
  std::vector<std::string> chain(explanation.chain.size());
  std::ranges::transform(explanation.chain, chain.begin(), &ChainEntry::map);
  const std::string& key = explanation.query.key;
  const DataFacts facts = {contents.file, OtherMaps(contents, chain, key),
                           SimilarKeys(contents, chain, key)};
  return ToText(explanation, &facts);
}

class ExplainCommand : public Command {
 public:
  void DeclareOptions(Options& options) override {
    query_.DeclareOptions(options);
    format_.DeclareOptions(options);
    options.AddFlag("--steps", steps_, "Print the calls in order");
  }

  int Run() override {
    const std::string format = format_.Choose({{"--steps", steps_}});
    const Query query = query_.Apply();
    if (steps_) {
      const Recording recording = Record(query);
      query_.WarnOfCodes(recording);
      Print(Join(recording.calls, "\n") + '\n');
      return kSuccess;
    }
    const Explanation explanation = Explain(query);
    query_.WarnOfCodes(explanation.recording);
    Print(format == "json" ? ToJson(explanation) + '\n' : ToExplanationText(explanation));
    return kSuccess;
  }

 private:
  QueryOptions query_;
  FormatOption format_{{{"text", ""}, {"json", "Print one JSON object"}}};
  bool steps_ = false;
};

}  // namespace

std::unique_ptr<Command> MakeExplain() { return std::make_unique<ExplainCommand>(); }

}  // namespace cadrova::tools
