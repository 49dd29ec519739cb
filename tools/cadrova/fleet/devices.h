// The devices that the command looks up features on.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace cadrova::tools {

// Region and carrier codes. An empty code means that the property is unset.
struct Fleet {
  std::vector<std::string> regions, carriers;
  // Whether the fleet has a device with this region and carrier, by region and then carrier. Empty
  // if it has each region with each carrier.
  std::vector<bool> has_device = {};

  bool Has(std::size_t region, std::size_t carrier) const {
    return has_device.empty() || has_device[region * carriers.size() + carrier];
  }
};

// The parts of map names, from which the codes of a fleet are derived.
constexpr std::string_view kDefault = "DEFAULT", kSimDefault = "SIM_DEFAULT";
constexpr std::string_view kCarrierPrefix = "COTA_", kSimPrefix = "SIM_";

struct NameCodes {
  std::optional<std::string> region, carrier;
};

// The codes in the name of each map.
std::map<std::string, NameCodes> CodesInNames(const std::vector<std::string>& map_names);

// Orders codes as people do: R2 before R10. Codes that differ only in leading zeros are ordered by
// their bytes.
struct NaturalOrder {
  bool operator()(const std::string& one, const std::string& other) const;
};

// A region code and a carrier code.
using Device = std::pair<std::string, std::string>;

// "EU/X1"
std::string ToText(const Device& device);

// Those of `devices` whose codes are in `codes`. The fleet has the codes of these devices, in the
// order of `codes`.
Fleet SelectDevices(const Fleet& codes, const std::vector<Device>& devices);

// The codes in the names of these maps, and the empty codes, in natural order.
Fleet FleetOf(const std::vector<std::string>& map_names);

}  // namespace cadrova::tools
