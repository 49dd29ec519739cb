#include "fleet/devices.h"

#include <algorithm>
#include <optional>
#include <set>
#include <string_view>
#include <utility>

#include "common/text.h"

namespace cadrova::tools {
namespace {

// Splits `name` at the first underscore for which `accept` returns true for the two parts.
std::optional<std::pair<std::string, std::string>> Split(const std::string& name, auto accept) {
  for (std::size_t at = name.find('_'); at != std::string::npos; at = name.find('_', at + 1)) {
    std::pair parts(name.substr(0, at), name.substr(at + 1));
    if (accept(parts.first, parts.second)) return parts;
  }
  return std::nullopt;
}

// Removes a number, or one other byte, from the beginning of `text`, and returns it.
std::string_view TakePart(std::string_view& text) {
  std::size_t size = 1;
  while (IsDigit(text[0]) && size < text.size() && IsDigit(text[size])) ++size;
  const std::string_view part = text.substr(0, size);
  text.remove_prefix(size);
  return part;
}

std::string_view WithoutZeros(std::string_view number) {
  return number.substr(std::min(number.find_first_not_of('0'), number.size()));
}

}  // namespace

std::string ToText(const Device& device) {
  return DisplayName(device.first) + '/' + DisplayName(device.second);
}

bool NaturalOrder::operator()(const std::string& one, const std::string& other) const {
  std::string_view rest = one, other_rest = other;
  while (!rest.empty() && !other_rest.empty()) {
    std::string_view part = TakePart(rest), other_part = TakePart(other_rest);
    const bool are_numbers = IsDigit(part[0]) && IsDigit(other_part[0]);
    if (are_numbers) {
      part = WithoutZeros(part);
      other_part = WithoutZeros(other_part);
      if (part.size() != other_part.size()) return part.size() < other_part.size();
    }
    if (part != other_part) return part < other_part;
  }
  if (rest.empty() != other_rest.empty()) return rest.empty();
  return one < other;
}

Fleet SelectDevices(const Fleet& codes, const std::vector<Device>& devices) {
  const std::set<std::string> all_regions(codes.regions.begin(), codes.regions.end()),
      all_carriers(codes.carriers.begin(), codes.carriers.end());
  std::set<std::string> regions, carriers;
  std::set<Device> selected;
  for (const auto& [region, carrier] : devices) {
    if (!all_regions.contains(region) || !all_carriers.contains(carrier)) continue;
    regions.insert(region);
    carriers.insert(carrier);
    selected.emplace(region, carrier);
  }
  Fleet fleet = codes;
  std::erase_if(fleet.regions, [&](const auto& code) { return !regions.contains(code); });
  std::erase_if(fleet.carriers, [&](const auto& code) { return !carriers.contains(code); });
  for (const std::string& region : fleet.regions) {
    for (const std::string& carrier : fleet.carriers) {
      fleet.has_device.push_back(selected.contains({region, carrier}));
    }
  }
  return fleet;
}

std::map<std::string, NameCodes> CodesInNames(const std::vector<std::string>& map_names) {
  std::map<std::string, NameCodes> codes;
  std::set<std::string> regions = {""}, carriers = {""};
  std::vector<std::string> composed;  // "<carrier>" or "<carrier>_<region>"
  const auto add = [&](const std::string& map, std::optional<std::string> region,
                       std::optional<std::string> carrier) {
    if (region) regions.insert(*region);
    if (carrier) carriers.insert(*carrier);
    codes[map] = {std::move(region), std::move(carrier)};
  };
  for (const std::string& map : map_names) {
    if (map.starts_with(kCarrierPrefix)) {
      composed.push_back(map.substr(kCarrierPrefix.size()));
    } else if (map == kSimDefault || map == kDefault) {
      add(map, {}, {});
    } else if (map.starts_with(kSimPrefix)) {
      add(map, {}, map.substr(kSimPrefix.size()));
    } else {
      add(map, map, {});
    }
  }
  const auto add_parts = [&](const std::string& name, auto accept) {
    const auto parts = Split(name, accept);
    if (parts) add(std::string(kCarrierPrefix) + name, parts->second, parts->first);
    return parts.has_value();
  };
  std::erase_if(composed, [&](const std::string& name) {
    return add_parts(name, [&](auto&, auto& region) { return regions.contains(region); });
  });
  // Each remaining name is a carrier, or a known carrier with a region that has no map of its own.
  std::ranges::sort(composed, {}, &std::string::size);
  for (const std::string& name : composed) {
    if (!add_parts(name, [&](auto& carrier, auto&) { return carriers.contains(carrier); })) {
      add(std::string(kCarrierPrefix) + name, {}, name);
    }
  }
  return codes;
}

Fleet FleetOf(const std::vector<std::string>& map_names) {
  std::set<std::string, NaturalOrder> regions = {""}, carriers = {""};
  for (const auto& [map, codes] : CodesInNames(map_names)) {
    if (codes.region) regions.insert(*codes.region);
    if (codes.carrier) carriers.insert(*codes.carrier);
  }
  return {{regions.begin(), regions.end()}, {carriers.begin(), carriers.end()}};
}

}  // namespace cadrova::tools
