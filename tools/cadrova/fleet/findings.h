// What is wrong or redundant in a customization file.
#pragma once

#include <string>
#include <vector>

#include "cadrova/host.h"
#include "fleet/devices.h"

namespace cadrova::tools {

struct Finding {
  host::Place place;
  bool is_error;  // or else a warning
  std::string message;
};

// In the order of the file, each once. A warning is dropped if there is an error at its place.
std::vector<Finding> Sorted(std::vector<Finding> findings);

// All findings in `contents` for these devices. If codes are derived from the names of the maps,
// names that differ only slightly are reported, too, as each makes devices of its own.
std::vector<Finding> FindProblems(const host::Contents& contents, const Fleet& fleet,
                                  bool has_derived_codes);

}  // namespace cadrova::tools
