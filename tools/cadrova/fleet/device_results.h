// What single devices get, for each feature.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "fleet/devices.h"
#include "fleet/feature_index.h"
#include "fleet/results.h"

namespace cadrova::tools {

// The result of one feature on a device, and the position of its map in the chain.
struct DeviceResult {
  Result result;
  std::uint32_t position;
};

// The results of one feature by one family, one per device.
struct DeviceResults {
  const Family* family;
  std::vector<DeviceResult> by_device;
};

struct FeatureResults {
  const Feature* feature;
  std::vector<DeviceResults> results;
  std::size_t family_count;  // how many families have a lookup of the kind
};

// Looks up features on these devices.
class DeviceLookups {
 public:
  // `maps` are the maps that exist.
  DeviceLookups(const std::vector<const Family*>& families, const std::vector<Device>& devices,
                const std::vector<std::string>& maps);
  DeviceLookups(const DeviceLookups&) = delete;
  DeviceLookups& operator=(const DeviceLookups&) = delete;

  // By each of the families that has a lookup of the kind. Of several devices, only by those that
  // give them different values.
  FeatureResults LookUp(const Feature& feature) const;

 private:
  Fleet fleet_;
  std::vector<std::pair<std::size_t, std::size_t>> positions_;  // of the devices in the fleet
  std::vector<FleetChains> families_;
};

}  // namespace cadrova::tools
