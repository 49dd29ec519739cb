// The devices that the tools look at: each region with each carrier.
#pragma once

#include <string>
#include <vector>

namespace cadrova::tools {

// Region and carrier codes; an empty one is an unset one.
struct Fleet {
  std::vector<std::string> regions, carriers;

  std::size_t size() const { return regions.size() * carriers.size(); }
};

// The codes in the names of these maps, and the unset codes.
Fleet FleetOf(const std::vector<std::string>& map_names);

}  // namespace cadrova::tools
