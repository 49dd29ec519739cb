// Calls a function of the core.
#pragma once

#include <string>

namespace android::cadrova_cpp {

// Calls `function` once. The core gets private copies of all strings, never the caller's objects.
// The copies are destroyed before this function returns. `rest` is the default value, or the second
// string of SIM data.
template <class Function, class... Rest>
inline auto CallCore(Function* function, const std::string& map, const std::string& key,
                     const Rest&... rest) {
  // NOLINTBEGIN(performance-unnecessary-copy-initialization): the contract requires these copies.
  const std::string private_map = map;
  const std::string private_key = key;
  // NOLINTEND(performance-unnecessary-copy-initialization)
  return function(private_map, private_key, Rest(rest)...);
}

}  // namespace android::cadrova_cpp
