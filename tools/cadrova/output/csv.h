// The results of all devices as comma-separated values.
#pragma once

#include <string>

#include "fleet/results.h"

namespace cadrova::tools {

// A header and one line per device: region,carrier,value,map. Codes, strings, lists and maps are
// quoted. "" is the map with the empty name; the field is empty if no map contains the item.
std::string ToCsv(const FleetChains& chains, const Results& results);

}  // namespace cadrova::tools
