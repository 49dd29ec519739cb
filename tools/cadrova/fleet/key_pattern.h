// A pattern that selects keys.
#pragma once

#include <string>
#include <utility>
#include <vector>

namespace cadrova::tools {

// Without wildcards, it matches any part of a key, in any case; otherwise, it is a shell pattern
// for the whole key. An empty one matches every key.
class KeyPattern {
 public:
  explicit KeyPattern(std::string pattern) : pattern_(std::move(pattern)) {}

  bool Matches(const std::string& key) const;

  // "matches 'rign'; did you mean calling.ring_seconds?", if it matches none of these keys.
  std::string WithSuggestion(const std::vector<std::string>& keys) const;

 private:
  std::string pattern_;
};

}  // namespace cadrova::tools
