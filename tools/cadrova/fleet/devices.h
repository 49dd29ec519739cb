// The devices that the command looks up features on: each region with each carrier.
#pragma once

#include <string>
#include <vector>

namespace cadrova::tools {

// Region and carrier codes. An empty code means that the property is unset.
struct Fleet {
  std::vector<std::string> regions, carriers;

  std::size_t size() const { return regions.size() * carriers.size(); }
};

// The codes in the names of these maps, and the empty codes.
Fleet FleetOf(const std::vector<std::string>& map_names);

}  // namespace cadrova::tools
