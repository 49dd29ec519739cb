#include "fleet/devices.h"

#include <algorithm>
#include <optional>
#include <set>
#include <string_view>
#include <utility>

namespace cadrova::tools {
namespace {

constexpr std::string_view kCarrierPrefix = "COTA_", kSimPrefix = "SIM_";

// Splits `name` at the first underscore for which `accept` returns true for the two parts.
std::optional<std::pair<std::string, std::string>> Split(const std::string& name, auto accept) {
  for (std::size_t at = name.find('_'); at != std::string::npos; at = name.find('_', at + 1)) {
    std::pair parts(name.substr(0, at), name.substr(at + 1));
    if (accept(parts.first, parts.second)) return parts;
  }
  return std::nullopt;
}

}  // namespace

Fleet FleetOf(const std::vector<std::string>& map_names) {
  std::set<std::string> regions = {""}, carriers = {""};
  std::vector<std::string> composed;  // "<carrier>" or "<carrier>_<region>"
  for (const std::string& map : map_names) {
    if (map.starts_with(kCarrierPrefix)) {
      composed.push_back(map.substr(kCarrierPrefix.size()));
    } else if (map.starts_with(kSimPrefix)) {
      if (map != "SIM_DEFAULT") carriers.insert(map.substr(kSimPrefix.size()));
    } else if (map != "DEFAULT") {
      regions.insert(map);
    }
  }
  std::erase_if(composed, [&](const std::string& name) {
    const auto parts = Split(name, [&](auto&, auto& region) { return regions.contains(region); });
    if (parts) carriers.insert(parts->first);
    return parts.has_value();
  });
  // Each remaining name is a carrier, or a known carrier with a region that has no map of its own.
  std::ranges::sort(composed, {}, &std::string::size);
  for (const std::string& name : composed) {
    const auto parts =
        Split(name, [&](auto& carrier, auto&) { return carriers.contains(carrier); });
    if (parts) {
      regions.insert(parts->second);
    } else {
      carriers.insert(name);
    }
  }
  return {{regions.begin(), regions.end()}, {carriers.begin(), carriers.end()}};
}

}  // namespace cadrova::tools
