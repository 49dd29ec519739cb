// The results of lookups on every device of a fleet.
//
// The library is called once per device to record its chain, which is the same for all features.
// Then, for each map that contains a feature, it is called once, as a device that consults that
// map, with every other existence test forced to false. Every device on whose chain this map is the
// first to contain the feature has this result.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "fleet/devices.h"
#include "lookup/query.h"

namespace cadrova::tools {

struct Result {
  Value value;
  std::optional<std::string> map;  // none if no map contains the item
};

// Whether both have the same value, and a map contains the item in both or in none.
bool IsSame(const Result& one, const Result& other);

// The chain of one device: the numbers of its maps, in order.
using MapIds = std::span<const std::uint32_t>;

// The results of one feature.
class Results {
 public:
  Results() = default;
  Results(std::unordered_map<std::uint32_t, Result> by_map, Result missing, bool is_stable)
      : by_map_(std::move(by_map)), missing_(std::move(missing)), is_stable_(is_stable) {}

  // False if the core returned different values for the same call.
  bool is_stable() const { return is_stable_; }

  // Whether any map contains the feature.
  bool has_any() const { return !by_map_.empty(); }

  // The result of a device with this chain, and the position of its map in the chain. If the item
  // is missing, the position is the length of the chain.
  std::pair<const Result*, std::size_t> Find(MapIds chain) const;

  const Result& Get(MapIds chain) const { return *Find(chain).first; }

  // Whether the results of all devices are the same.
  bool AreSame(const Results& others) const;

 private:
  std::unordered_map<std::uint32_t, Result> by_map_;
  Result missing_;
  bool is_stable_ = true;
};

// The chains of all devices in one family.
class FleetChains {
 public:
  FleetChains(const Family& family, const Fleet& fleet);

  const Family& family() const { return family_; }
  const Fleet& fleet() const { return fleet_; }

  // The chain of the device with the region and the carrier at these positions in the fleet.
  MapIds Get(std::size_t region, std::size_t carrier) const;

  // The names of all maps in the chains.
  std::vector<std::string> MapNames() const;

  // The results of a feature with the current data of the core. With `maps`, only these maps are
  // tested for the item.
  Results Collect(Kind kind, const std::string& key,
                  const std::vector<std::string>* maps = nullptr) const;

 private:
  struct Map {
    std::string name;
    bool is_sim;         // consulted with an existence test for SIM data
    std::size_t device;  // a device that consults it
  };

  std::uint32_t IdOf(const std::string& map, bool is_sim, std::size_t device);
  void SetCodes(std::size_t device) const;
  // Makes the lookup as if only `map` contained the item, or no map if it is NULL. Clears
  // `is_stable` if the core contradicts itself.
  Result LookUpAsIfOnlyIn(const Map* map, const Query& query, bool& is_stable) const;

  const Family& family_;
  const Fleet& fleet_;
  std::vector<Map> maps_;
  std::unordered_map<std::string, std::uint32_t> ids_[2];  // by name; [1]: of maps with SIM data
  std::vector<std::uint32_t> chains_;                      // of all devices, concatenated
  std::vector<std::size_t> ends_ = {0};                    // of each chain in chains_
};

}  // namespace cadrova::tools
