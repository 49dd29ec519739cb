#include <algorithm>

#include "commands/command.h"
#include "commands/format_option.h"
#include "commands/shared_options.h"
#include "common/text.h"
#include "fleet/feature_index.h"
#include "fleet/key_pattern.h"
#include "fleet/suggestions.h"
#include "lookup/data_source.h"
#include "output/console.h"
#include "output/json.h"
#include "output/text.h"

namespace cadrova::tools {
namespace {

class List : public Command {
 public:
  void DeclareOptions(Options& options) override {
    options.Add("PATTERN", pattern_, "",
                "Part of a key in any case, or a shell pattern (default: all keys)",
                ValueType::kKey);
    data_.DeclareOptions(options);
    options.Add("--map", map_, "NAME", "List only items of this map", ValueType::kMap);
    format_.DeclareOptions(options);
  }

  int Run() override {
    const std::string format = format_.Choose();
    data_.Apply();
    const auto contents = ListContents();
    const KeyPattern pattern(pattern_.value_or(""));
    auto features = IndexFeatures({&contents});
    std::erase_if(features, [&](Feature& feature) {
      return !pattern.Matches(feature.key) || (map_ && !SelectMap(feature, *map_));
    });
    if (format == "json") {
      JsonArrayPrinter array;
      for (const Feature& feature : features) array.Add(ToJson(feature, contents.file));
      array.Finish();
    } else {
      Print(ToText(features, contents.file));
    }
    if (!features.empty()) return kSuccess;
    PrintError("cadrova: " + WhatIsMissing(contents, pattern));
    return kNegative;
  }

 private:
  // Keeps only the item of the map, and returns whether there is one.
  static bool SelectMap(Feature& feature, const std::string& map) {
    const auto found = std::ranges::find(feature.maps, map);
    if (found == feature.maps.end()) return false;
    feature.places = {feature.places[static_cast<std::size_t>(found - feature.maps.begin())]};
    feature.maps = {map};
    return true;
  }

  // The map or the key, and a similar one.
  std::string WhatIsMissing(const host::Contents& contents, const KeyPattern& pattern) const {
    const auto maps = MapNames(contents);
    if (map_ && std::ranges::find(maps, *map_) == maps.end()) {
      const auto similar = Suggest(*map_, maps);
      return "no map has the name " + DisplayName(*map_) +
             (similar.empty() ? "" : DidYouMean(similar[0].name));
    }
    std::vector<std::string> keys;
    for (const auto& item : contents.items) {
      if (!map_ || item.map == *map_) keys.push_back(item.key);
    }
    return "no key" + (map_ ? " in " + DisplayName(*map_) : "") + ' ' +
           pattern.WithSuggestion(keys);
  }

  std::optional<std::string> pattern_, map_;
  DataOption data_;
  FormatOption format_{
      {{"text", ""}, {"json", "Print a JSON array of objects: key, kind, maps, places"}}};
};

}  // namespace

std::unique_ptr<Command> MakeList() { return std::make_unique<List>(); }

}  // namespace cadrova::tools
