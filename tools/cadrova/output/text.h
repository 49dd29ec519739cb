// Values and results as text for a terminal.
#pragma once

#include <string>
#include <vector>

#include "fleet/feature_index.h"
#include "fleet/findings.h"
#include "fleet/matrix_layout.h"
#include "lookup/explanation.h"

namespace cadrova::tools {

// For use in shell scripts: one line, or one line per element of a list.
std::string ToLines(const Value& value);

// `file` is the customization file that has the features.
std::string ToText(const std::vector<Feature>& features, const std::string& file);

// Facts about the data, which only the fake core gives. Each is a list of lines.
struct DataFacts {
  std::string file;
  std::vector<std::string> other_maps;  // contain the key, but are not in the chain
  std::vector<std::string> similar_keys;
};
std::string ToText(const Explanation& explanation, const DataFacts* facts);

std::string ToText(const MatrixLayout& layout, const Fleet& fleet);

// One line per finding: file:line:column: error: message [name]
std::string ToText(const std::vector<Finding>& findings);

}  // namespace cadrova::tools
