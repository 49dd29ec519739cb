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

// In the order of the file, without duplicates, and without warnings at the place of an error.
std::vector<Finding> Sorted(std::vector<Finding> findings);

// All findings in `contents` for these devices. If codes are derived from map names, a mistyped map
// name gives a new code, so similar map names are also reported.
std::vector<Finding> CheckContents(const host::Contents& contents, const Fleet& fleet,
                                   bool has_derived_codes);

}  // namespace cadrova::tools
