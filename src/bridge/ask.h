// How the core is asked anything.
#pragma once

#include <string>

namespace android {

// Asks the core once, with private copies of the strings that are gone before its answer is looked
// at. The core never sees the caller's own objects.
template <class Answer, class... Default, class... Given>
[[gnu::always_inline]] inline Answer Ask(Answer (*question)(const std::string&, const std::string&,
                                                            Default...),
                                         const std::string& map, const std::string& key,
                                         const Given&... default_value) {
  // NOLINTBEGIN(performance-unnecessary-copy-initialization): copies are what the core is owed.
  const std::string private_map = map;
  const std::string private_key = key;
  // NOLINTEND(performance-unnecessary-copy-initialization)
  return question(private_map, private_key, Given(default_value)...);
}

}  // namespace android
