// Suggests existing names for a mistyped name.
#pragma once

#include <compare>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace cadrova::tools {

// An existing name, and how it differs from another name. The best suggestion sorts first.
struct Suggestion {
  bool has_other_words;  // false if only case, order of words or separators differ
  std::size_t distance;  // the number of bytes inserted, deleted, replaced or swapped with the next
  std::string name;

  auto operator<=>(const Suggestion&) const = default;
};

// "; did you mean ring?", for the end of a message.
std::string DidYouMean(const std::string& name);

// Ignores case. One additional level in front of either name ("ring.seconds" and "seconds") is a
// distance of 1.
Suggestion Compare(const std::string& name, const std::string& existing);

// The candidates that have the same words as `name`, or a distance of at most 1 or a fifth of its
// length. For a name of fewer than three bytes, the distance must be 0.
std::vector<Suggestion> Suggest(const std::string& name,
                                const std::vector<std::string>& candidates);

// The most similar name, or nothing if none is similar. Compares `text` with each name and with
// each sequence of words in it: "rign" is similar to calling.ring_seconds. Of equally similar
// names, the shortest.
std::optional<std::string> SuggestByPart(const std::string& text,
                                         const std::vector<std::string>& names);

// Whether `code` may be a mistyped `other`, where both are regions or both are carriers: they
// differ only in case, in one doubled letter, or, if both have at least four bytes, in one edit of
// anything but a digit. Almost all shorter codes are within one edit: US is not a mistyped UK, nor
// X1 of X2.
bool IsSimilarCode(const std::string& code, const std::string& other);

// Whether the byte separates the words of a name: an ASCII character that is no letter or digit.
bool IsSeparator(char byte);

// The words of `name`, independent of their case, order and separators.
std::string SortedWords(const std::string& name);

// Finds suggestions with a distance of at most 1 quickly among many names. Names that differ only
// in numbers, such as band.1 and band.2, are not suggestions for each other.
class SuggestionIndex {
 public:
  explicit SuggestionIndex(std::vector<std::string> names);

  std::vector<Suggestion> Suggest(const std::string& name) const;

 private:
  std::vector<std::string> names_;
  // Sorted pairs of a hash and the position of a name. Two names within a distance of 1 have at
  // least one hash in common.
  std::vector<std::pair<std::size_t, std::uint32_t>> hashes_;
};

}  // namespace cadrova::tools
