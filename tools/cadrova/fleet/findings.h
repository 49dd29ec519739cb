// What is wrong or redundant in a customization file.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "cadrova/host.h"
#include "fleet/devices.h"
#include "fleet/lookup_log.h"

namespace cadrova::tools {

// The name of a type of finding is part of the interface.
struct FindingType {
  const char* name;
  bool is_error;  // or else a warning
  const char* description;
};
std::span<const FindingType> FindingTypes();

struct Finding {
  const FindingType* type;
  bool is_error;
  std::string file;   // as the user named it
  host::Place place;  // line 0 for the whole file, column 0 for the whole line
  std::string message;
  std::string map, key;  // that the finding is about, if any
};

Finding MakeFinding(const std::string& type, const std::string& file, host::Place place,
                    const std::string& message, const std::string& map = "",
                    const std::string& key = "");

// In the order of the files, without duplicates, and without warnings about an item with an error.
std::vector<Finding> Sorted(std::vector<Finding> findings);

// All findings in `contents` for these devices, in any order. If codes are derived from map names,
// a mistyped map name gives a new code, so similar map names are also reported. The lookups of
// `logs` are compared with the contents; with `reports_unused`, keys that are in none of them are
// reported.
std::vector<Finding> CheckContents(const host::Contents& contents, const Fleet& fleet,
                                   bool has_derived_codes, std::span<const LookupLog> logs = {},
                                   bool reports_unused = false);

}  // namespace cadrova::tools
