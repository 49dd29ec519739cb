// The chains that the lookups of one key consult, to find items that can be removed.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "fleet/results.h"

namespace cadrova::tools {

class KeyChains {
 public:
  // The maps that contain the key, each by the number of its item, which is its position.
  explicit KeyChains(const std::vector<std::string_view>& maps);

  // Adds the lookups of one family. With `is_judged`, an item that changes a result of these
  // lookups is not redundant.
  void Add(const FleetChains& chains, const Results& results, bool is_judged);

  // The items that can be removed together without changing a result. Each is tested as if those
  // before it were removed, so the test begins with the items that are nearest the device.
  std::vector<std::size_t> FindRedundant(std::size_t item_in_default) const;

 private:
  struct Entry {
    std::size_t item;
    std::size_t value;  // a number; equal values have the same
  };
  using Chain = std::vector<Entry>;  // only the items that exist
  struct ChainsOfItem {
    std::vector<std::size_t> chains;
    std::size_t distance = 0;  // the longest one to the end of a chain
  };

  std::size_t NumberOf(const Result& result);

  // Whether a device with this chain gets another value without the item.
  bool IsNeeded(std::size_t item, std::size_t number, const std::vector<bool>& is_removed) const;

  std::unordered_map<std::string_view, std::size_t> numbers_;  // of the items, by map
  std::vector<Chain> chains_;
  std::vector<std::size_t> missing_values_;  // of each chain, if no map contains the item
  std::vector<ChainsOfItem> chains_of_;      // by item
  std::unordered_map<std::string, std::size_t> values_;
};

}  // namespace cadrova::tools
