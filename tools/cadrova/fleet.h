// The devices that customization is for: each region with each carrier.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "question.h"

// Codes; the empty one is the unset one.
struct Fleet {
  std::vector<std::string> regions, carriers;

  std::size_t size() const { return regions.size() * carriers.size(); }
};

// The arguments of the commands that ask every device.
class FleetArguments {
 public:
  explicit FleetArguments(CLI::App& command);

  bool are_given() const { return regions_.has_value() && carriers_.has_value(); }

  // The codes as they are given, and what is not given as the names of the maps have it.
  Fleet Take(const std::vector<std::string>& maps) const;

 private:
  std::optional<std::string> regions_, carriers_;
};
