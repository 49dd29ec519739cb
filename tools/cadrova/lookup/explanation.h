// Why a lookup returns its value.
#pragma once

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

#include "cadrova/host.h"
#include "lookup/recording.h"

namespace cadrova::tools {

// A map of the chain, and what it contains under the key.
struct ChainEntry {
  std::string map;
  bool is_consulted = false;  // false if an earlier map contains the item
  bool is_source = false;     // the value comes from it
  std::vector<Kind> kinds;
  std::optional<Value> value;  // of the lookup's kind, if the map contains it or is the source
  bool exists = true;          // false if the data has no such map
  host::Place place = {};      // of the item in the customization file, if it is there

  bool Contains(Kind kind) const { return std::ranges::find(kinds, kind) != kinds.end(); }
};

struct Explanation {
  Query query;
  Recording recording;
  std::vector<ChainEntry> chain;
  std::optional<std::string> file;  // of the data, if the core can list it
  // How the core's later answers differ from those during the lookup: its data or a property has
  // changed, or it contradicts itself.
  std::vector<std::string> warnings;

  // The map that the value comes from, or NULL if the value is the default.
  const ChainEntry* source() const;
};

// Records the lookup, then its whole chain, and queries each map in it. `contents` are those of the
// core, or NULL if it can't list them.
Explanation Explain(const Query& query, const host::Contents* contents);

}  // namespace cadrova::tools
