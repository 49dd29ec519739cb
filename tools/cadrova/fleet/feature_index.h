// What a core holds, by feature.
#pragma once

#include <string>
#include <vector>

#include "cadrova/host.h"

// A key, as one kind, and the maps that hold it.
struct Feature {
  std::string key, kind;
  std::vector<std::string> maps;
};

// All of them, by key and kind. A list that is empty is of the list kinds that its key has in other
// maps; of all, where it has none.
std::vector<Feature> FeaturesOf(const cadrova::host::Inventory& inventory);

// The names of all maps.
std::vector<std::string> MapsOf(const cadrova::host::Inventory& inventory);
