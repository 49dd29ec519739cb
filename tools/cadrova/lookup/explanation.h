// Why a lookup returns its value.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "lookup/recording.h"

namespace cadrova::tools {

// A map of the chain, and what it contains under the key.
struct ChainEntry {
  std::string map;
  bool is_consulted = false;  // false if an earlier map contains the item
  bool is_source = false;     // the value comes from it
  std::vector<Kind> kinds;
  std::optional<Value> value;  // none if the map does not contain the item as the lookup's kind
};

struct Explanation {
  Query query;
  Recording recording;
  std::vector<ChainEntry> chain;
};

// Records the lookup, then its whole chain, and queries each map in it.
Explanation Explain(const Query& query);

}  // namespace cadrova::tools
