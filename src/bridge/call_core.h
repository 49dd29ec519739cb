// How the core is asked anything.
#pragma once

#include <string>

namespace android::cadrova_cpp {

// Asks the core once, with private copies of the strings that are gone before its answer is looked
// at. The core never sees the caller's own objects. `rest` is the default, or what is handed over.
template <class Question, class... Rest>
inline auto CallCore(Question* question, const std::string& map, const std::string& key,
                     const Rest&... rest) {
  // NOLINTBEGIN(performance-unnecessary-copy-initialization): copies are what the core is owed.
  const std::string private_map = map;
  const std::string private_key = key;
  // NOLINTEND(performance-unnecessary-copy-initialization)
  return question(private_map, private_key, Rest(rest)...);
}

}  // namespace android::cadrova_cpp
