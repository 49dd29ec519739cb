#include "fleet/devices.h"

#include <algorithm>
#include <optional>
#include <set>
#include <string_view>
#include <utility>

namespace {

constexpr std::string_view kCarrierFront = "COTA_", kSimFront = "SIM_";

// Where `name` can be divided at an underscore so that both parts are `fit`.
std::optional<std::pair<std::string, std::string>> Divided(const std::string& name, auto fit) {
  for (std::size_t at = name.find('_'); at != std::string::npos; at = name.find('_', at + 1)) {
    std::pair parts(name.substr(0, at), name.substr(at + 1));
    if (fit(parts.first, parts.second)) return parts;
  }
  return std::nullopt;
}

}  // namespace

Fleet FleetOf(const std::vector<std::string>& maps) {
  std::set<std::string> regions = {""}, carriers = {""};
  std::vector<std::string> composed;  // of a carrier, or of a carrier and a region
  for (const std::string& map : maps) {
    if (map.starts_with(kCarrierFront)) {
      composed.push_back(map.substr(kCarrierFront.size()));
    } else if (map.starts_with(kSimFront)) {
      if (map != "SIM_DEFAULT") carriers.insert(map.substr(kSimFront.size()));
    } else if (map != "DEFAULT") {
      regions.insert(map);
    }
  }
  std::erase_if(composed, [&](const std::string& name) {
    const auto parts = Divided(name, [&](auto&, auto& region) { return regions.contains(region); });
    if (parts) carriers.insert(parts->first);
    return parts.has_value();
  });
  // What is left is a carrier, or a known one with a region that has no map of its own.
  std::ranges::sort(composed, {}, &std::string::size);
  for (const std::string& name : composed) {
    const auto parts =
        Divided(name, [&](auto& carrier, auto&) { return carriers.contains(carrier); });
    if (parts) {
      regions.insert(parts->second);
    } else {
      carriers.insert(name);
    }
  }
  return {{regions.begin(), regions.end()}, {carriers.begin(), carriers.end()}};
}
