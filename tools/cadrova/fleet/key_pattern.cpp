#include "fleet/key_pattern.h"

#include <fnmatch.h>

#include <cstring>

#include "common/text.h"
#include "fleet/suggestions.h"

namespace cadrova::tools {

bool KeyPattern::Matches(const std::string& key) const {
  return pattern_.find_first_of("*?[") == std::string::npos
             ? strcasestr(key.c_str(), pattern_.c_str()) != nullptr
             : fnmatch(pattern_.c_str(), key.c_str(), 0) == 0;
}

std::string KeyPattern::WithSuggestion(const std::vector<std::string>& keys) const {
  std::string text = pattern_;
  std::erase_if(text, [](char byte) { return std::strchr("*?[]", byte) != nullptr; });
  const auto similar = SuggestByPart(text, keys);
  return "matches '" + (pattern_.empty() ? "*" : pattern_) + '\'' +
         (similar ? DidYouMean(*similar) : "");
}

}  // namespace cadrova::tools
