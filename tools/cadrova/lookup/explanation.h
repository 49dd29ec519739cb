// Why a lookup returns what it returns.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "lookup/recording.h"

namespace cadrova::tools {

// A map of the chain, and what it contains under the key.
struct ChainEntry {
  std::string map;
  bool is_consulted = false;  // or only if no earlier map contained the item
  bool is_source = false;     // the value comes from it
  std::vector<Kind> kinds;
  std::optional<Value> value;  // of the kind that the lookup reads, if the map contains one
};

struct Explanation {
  Query query;
  Recording recording;
  std::vector<ChainEntry> chain;
};

// Records the lookup, then its whole chain, and queries each map in it.
Explanation Explain(const Query& query);

}  // namespace cadrova::tools
