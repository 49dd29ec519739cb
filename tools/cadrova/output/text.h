// Values and results as text for a terminal.
#pragma once

#include <string>
#include <vector>

#include "fleet/feature_index.h"
#include "fleet/findings.h"
#include "fleet/matrix_layout.h"
#include "lookup/families.h"

namespace cadrova::tools {

// For use in shell scripts: one line, or one line per element of a list.
std::string ToLines(const Value& value);

// `file` is the customization file that has the features.
std::string ToText(const std::vector<Feature>& features, const std::string& file);

// The results of a feature of this kind on every device.
std::string ToText(const FleetChains& chains, const Results& results,
                   const PassedOverMaps& passed_over);

// One line per finding: file:line:column: error: message [name]
std::string ToText(const std::vector<Finding>& findings);

}  // namespace cadrova::tools
