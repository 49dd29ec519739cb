#include "fleet/map_name_suggestions.h"

#include <algorithm>
#include <string_view>

namespace cadrova::tools {
namespace {

std::string WithoutSeparatorsAround(const std::string& text) {
  const auto begin = std::ranges::find_if_not(text, IsSeparator);
  const auto end =
      std::find_if_not(text.rbegin(), std::string::const_reverse_iterator(begin), IsSeparator);
  return {begin, end.base()};
}

}  // namespace

MapNameSuggestions::MapNameSuggestions(const std::vector<std::string>& map_names,
                                       const Fleet* declared)
    : codes_(CodesInNames(map_names)) {
  for (std::size_t i = 0; i < map_names.size(); ++i) numbers_.emplace(map_names[i], i);
  if (declared != nullptr) {
    regions_.AddDeclared(declared->regions);
    carriers_.AddDeclared(declared->carriers);
    return;
  }
  for (const auto& [map, codes] : codes_) {
    if (codes.region) regions_.Add(*codes.region, numbers_.at(map));
    if (codes.carrier) carriers_.Add(*codes.carrier, numbers_.at(map));
  }
}

std::optional<std::string> MapNameSuggestions::Suggest(const std::string& map) const {
  const std::size_t number = numbers_.at(map);
  const NameCodes& codes = codes_.at(map);
  if (!regions_.IsNew(codes.region, number) && !carriers_.IsNew(codes.carrier, number)) return {};
  const std::string name = WithoutSeparatorsAround(map);
  for (const std::string_view prefix : {kCarrierPrefix, kSimPrefix}) {
    const std::string word(prefix.substr(0, prefix.size() - 1));
    const auto separator = std::ranges::find_if(name, IsSeparator);
    const std::string first_word(name.begin(), separator);
    // The separator may be missing, or the first word mistyped, but not both.
    const bool has_word = SortedWords(name.substr(0, word.size())) == SortedWords(word);
    if (!has_word && Compare(first_word, word).distance > 1) continue;
    const std::string rest =
        WithoutSeparatorsAround(name.substr(has_word ? word.size() : first_word.size()));
    auto found = Resolve(prefix, rest, number);
    if (found && *found != map) return found;
    // A new code, with a prefix in another case.
    const bool is_other_case = has_word && first_word.size() == word.size() && first_word != word;
    if (is_other_case) return std::string(prefix) + rest;
  }
  const auto found = Resolve("", name, number);
  return found && *found != map ? found : std::nullopt;
}

// `rest` follows `prefix` in the name of `map`. Its codes may be in the wrong order.
std::optional<std::string> MapNameSuggestions::Resolve(std::string_view prefix,
                                                       const std::string& rest,
                                                       std::size_t map) const {
  const std::string carrier_prefix(prefix == kSimPrefix ? kSimPrefix : kCarrierPrefix);
  std::string default_name(prefix == kSimPrefix ? kSimDefault : kDefault);
  if (rest == kDefault || IsSimilarCode(rest, std::string(kDefault))) return default_name;
  auto region = regions_.Find(rest, map);
  if (region && prefix.empty()) return region;
  if (const auto carrier = carriers_.Find(rest, map)) return carrier_prefix + *carrier;
  if (region) return region;
  for (std::size_t at = 0; at < rest.size(); ++at) {
    if (!IsSeparator(rest[at])) continue;
    const std::string parts[] = {rest.substr(0, at), rest.substr(at + 1)};
    for (const std::size_t first : {0, 1}) {
      const auto first_code = carriers_.Find(parts[first], map);
      const auto second_code = regions_.Find(parts[1 - first], map);
      if (!first_code || !second_code) continue;
      return std::string(kCarrierPrefix) + *first_code + '_' + *second_code;
    }
  }
  return {};
}

void MapNameSuggestions::Codes::Add(const std::string& code, std::size_t map) {
  maps_[code].push_back(map);
}

void MapNameSuggestions::Codes::AddDeclared(const std::vector<std::string>& codes) {
  are_declared_ = true;
  for (const std::string& code : codes) maps_[code];
}

bool MapNameSuggestions::Codes::IsNew(const std::optional<std::string>& code,
                                      std::size_t map) const {
  if (!code) return false;
  const auto found = maps_.find(*code);
  return found == maps_.end() || found->second == std::vector{map};
}

std::optional<std::string> MapNameSuggestions::Codes::Find(const std::string& text,
                                                           std::size_t map) const {
  if (text.empty()) return {};
  if (maps_.contains(text) && !IsNew(text, map)) return text;
  if (!index_) {
    std::vector<std::string> codes(maps_.size());
    std::ranges::transform(maps_, codes.begin(), [](const auto& entry) { return entry.first; });
    index_.emplace(std::move(codes));
  }
  for (const Suggestion& suggestion : index_->Suggest(text)) {
    const auto& maps = maps_.at(suggestion.name);
    // Of two similar codes that one map each knows, the second in the file is the mistyped one.
    if (!are_declared_ && (IsNew(suggestion.name, map) || (maps.size() == 1 && maps[0] > map))) {
      continue;
    }
    if (are_declared_ || IsSimilarCode(text, suggestion.name)) return suggestion.name;
  }
  if (!are_declared_) return {};
  // The name is wrong for sure, so short codes are compared, too.
  const auto is_short = [](const std::string& code) {
    return code.size() == 2 || code.size() == 3;
  };
  for (const auto& [code, maps] : maps_) {
    if (is_short(text) && is_short(code) && Compare(text, code).distance <= 1) return code;
  }
  return {};
}

}  // namespace cadrova::tools
