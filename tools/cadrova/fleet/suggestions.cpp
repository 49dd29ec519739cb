#include "fleet/suggestions.h"

#include <algorithm>
#include <cctype>
#include <map>
#include <numeric>
#include <set>
#include <string_view>
#include <utility>

#include "common/json_text.h"

using cadrova::tools::Named;

namespace {

std::string InLowerCase(const std::string& text) {
  std::string lower;
  for (const unsigned char byte : text) lower += static_cast<char>(std::tolower(byte));
  return lower;
}

}  // namespace

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

namespace {

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

// One mistake makes any such name of any other.
bool IsShort(const std::string& name) { return name.size() < 3; }

// Whether the names are one but for the numbers in them.
bool DifferByNumbers(const std::string& one, const std::string& other) {
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

// One at least is the same for two names that are one mistake apart.
std::vector<std::size_t> Traces(const std::string& name) {
  const std::hash<std::string> hash;
  const std::string lower = InLowerCase(name);
  std::vector<std::size_t> traces = {hash(Folded(name)), hash(lower)};
  const std::size_t level = lower.find('.');
  if (level != std::string::npos) traces.push_back(hash(lower.substr(level + 1)));
  for (std::size_t i = 0; i < lower.size(); ++i) {
    traces.push_back(hash(std::string(lower).erase(i, 1)));
  }
  return traces;
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
  for (const auto& [map, item_key, kinds, place] : items) {
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
  for (const auto& [map, item_key, kinds, place] : items) {
    places[item_key].emplace_back(std::ranges::find(maps, map) - maps.begin(), map);
  }
  places.erase(key);
  const std::size_t most = IsShort(key) ? 0 : std::max<std::size_t>(1, key.size() / 5);
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

NearNames::NearNames(std::vector<std::string> names) : names_(std::move(names)) {
  for (std::uint32_t i = 0; i < names_.size(); ++i) {
    for (const std::size_t trace : Traces(names_[i])) traces_.emplace_back(trace, i);
  }
  std::ranges::sort(traces_);
}

std::vector<std::string> NearNames::Of(const std::string& name) const {
  using Trace = std::pair<std::size_t, std::uint32_t>;
  std::set<std::pair<std::pair<bool, std::size_t>, std::string>> ranked;
  for (const std::size_t trace : Traces(name)) {
    for (const auto& [hash, i] : std::ranges::equal_range(traces_, trace, {}, &Trace::first)) {
      const std::string& other = names_[i];
      if (DifferByNumbers(other, name)) continue;
      const std::pair rank(!IsAlmost(other, name), DistanceOfKeys(other, name));
      if (!rank.first || rank.second <= (IsShort(name) ? 0U : 1U)) ranked.insert({rank, other});
    }
  }
  return Texts(std::vector(ranked.begin(), ranked.end()));
}
