// Values and results as text for a terminal.
#pragma once

#include <string>
#include <vector>

#include "fleet/changes.h"
#include "fleet/findings.h"
#include "fleet/matrix_layout.h"
#include "lookup/explanation.h"

namespace cadrova::tools {

// For shells: one line, or one per element of a list.
std::string ToLines(const Value& value);

std::string ToText(const std::vector<Feature>& features);

// What the fake core adds to an explanation, each a list of lines.
struct DataFacts {
  std::string file;
  std::vector<std::string> other_maps;  // not in the chain, and contain the key
  std::vector<std::string> similar_keys;
};
std::string ToText(const Explanation& explanation, const DataFacts* facts);

std::string ToText(const MatrixLayout& layout, const Fleet& fleet);

// One line per change: what it was, what it is, and the devices.
std::string ToText(const std::vector<Change>& changes, const Fleet& fleet);

// One line per finding: file:line:column: error: message
std::string ToText(const std::vector<Finding>& findings, const std::string& file);

}  // namespace cadrova::tools
