// The contents of a core, by feature.
#pragma once

#include <string>
#include <vector>

#include "cadrova/host.h"

namespace cadrova::tools {

// A key with one kind, and the maps that contain it.
struct Feature {
  std::string key;
  host::Kind kind;
  std::vector<std::string> maps;
};

// All features, sorted by key and kind. An empty list has the list kinds that its key has in other
// maps, or every list kind if there are none.
std::vector<Feature> IndexFeatures(const host::Contents& contents);

std::vector<std::string> MapNames(const host::Contents& contents);

}  // namespace cadrova::tools
