// What a mistyped name may have been meant to be.
#pragma once

#include <string>
#include <utility>
#include <vector>

// Of `items`, (map, key) pairs, those under `key` in maps that are none of `maps`, the most alike
// first; said of each is whether its map is one of these but for case, order and signs.
std::vector<std::string> Elsewhere(const std::vector<std::pair<std::string, std::string>>& items,
                                   const std::vector<std::string>& maps, const std::string& key);

// Of `items`, those whose keys are almost `key`, the most alike first, and of equals those in
// `maps`.
std::vector<std::string> Similar(const std::vector<std::pair<std::string, std::string>>& items,
                                 const std::vector<std::string>& maps, const std::string& key);
