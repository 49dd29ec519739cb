#include "near.h"

#include <algorithm>
#include <cctype>
#include <map>
#include <numeric>
#include <string_view>
#include <utility>

#include "json.h"

using cadrova::watch::Named;

namespace {

std::string InLowerCase(const std::string& text) {
  std::string lower;
  for (const unsigned char byte : text) lower += static_cast<char>(std::tolower(byte));
  return lower;
}

// Its words, whatever their case and order and what divides them.
std::string Folded(const std::string& name) {
  std::vector<std::string> words(1);
  for (const char byte : InLowerCase(name)) {
    const auto code = static_cast<unsigned char>(byte);
    if (code < 0x80 && std::isalnum(code) == 0) {
      words.emplace_back();
    } else {
      words.back() += byte;
    }
  }
  std::ranges::sort(words);
  std::string folded;
  for (const std::string& word : words) folded += word.empty() ? "" : word + ' ';
  return folded;
}

bool IsAlmost(const std::string& one, const std::string& other) {
  const std::string folded = Folded(one);
  return !folded.empty() && folded == Folded(other);
}

// How many bytes must be put in, taken out, changed or swapped with the next to make one of the
// other.
std::size_t Distance(std::string_view one, std::string_view other) {
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

// The same of keys. A level too many, or one too few, is one mistake.
std::size_t DistanceOfKeys(const std::string& one, const std::string& other) {
  const std::string a = InLowerCase(one), b = InLowerCase(other);
  return a.ends_with('.' + b) || b.ends_with('.' + a) ? 1 : Distance(a, b);
}

// The last part of each, sorted.
template <class Rank>
std::vector<std::string> Texts(std::vector<std::pair<Rank, std::string>> ranked) {
  std::ranges::sort(ranked);
  std::vector<std::string> texts(ranked.size());
  std::ranges::transform(ranked, texts.begin(), &std::pair<Rank, std::string>::second);
  return texts;
}

}  // namespace

std::vector<std::string> Elsewhere(const Items& items, const std::vector<std::string>& maps,
                                   const std::string& key) {
  std::vector<std::pair<std::pair<bool, std::size_t>, std::string>> ranked;
  for (const auto& [map, item_key] : items) {
    if (item_key != key || std::ranges::find(maps, map) != maps.end()) continue;
    std::pair<bool, std::size_t> rank = {true, std::string::npos};
    std::string almost;
    for (const std::string& asked : maps) {
      const std::pair candidate(!IsAlmost(map, asked), Distance(map, asked));
      if (candidate < rank && !candidate.first) almost = ", almost " + Named(asked);
      rank = std::min(rank, candidate);
    }
    ranked.emplace_back(rank, Named(map) + almost);
  }
  return Texts(std::move(ranked));
}

std::vector<std::string> Similar(const Items& items, const std::vector<std::string>& maps,
                                 const std::string& key) {
  // Where each key is, those of `maps` first.
  std::map<std::string, std::vector<std::pair<std::ptrdiff_t, std::string>>> places;
  for (const auto& [map, item_key] : items) {
    places[item_key].emplace_back(std::ranges::find(maps, map) - maps.begin(), map);
  }
  places.erase(key);
  const std::size_t most = key.size() < 3 ? 0 : std::max<std::size_t>(1, key.size() / 5);
  std::vector<std::pair<std::pair<std::size_t, std::ptrdiff_t>, std::string>> ranked;
  for (const auto& [other, holders] : places) {
    const std::size_t distance = DistanceOfKeys(other, key);
    if (distance > most) continue;
    const auto& [place, map] = *std::ranges::min_element(holders);
    ranked.push_back(
        {{distance, place},
         Named(other) + " in " + Named(map) + (holders.size() == 1 ? "" : " and elsewhere")});
  }
  return Texts(std::move(ranked));
}
