#include "output/device_text.h"

#include <algorithm>
#include <utility>

#include "common/json_text.h"
#include "common/text.h"
#include "lookup/data_source.h"
#include "output/console.h"
#include "output/map_types.h"
#include "output/table.h"

namespace cadrova::tools {
namespace {

bool AreEqual(const DeviceResults& one, const DeviceResults& other) {
  return std::ranges::equal(one.by_device, other.by_device, [](const auto& some, const auto& more) {
    return IsSame(some.result, more.result) && some.result.map == more.result.map;
  });
}

// Families with equal results.
struct FamilyGroup {
  std::vector<const Family*> families;
  const DeviceResults* results;
};

std::vector<FamilyGroup> GroupEqual(const std::vector<DeviceResults>& all_results) {
  std::vector<FamilyGroup> groups;
  for (const DeviceResults& results : all_results) {
    auto group = std::ranges::find_if(
        groups, [&](const FamilyGroup& other) { return AreEqual(*other.results, results); });
    if (group == groups.end()) group = groups.insert(group, {{}, &results});
    group->families.push_back(results.family);
  }
  return groups;
}

// The value, the map and the place, as cells, or as one cell.
Row ResultCells(const Feature& feature, const Family& family, const DeviceResult& device,
                const host::Contents& contents) {
  const auto& [result, position] = device;
  if (!result.map) return {"no map", "", ""};
  const std::string color = MapColor(family, position);
  return {TableCell(ToJsonText(result.value), color), TableCell(DisplayName(*result.map), color),
          ShortLocationText(contents.file, PlaceOf(contents, *result.map, feature.key))};
}
TableCell OneCell(const Row& cells) {
  std::string text = cells[0].text;
  for (std::size_t i = 1; i < cells.size(); ++i) {
    text += (cells[i].text.empty() ? "" : " ") + cells[i].text;
  }
  return {text, cells[0].color};
}

}  // namespace

std::string ToText(const std::vector<FeatureResults>& features, const std::vector<Device>& devices,
                   const host::Contents& contents) {
  std::vector<Row> rows = {{"key", "kind"}};
  if (devices.size() == 1) {
    rows[0].insert(rows[0].end(), {"value", "map", "place"});
  } else {
    for (const Device& device : devices) rows[0].push_back(ToText(device));
  }
  for (const auto& [feature, all_results, family_count] : features) {
    for (const auto& [families, results] : GroupEqual(all_results)) {
      const std::string names = Join(families, ", ", &Family::name);
      const bool are_all = families.size() == family_count;
      Row& row = rows.emplace_back(Row{DisplayName(feature->key) + (are_all ? "" : " by " + names),
                                       ToString(feature->kind)});
      for (const DeviceResult& result : results->by_device) {
        const Row cells = ResultCells(*feature, *families[0], result, contents);
        if (devices.size() == 1) {
          row.insert(row.end(), cells.begin(), cells.end());
        } else {
          row.push_back(OneCell(cells));
        }
      }
    }
  }
  return rows.size() == 1 ? "" : Table(rows, TerminalWidth());
}

}  // namespace cadrova::tools
