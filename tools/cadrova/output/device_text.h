// What devices get, as text for a terminal.
#pragma once

#include <string>
#include <vector>

#include "cadrova/host.h"
#include "fleet/device_results.h"

namespace cadrova::tools {

// One line per feature; more if families have different results.
std::string ToText(const std::vector<FeatureResults>& features, const std::vector<Device>& devices,
                   const host::Contents& contents);

}  // namespace cadrova::tools
