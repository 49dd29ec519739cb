#include "output/map_types.h"

#include <algorithm>
#include <iterator>

#include "failure.h"
#include "fleet/results.h"
#include "lookup/recording.h"
#include "output/console.h"

namespace cadrova::tools {
namespace {

struct MapTypes {
  std::vector<std::string> names;
  std::vector<std::vector<std::size_t>> of_families;  // in the order of Families()
};

// The names of the maps in the family's chain, for a device with the codes ‹region› and ‹carrier›.
std::vector<std::string> TypesInChain(const Family& family) {
  const Fleet fleet = {{"‹region›"}, {"‹carrier›"}};
  return FleetChains(family, fleet).MapNames();
}

MapTypes RecordMapTypes() {
  const OverrideScope scope;
  std::vector<std::vector<std::string>> chains;
  for (const Family& family : Families()) chains.push_back(TypesInChain(family));
  // The longest chain has the maps of all other chains, in their order.
  MapTypes types = {*std::ranges::max_element(chains, {}, &std::vector<std::string>::size), {}};
  for (const auto& chain : chains) {
    auto& positions = types.of_families.emplace_back();
    for (const std::string& name : chain) {
      const auto found = std::ranges::find(types.names, name);
      positions.push_back(static_cast<std::size_t>(found - types.names.begin()));
      if (found == types.names.end()) types.names.push_back(name);
    }
  }
  return types;
}

const MapTypes& AllMapTypes() {
  static const MapTypes types = RecordMapTypes();
  return types;
}

}  // namespace

const std::vector<std::string>& MapTypeNames() { return AllMapTypes().names; }

const std::vector<std::size_t>& MapTypesOf(const Family& family) {
  return AllMapTypes().of_families[static_cast<std::size_t>(&family - Families().data())];
}

std::string MapColor(const Family& family, std::uint32_t position) {
  // Of 256 colors, some that are readable on black and on white: purple, pink, orange, blue, green.
  static constexpr const char* kColors[] = {"38;5;98", "38;5;162", "38;5;130", "38;5;31",
                                            "38;5;28"};
  if (!HasColor() || position == kNoPosition) return "";
  try {
    const std::size_t type = MapTypesOf(family).at(position);
    return type < std::size(kColors) ? kColors[type] : "";
  } catch (const Failure&) {
    return "";  // The chain is unknown.
  }
}

}  // namespace cadrova::tools
