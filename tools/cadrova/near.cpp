#include "near.h"

#include <algorithm>
#include <cctype>
#include <numeric>
#include <string_view>
#include <tuple>

#include "json.h"

using cadrova::watch::AppendName;

namespace {

std::string InLowerCase(const std::string& text) {
  std::string lower;
  for (const unsigned char byte : text) lower += static_cast<char>(std::tolower(byte));
  return lower;
}

// Its letters and digits alone, whatever their case and order.
std::string Folded(const std::string& name) {
  std::string folded = InLowerCase(name);
  std::erase_if(folded, [](unsigned char byte) { return std::isalnum(byte) == 0; });
  std::ranges::sort(folded);
  return folded;
}

// How many bytes must be put in, taken out or changed to make one of the other.
std::size_t Distance(std::string_view one, std::string_view other) {
  std::vector<std::size_t> row(other.size() + 1);
  std::iota(row.begin(), row.end(), std::size_t{0});
  for (std::size_t i = 0; i < one.size(); ++i) {
    std::size_t diagonal = std::exchange(row[0], i + 1);
    for (std::size_t j = 0; j < other.size(); ++j) {
      const std::size_t change = diagonal + (one[i] == other[j] ? 0 : 1);
      diagonal = row[j + 1];
      row[j + 1] = std::min({change, diagonal + 1, row[j] + 1});
    }
  }
  return row.back();
}

// The same of keys. A level too many, or one too few, is one mistake.
std::size_t DistanceOfKeys(const std::string& one, const std::string& other) {
  const std::string a = InLowerCase(one), b = InLowerCase(other);
  return a.ends_with('.' + b) || b.ends_with('.' + a) ? 1 : Distance(a, b);
}

std::string Name(const std::string& name) {
  std::string text;
  AppendName(text, name);
  return text;
}

// The last part of each, sorted.
template <class Rank>
std::vector<std::string> Texts(std::vector<std::pair<Rank, std::string>> ranked) {
  std::ranges::sort(ranked);
  std::vector<std::string> texts;
  for (auto& [rank, text] : ranked) texts.push_back(std::move(text));
  return texts;
}

}  // namespace

std::vector<std::string> Elsewhere(const std::vector<std::pair<std::string, std::string>>& items,
                                   const std::vector<std::string>& maps, const std::string& key) {
  std::vector<std::pair<std::size_t, std::string>> ranked;
  for (const auto& [map, item_key] : items) {
    if (item_key != key || std::ranges::find(maps, map) != maps.end()) continue;
    std::size_t rank = map.size() + key.size();
    std::string text = Name(map);
    for (const std::string& asked : maps) {
      if (Folded(asked) == Folded(map)) {
        rank = 0;
        text = Name(map) + ", almost " + Name(asked);
      }
      rank = std::min(rank, Distance(map, asked));
    }
    ranked.emplace_back(rank, text);
  }
  return Texts(std::move(ranked));
}

std::vector<std::string> Similar(const std::vector<std::pair<std::string, std::string>>& items,
                                 const std::vector<std::string>& maps, const std::string& key) {
  std::vector<std::pair<std::pair<std::size_t, std::ptrdiff_t>, std::string>> ranked;
  for (const auto& [map, item_key] : items) {
    const std::size_t distance = DistanceOfKeys(item_key, key);
    if (item_key == key || distance > key.size() / 5) continue;
    const auto place = std::ranges::find(maps, map) - maps.begin();
    ranked.push_back({{distance, place}, Name(item_key) + " in " + Name(map)});
  }
  return Texts(std::move(ranked));
}
