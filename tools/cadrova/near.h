// What a mistyped name may have been meant to be.
#pragma once

#include <string>
#include <utility>
#include <vector>

// The map and key of each.
using Items = std::vector<std::pair<std::string, std::string>>;

// The maps that are none of `maps` and hold `key`, the most alike first; said of each is which of
// these it is but for case, order and signs.
std::vector<std::string> Elsewhere(const Items& items, const std::vector<std::string>& maps,
                                   const std::string& key);

// The keys that are almost `key`, the most alike first, and of equals those in `maps`.
std::vector<std::string> Similar(const Items& items, const std::vector<std::string>& maps,
                                 const std::string& key);
