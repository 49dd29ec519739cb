// The devices that customization is for: each region with each carrier.
#pragma once

#include <string>
#include <vector>

// Codes; the empty one is the unset one.
struct Fleet {
  std::vector<std::string> regions, carriers;

  std::size_t size() const { return regions.size() * carriers.size(); }
};

// The codes that maps with these names are for, and the unset ones.
Fleet FleetOf(const std::vector<std::string>& maps);
