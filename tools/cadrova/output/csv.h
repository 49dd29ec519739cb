// The results of all devices as comma-separated values.
#pragma once

#include <string>

#include "fleet/results.h"

namespace cadrova::tools {

// A header and one line per device: region,carrier,value,map. Texts and lists are quoted. The map
// is quoted too, so that "" is the map with the empty name, and nothing is no map.
std::string ToCsv(const FleetChains& chains, const Results& results);

}  // namespace cadrova::tools
