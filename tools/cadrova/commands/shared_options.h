// Options that several commands share.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "commands/command_line.h"
#include "fleet/devices.h"
#include "lookup/query.h"

namespace cadrova::tools {

// --data
class DataOption {
 public:
  void DeclareOptions(Options& options);

  // Makes the core use the file, if one is given.
  void Apply() const;

 private:
  std::optional<std::string> file_;
};

// The options and arguments of commands that make one lookup on one device.
class QueryOptions {
 public:
  void DeclareOptions(Options& options);

  // Sets the given codes, data and SIM items, and returns the lookup.
  Query Apply() const;

 private:
  std::string family_, kind_, key_;
  std::optional<std::string> default_, region_, carrier_;
  DataOption data_;
  std::vector<std::string> sim_items_;
};

// --regions and --carriers
class FleetOptions {
 public:
  void DeclareOptions(Options& options);

  // Whether both options are given, so that no code comes from the names of maps.
  bool are_complete() const { return regions_ && carriers_; }

  // The given codes. If an option is missing, the codes come from the names of the maps.
  Fleet ToFleet(const std::vector<std::string>& map_names) const;

 private:
  std::optional<std::string> regions_, carriers_;
};

// Throws a Failure if more than one of the named options is given.
void RefuseCombination(const std::vector<std::pair<std::string, bool>>& options);

}  // namespace cadrova::tools
