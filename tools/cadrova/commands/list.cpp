// cadrova list: what the core holds.

#include <fnmatch.h>

#include <memory>

#include "commands/commands.h"
#include "commands/options.h"
#include "common/json_text.h"
#include "common/table.h"
#include "fleet/feature_index.h"
#include "lookup/data_source.h"
#include "output/console.h"
#include "output/json.h"

using namespace cadrova::tools;

namespace {

std::string AsText(const std::vector<Feature>& features) {
  std::vector<Row> rows;
  rows.reserve(features.size());
  for (const Feature& feature : features) {
    std::string maps;
    for (const std::string& map : feature.maps) maps += (maps.empty() ? "" : ", ") + Named(map);
    rows.push_back({Named(feature.key), feature.kind, maps});
  }
  return Table(rows);
}

void PrintJson(const std::vector<Feature>& features) {
  JsonArray array;
  for (const auto& [key, kind, maps] : features) {
    array.Add({{"key", key}, {"kind", kind}, {"maps", maps}});
  }
}

}  // namespace

void AddList(CLI::App& app) {
  CLI::App& list = *app.add_subcommand("list", "List features, and the maps that hold them");
  const auto pattern = std::make_shared<std::string>("*");
  const auto data = std::make_shared<std::optional<std::string>>();
  const auto json = std::make_shared<bool>(false);
  AddArgument(list, "PATTERN", *pattern, "", "Of the keys, as shells have it; left out, all");
  AddData(list, *data);
  list.add_flag("--json", *json, "Print a JSON array of objects: key, kind, maps");
  list.footer("As: cadrova list 'calling.*'\n");
  list.callback([=] {
    if (*data) AnswerFromFile(**data);
    auto features = FeaturesOf(List());
    std::erase_if(features, [&](const Feature& feature) {
      return fnmatch(pattern->c_str(), feature.key.c_str(), 0) != 0;
    });
    if (*json) {
      PrintJson(features);
    } else {
      Print(AsText(features));
    }
    if (features.empty()) Fail("no key is like '" + *pattern + "'", 1);
  });
}
