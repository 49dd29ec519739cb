#include "fleet/device_results.h"

#include <algorithm>
#include <utility>

namespace cadrova::tools {
namespace {

std::size_t PositionOf(const std::string& code, std::vector<std::string>& codes) {
  const auto found = std::ranges::find(codes, code);
  const auto position = static_cast<std::size_t>(found - codes.begin());
  if (found == codes.end()) codes.push_back(code);
  return position;
}

}  // namespace

DeviceLookups::DeviceLookups(const std::vector<const Family*>& families,
                             const std::vector<Device>& devices,
                             const std::vector<std::string>& maps) {
  for (const auto& [region, carrier] : devices) {
    positions_.emplace_back(PositionOf(region, fleet_.regions),
                            PositionOf(carrier, fleet_.carriers));
  }
  for (const Family* family : families) families_.emplace_back(*family, fleet_, &maps);
}

FeatureResults DeviceLookups::LookUp(const Feature& feature) const {
  FeatureResults found = {&feature, {}, 0};
  for (const FleetChains& chains : families_) {
    if (!chains.family().Has(feature.kind)) continue;
    ++found.family_count;
    const Results results = chains.Collect(feature.kind, feature.key, &feature.maps);
    std::vector<DeviceResult> by_device;
    for (const auto& [region, carrier] : positions_) {
      const auto [result, position] = results.Find(chains.Get(region, carrier));
      by_device.push_back({*result, position});
    }
    if (by_device.size() > 1 && IsSame(by_device[0].result, by_device[1].result)) continue;
    found.results.push_back({&chains.family(), std::move(by_device)});
  }
  return found;
}

}  // namespace cadrova::tools
