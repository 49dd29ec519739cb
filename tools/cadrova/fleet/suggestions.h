// Which existing name a mistyped one may stand for.
#pragma once

#include <compare>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace cadrova::tools {

// An existing name, and how much another name resembles it. The best suggestion sorts first.
struct Suggestion {
  bool has_other_words;  // false: the same words in another case or order, or with other separators
  std::size_t distance;  // how many bytes are inserted, deleted, replaced or swapped with the next
  std::string name;

  auto operator<=>(const Suggestion&) const = default;
};

// Compares without regard to case. A level more or less in front ("ring.seconds" for "seconds") is
// a distance of 1.
Suggestion Compare(const std::string& name, const std::string& existing);

// The candidates that have the same words as `name`, or are within a distance of a fifth of its
// length, but at least 1. Names of fewer than three bytes must have a distance of 0.
std::vector<Suggestion> Suggest(const std::string& name,
                                const std::vector<std::string>& candidates);

// The words of `name`, independent of their case, order and separators.
std::string SortedWords(const std::string& name);

// Makes suggestions within a distance of 1 from many names, for many names. Names that differ only
// in their numbers, such as band.1 and band.2, are no suggestions for each other.
class SuggestionIndex {
 public:
  explicit SuggestionIndex(std::vector<std::string> names);

  std::vector<Suggestion> Suggest(const std::string& name) const;

 private:
  std::vector<std::string> names_;
  // Hashes of which two names within a distance of 1 share at least one; sorted.
  std::vector<std::pair<std::size_t, std::uint32_t>> hashes_;
};

}  // namespace cadrova::tools
