#include "output/device_text.h"

#include <algorithm>
#include <utility>

#include "common/json_text.h"
#include "common/text.h"
#include "lookup/data_source.h"
#include "output/console.h"
#include "output/table.h"

namespace cadrova::tools {
namespace {

bool AreEqual(const DeviceResults& one, const DeviceResults& other) {
  return std::ranges::equal(one.by_device, other.by_device,
                            [](const Result& result, const Result& another) {
                              return IsSame(result, another) && result.map == another.map;
                            });
}

// Families with equal results.
struct Group {
  std::vector<const Family*> families;
  const DeviceResults* results;
};

std::vector<Group> GroupFamilies(const std::vector<DeviceResults>& all_results) {
  std::vector<Group> groups;
  for (const DeviceResults& results : all_results) {
    auto group = std::ranges::find_if(
        groups, [&](const Group& other) { return AreEqual(*other.results, results); });
    if (group == groups.end()) group = groups.insert(group, {{}, &results});
    group->families.push_back(results.family);
  }
  return groups;
}

void AppendResult(Row& row, const Feature& feature, const Result& result,
                  const host::Contents& contents) {
  if (!result.map) {
    row.insert(row.end(), {"no map", "", ""});
    return;
  }
  row.insert(row.end(),
             {ToJsonText(result.value), DisplayName(*result.map),
              ShortLocationText(contents.file, PlaceOf(contents, *result.map, feature.key))});
}

}  // namespace

std::string ToText(const std::vector<FeatureResults>& features, const std::vector<Device>& devices,
                   const host::Contents& contents) {
  std::vector<Row> rows;
  if (devices.size() > 1) {
    Row& row = rows.emplace_back(Row{"", ""});
    for (const auto& [region, carrier] : devices) {
      row.insert(row.end(), {DisplayName(region) + '/' + DisplayName(carrier), "", ""});
    }
  }
  for (const auto& [feature, all_results, family_count] : features) {
    for (const auto& [families, results] : GroupFamilies(all_results)) {
      const std::string names = Join(families, ", ", &Family::name);
      const bool are_all = families.size() == family_count;
      Row& row = rows.emplace_back(Row{DisplayName(feature->key) + (are_all ? "" : " by " + names),
                                       ToString(feature->kind)});
      for (const Result& result : results->by_device) {
        AppendResult(row, *feature, result, contents);
      }
    }
  }
  return Table(rows, TerminalWidth());
}

}  // namespace cadrova::tools
