// Findings in SARIF 2.1.0, which code review tools show beside the lines.
#pragma once

#include <string>
#include <vector>

#include "fleet/findings.h"

namespace cadrova::tools {

// Files below the working folder have relative URIs. Bytes that are not UTF-8 are replaced.
std::string ToSarif(const std::vector<Finding>& findings);

}  // namespace cadrova::tools
