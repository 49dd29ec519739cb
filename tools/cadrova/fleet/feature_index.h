// The contents of a core, by feature.
#pragma once

#include <initializer_list>
#include <string>
#include <vector>

#include "cadrova/host.h"

namespace cadrova::tools {

// A key with one kind, and the maps that contain it.
struct Feature {
  std::string key;
  host::Kind kind;
  std::vector<std::string> maps;
  // Of the items in these maps, in the same order, if they are all in one customization file.
  std::vector<host::Place> places = {};
};

// All features in these contents, sorted by key and kind. An empty list has the list kinds that its
// key has in other maps, or every list kind if there are none.
std::vector<Feature> IndexFeatures(std::initializer_list<const host::Contents*> all_contents);

std::vector<std::string> MapNames(const host::Contents& contents);

// The keys of all items, sorted, each once.
std::vector<std::string> Keys(const host::Contents& contents);

}  // namespace cadrova::tools
