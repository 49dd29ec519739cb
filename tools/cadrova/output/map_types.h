// The types of map, for example COTA_‹carrier›. Pages and terminals color a result by the type of
// its map.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "lookup/families.h"

namespace cadrova::tools {

// The types in the chains of all families, in the order of the longest chain.
const std::vector<std::string>& MapTypeNames();

// The type at each position in the family's chain, as a position in these names.
const std::vector<std::size_t>& MapTypesOf(const Family& family);

// The color of a result from the map at this position in the family's chain, for `Colored`. "" if
// text is not colored, and for the last type and kNoPosition.
std::string MapColor(const Family& family, std::uint32_t position);

}  // namespace cadrova::tools
