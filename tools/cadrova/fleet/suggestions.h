// What a mistyped name may have been meant to be.
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "cadrova/host.h"

using Items = std::vector<cadrova::host::Inventory::Item>;

// The maps that are none of `maps` and hold `key`, the most alike first; said of each is which of
// these it is but for case, order and signs.
std::vector<std::string> Elsewhere(const Items& items, const std::vector<std::string>& maps,
                                   const std::string& key);

// The keys that are almost `key`, the most alike first, and of equals those in `maps`.
std::vector<std::string> Similar(const Items& items, const std::vector<std::string>& maps,
                                 const std::string& key);

// Its words, whatever their case and order and what divides them.
std::string Folded(const std::string& name);

// Finds what one mistake may have made of a name: another case, order or sign; a byte put in, taken
// out or changed, or two swapped; a level too many in front, or one too few. Numbers tell names
// apart.
class NearNames {
 public:
  explicit NearNames(std::vector<std::string> names);

  // The most alike first.
  std::vector<std::string> Of(const std::string& name) const;

 private:
  std::vector<std::string> names_;
  // What each has in common with those near to it, as a hash; sorted.
  std::vector<std::pair<std::size_t, std::uint32_t>> traces_;
};
