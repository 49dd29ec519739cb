// The project file cadrova.toml: which devices exist, and what `check` reports about their data.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "cadrova/host.h"
#include "fleet/devices.h"

namespace cadrova::tools {

struct FleetFile {
  // A finding that `check` does not report at all.
  struct Disabled {
    std::string finding;
    host::Place place;
  };
  // A finding that `check` does not report for these maps and keys.
  struct Allowance {
    std::string finding;
    std::optional<std::string> map, key;  // shell patterns
    host::Place place;
  };

  std::string path;  // as it was named
  // The declared codes. With `devices`, the codes of these in the order of their first appearance.
  std::optional<std::vector<std::string>> regions, carriers;
  std::optional<std::vector<Device>> devices;  // all that exist
  bool is_strict = false;
  std::vector<Disabled> disabled;
  std::vector<Allowance> allowed;
};

// Throws a Failure with the place of the first error in the file.
FleetFile ReadFleetFile(const std::string& path);

// The path of the file cadrova.toml in the folder of the customization file, if there is one.
// Standard input, "-", has no folder, and cadrova.toml is not its own fleet file.
std::optional<std::string> FindFleetFile(const std::string& data_file);

}  // namespace cadrova::tools
