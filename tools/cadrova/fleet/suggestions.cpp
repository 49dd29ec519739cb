#include "fleet/suggestions.h"

#include <algorithm>
#include <cctype>
#include <functional>
#include <numeric>
#include <set>
#include <string_view>
#include <tuple>

#include "common/text.h"

namespace cadrova::tools {
namespace {

std::string ToLower(const std::string& text) {
  std::string lower;
  for (const unsigned char byte : text) lower += static_cast<char>(std::tolower(byte));
  return lower;
}

// The Damerau-Levenshtein distance in which no byte is edited twice (optimal string alignment).
std::size_t EditDistance(std::string_view one, std::string_view other) {
  std::vector<std::size_t> row(other.size() + 1), last = row, before_last = row;
  std::iota(row.begin(), row.end(), std::size_t{0});
  for (std::size_t i = 0; i < one.size(); ++i) {
    before_last.swap(last);
    last.swap(row);
    row[0] = i + 1;
    for (std::size_t j = 0; j < other.size(); ++j) {
      row[j + 1] = std::min({last[j] + (one[i] == other[j] ? 0 : 1), last[j + 1] + 1, row[j] + 1});
      if (i > 0 && j > 0 && one[i] == other[j - 1] && one[i - 1] == other[j]) {
        row[j + 1] = std::min(row[j + 1], before_last[j - 1] + 1);
      }
    }
  }
  return row.back();
}

// Almost all such names are within a distance of 1.
bool IsShort(const std::string& name) { return name.size() < 3; }

bool IsWithin(const Suggestion& suggestion, const std::string& name, std::size_t distance) {
  return !suggestion.has_other_words || suggestion.distance <= (IsShort(name) ? 0 : distance);
}

std::size_t MostEdits(const std::string& name) { return std::max<std::size_t>(1, name.size() / 5); }

bool DifferOnlyInNumbers(const std::string& one, const std::string& other) {
  const auto is_digit = [](const std::string& name, std::size_t i) {
    return i < name.size() && name[i] >= '0' && name[i] <= '9';
  };
  std::size_t i = 0, j = 0;
  while (i < one.size() && j < other.size()) {
    if (is_digit(one, i) && is_digit(other, j)) {
      while (is_digit(one, i)) ++i;
      while (is_digit(other, j)) ++j;
    } else if (one[i++] != other[j++]) {
      return false;
    }
  }
  return i == one.size() && j == other.size();
}

std::string WithoutDigits(std::string text) {
  std::erase_if(text, [](char byte) { return byte >= '0' && byte <= '9'; });
  return text;
}

std::string WithoutDoubledLetters(std::string lower) {
  const auto is_doubled = [](char one, char next) {
    return one == next && std::isalpha(static_cast<unsigned char>(one)) != 0;
  };
  lower.erase(std::ranges::unique(lower, is_doubled).begin(), lower.end());
  return lower;
}

// Different hashes of the name, its words, the name without its first level, and the name without
// one byte.
std::vector<std::size_t> Hashes(const std::string& name) {
  const std::hash<std::string> hash;
  const std::string lower = ToLower(name);
  std::vector<std::size_t> hashes = {hash(SortedWords(name)), hash(lower)};
  const std::size_t level = lower.find('.');
  if (level != std::string::npos) hashes.push_back(hash(lower.substr(level + 1)));
  for (std::size_t i = 0; i < lower.size(); ++i) {
    hashes.push_back(hash(std::string(lower).erase(i, 1)));
  }
  std::ranges::sort(hashes);
  hashes.erase(std::ranges::unique(hashes).begin(), hashes.end());
  return hashes;
}

// In lower case.
std::vector<std::string> Words(const std::string& name) {
  std::vector<std::string> words(1);
  for (const char byte : ToLower(name)) {
    if (IsSeparator(byte)) {
      words.emplace_back();
    } else {
      words.back() += byte;
    }
  }
  return words;
}

bool IsSimilarWord(const std::string& a, const std::string& b) {
  if (EditDistance(a, b) != 1) return false;
  return WithoutDoubledLetters(a) == WithoutDoubledLetters(b) ||
         (std::min(a.size(), b.size()) >= 4 && WithoutDigits(a) != WithoutDigits(b));
}

}  // namespace

bool IsSeparator(char byte) {
  const auto code = static_cast<unsigned char>(byte);
  return code < 0x80 && std::isalnum(code) == 0;
}

bool IsSimilarCode(const std::string& code, const std::string& other) {
  const auto words = Words(code), other_words = Words(other);
  if (words.size() != other_words.size()) return IsSimilarWord(ToLower(code), ToLower(other));
  const auto [word, other_word] = std::ranges::mismatch(words, other_words);
  if (word == words.end()) return code != other;
  return IsSimilarWord(*word, *other_word) &&
         std::equal(word + 1, words.end(), other_word + 1, other_words.end());
}

std::string SortedWords(const std::string& name) {
  auto words = Words(name);
  std::ranges::sort(words);
  std::string sorted;
  for (const std::string& word : words) sorted += word.empty() ? "" : word + ' ';
  return sorted;
}

std::string DidYouMean(const std::string& name) {
  return "; did you mean " + DisplayName(name) + '?';
}

Suggestion Compare(const std::string& name, const std::string& existing) {
  const std::string words = SortedWords(name), a = ToLower(name), b = ToLower(existing);
  const bool is_level = a.ends_with('.' + b) || b.ends_with('.' + a);
  return {words.empty() || words != SortedWords(existing), is_level ? 1 : EditDistance(a, b),
          existing};
}

std::vector<Suggestion> Suggest(const std::string& name,
                                const std::vector<std::string>& candidates) {
  std::vector<Suggestion> suggestions;
  for (const std::string& candidate : candidates) {
    Suggestion suggestion = Compare(name, candidate);
    if (IsWithin(suggestion, name, MostEdits(name))) suggestions.push_back(std::move(suggestion));
  }
  std::ranges::sort(suggestions);
  return suggestions;
}

std::optional<std::string> SuggestByPart(const std::string& text,
                                         const std::vector<std::string>& names) {
  if (text.empty()) return std::nullopt;
  const std::size_t most_edits = MostEdits(text);
  std::optional<Suggestion> best;
  const auto rank = [](const Suggestion& suggestion) {
    const auto& [has_other_words, distance, name] = suggestion;
    return std::tuple(has_other_words, distance, name.size(), std::string_view(name));
  };
  const auto compare = [&](const std::string& name, const std::string& part) {
    Suggestion suggestion = Compare(text, part);
    suggestion.name = name;
    if (!IsWithin(suggestion, text, most_edits)) return;
    if (!best || rank(suggestion) < rank(*best)) best = std::move(suggestion);
  };
  for (const std::string& name : names) {
    compare(name, name);
    const auto is_end = [&](std::size_t i) { return i == name.size() || IsSeparator(name[i]); };
    for (std::size_t begin = 0; begin < name.size(); ++begin) {
      if (begin > 0 && !IsSeparator(name[begin - 1])) continue;
      // A part of another length is not similar.
      const std::size_t shortest = text.size() - std::min(text.size(), most_edits);
      const std::size_t longest = std::min(text.size() + most_edits, name.size() - begin);
      for (std::size_t size = shortest; size <= longest; ++size) {
        if (is_end(begin + size)) compare(name, name.substr(begin, size));
      }
    }
  }
  return best ? std::optional(best->name) : std::nullopt;
}

SuggestionIndex::SuggestionIndex(std::vector<std::string> names) : names_(std::move(names)) {
  for (std::uint32_t i = 0; i < names_.size(); ++i) {
    for (const std::size_t hash : Hashes(names_[i])) hashes_.emplace_back(hash, i);
  }
  std::ranges::sort(hashes_);
}

std::vector<Suggestion> SuggestionIndex::Suggest(const std::string& name) const {
  using Entry = std::pair<std::size_t, std::uint32_t>;
  std::set<Suggestion> suggestions;
  for (const std::size_t hash : Hashes(name)) {
    for (const auto& [other, i] : std::ranges::equal_range(hashes_, hash, {}, &Entry::first)) {
      if (DifferOnlyInNumbers(names_[i], name)) continue;
      Suggestion suggestion = Compare(name, names_[i]);
      if (IsWithin(suggestion, name, 1)) suggestions.insert(std::move(suggestion));
    }
  }
  return {suggestions.begin(), suggestions.end()};
}

}  // namespace cadrova::tools
