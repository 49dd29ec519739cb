// Explanations as text for a terminal.
#pragma once

#include <string>
#include <vector>

#include "lookup/explanation.h"

namespace cadrova::tools {

// Facts about the data, which only the fake core gives. Each is a list of lines.
struct DataFacts {
  std::string file;
  std::vector<std::string> other_maps;  // contain the key, but are not in the chain
  std::vector<std::string> similar_keys;
};

// Explanations of the same feature, one per family. Shows the result by each, and the chain of the
// last one. `facts` may be NULL.
std::string ToText(const std::vector<Explanation>& explanations, const DataFacts* facts);

}  // namespace cadrova::tools
