// The results of lookups on every device of a fleet.
//
// The names of the maps in a chain are composed of the two codes of the device. So the library is
// called once with two marks as the codes, to record its chain as patterns. The maps of a device
// are those that the patterns name with its codes; a sample of the devices is compared with the
// library. Then, for each map that contains a feature, the library is called once, as a device that
// consults that map, with every other existence test forced to false. Every device on whose chain
// this map is the first to contain the feature has this result.
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

// A map in a chain.
struct ChainMap {
  std::uint32_t id;
  std::uint32_t position;  // in the chain, also counting maps that do not exist

  auto operator<=>(const ChainMap&) const = default;
};

// The maps in the chain of a device that exist, in order.
using ChainMaps = std::span<const ChainMap>;

constexpr std::uint32_t kNoPosition = -1;

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

  // The result of a device with this chain, and the position of its map. If the item is missing,
  // the position is kNoPosition. The maps before the position `first` are passed over.
  std::pair<const Result*, std::uint32_t> Find(ChainMaps chain, std::uint32_t first = 0) const;

  const Result& Get(ChainMaps chain) const { return *Find(chain).first; }

  // The result of a device none of whose maps contains the item.
  const Result& missing() const { return missing_; }

  // By the ids of their maps.
  const std::unordered_map<std::uint32_t, Result>& by_map() const { return by_map_; }

 private:
  std::unordered_map<std::uint32_t, Result> by_map_;
  Result missing_;
  bool is_stable_ = true;
};

// The chains of all devices in one family.
class FleetChains {
 public:
  // `maps` are the maps that exist. Without them, every map in a chain may exist.
  FleetChains(const Family& family, const Fleet& fleet,
              const std::vector<std::string>* maps = nullptr);

  const Family& family() const { return family_; }
  const Fleet& fleet() const { return fleet_; }

  // The chain of the device with the region and the carrier at these positions in the fleet, which
  // must have it.
  ChainMaps Get(std::size_t region, std::size_t carrier) const {
    const std::size_t device = region * fleet_.carriers.size() + carrier;
    return ChainMaps(chains_).subspan(ends_[device], ends_[device + 1] - ends_[device]);
  }

  // The chains of some devices. That of each other device has the same maps of `results`, in the
  // same order, as one of them.
  std::vector<ChainMaps> DistinctChains(std::initializer_list<const Results*> results) const;

  // The number of maps in a chain, also counting maps that do not exist.
  std::size_t length() const { return patterns_.size(); }

  // The names of all maps in the chains that exist, by id.
  std::vector<std::string> MapNames() const;
  const std::string& MapName(std::uint32_t id) const { return maps_[id].name; }
  // Whether the chains consult it with existence tests for SIM data.
  bool IsSim(std::uint32_t id) const { return maps_[id].is_sim; }
  // The ids of the maps with these names, or of all if `names` is NULL.
  std::vector<std::uint32_t> IdsOf(const std::vector<std::string>* names) const;

  // The results of a feature with the current data of the core. With `maps`, only these maps are
  // tested for the item.
  Results Collect(Kind kind, const std::string& key,
                  const std::vector<std::string>* maps = nullptr) const;

 private:
  // A map in the recorded chain.
  struct Pattern {
    std::string name;  // with marks instead of the codes
    bool is_sim;       // consulted with an existence test for SIM data
    bool has_region, has_carrier;

    bool has_both() const { return has_region && has_carrier; }
  };
  struct Map {
    std::string name;
    bool is_sim;
    std::size_t region, carrier;  // of a device that consults it
    // Where patterns name it: with a region and any carrier, with a carrier, or with both codes.
    std::vector<std::size_t> regions = {}, carriers = {}, devices = {};
  };

  void RecordPatterns();
  void CompareSample() const;
  void CompareWithLibrary(std::size_t region, std::size_t carrier) const;
  std::string NameOf(const Pattern& pattern, std::size_t region, std::size_t carrier) const;
  void ComposeChains(const std::vector<std::string>* maps);
  void SetCodes(std::size_t region, std::size_t carrier) const;
  // Makes the lookup as if only `map` contained the item, or no map if it is NULL. Clears
  // `is_stable` if the core contradicts itself.
  Result LookUpAsIfOnlyIn(const Map* map, const Query& query, bool& is_stable) const;

  const Family& family_;
  const Fleet& fleet_;
  std::vector<Pattern> patterns_;
  std::vector<Map> maps_;                                  // by id
  std::unordered_map<std::string, std::uint32_t> ids_[2];  // by name; [1]: of maps with SIM data
  std::vector<ChainMap> chains_;                           // of all devices, concatenated
  std::vector<std::size_t> ends_ = {0};                    // of each chain in chains_
};

}  // namespace cadrova::tools
