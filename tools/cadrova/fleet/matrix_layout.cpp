#include "fleet/matrix_layout.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <numeric>
#include <unordered_map>
#include <utility>

namespace {

// A row, or a column.
using Line = std::vector<const Answer*>;

// Groups the numbers of equal lines, and leaves one line of each.
std::vector<CodeGroup> Group(std::vector<Line>& lines) {
  std::vector<CodeGroup> groups;
  std::vector<Line> kept;
  std::map<Line, std::size_t> places;
  for (std::size_t i = 0; i < lines.size(); ++i) {
    const auto [place, is_new] = places.try_emplace(lines[i], groups.size());
    if (is_new) {
      groups.emplace_back();
      kept.push_back(std::move(lines[i]));
    }
    groups[place->second].codes.push_back(i);
  }
  lines = std::move(kept);
  constexpr std::size_t kTakenIn = 6;
  const auto size = [](const CodeGroup& group) { return group.codes.size(); };
  const auto largest = std::ranges::max_element(groups, {}, size);
  largest->is_rest = size(*largest) > kTakenIn;
  return groups;
}

std::vector<Line> Turned(const std::vector<Line>& lines) {
  std::vector<Line> turned(lines[0].size(), Line(lines.size()));
  for (std::size_t i = 0; i < lines.size(); ++i) {
    for (std::size_t j = 0; j < lines[i].size(); ++j) turned[j][i] = lines[i][j];
  }
  return turned;
}

std::vector<Grid> Divided(std::vector<Line> columns) {
  constexpr std::size_t kSideBySide = 8;
  const auto groups = Group(columns);
  std::vector<std::size_t> order(columns.size());
  std::iota(order.begin(), order.end(), std::size_t{0});
  auto end_of_varied = order.end();
  if (order.size() > kSideBySide) {
    end_of_varied = std::stable_partition(order.begin(), order.end(), [&](std::size_t i) {
      return std::ranges::adjacent_find(columns[i], std::not_equal_to()) != columns[i].end();
    });
  }
  std::vector<Grid> grids;
  for (auto column = order.begin(); column != order.end();) {
    const auto end = column < end_of_varied ? end_of_varied : order.end();
    Grid& grid = grids.emplace_back();
    std::vector<Line> own;
    for (; column != end && own.size() < kSideBySide; ++column) {
      own.push_back(columns[*column]);
      grid.carriers.push_back(groups[*column]);
    }
    grid.rows = Turned(own);
    grid.regions = Group(grid.rows);
  }
  return grids;
}

std::size_t Cells(const std::vector<Grid>& grids) {
  std::size_t cells = 0;
  for (const Grid& grid : grids) cells += grid.regions.size() * grid.carriers.size();
  return cells;
}

}  // namespace

Grids ToGrids(const Chains& chains, const Answers& answers) {
  constexpr std::size_t kTakenIn = 200;
  const Fleet& fleet = chains.fleet();
  std::vector<Line> columns(fleet.carriers.size(), Line(fleet.regions.size()));
  std::unordered_map<const Answer*, std::size_t> devices;  // that are answered so
  for (std::size_t carrier = 0; carrier < fleet.carriers.size(); ++carrier) {
    for (std::size_t region = 0; region < fleet.regions.size(); ++region) {
      const Answer*& answer = columns[carrier][region];
      answer = &answers.Of(chains.Of(region, carrier));
      ++devices[answer];
    }
  }
  Grids made = {Divided(columns), {}};
  if (Cells(made.grids) <= kTakenIn) return made;
  for (std::size_t carrier = 0; carrier < fleet.carriers.size(); ++carrier) {
    for (std::size_t region = 0; region < fleet.regions.size(); ++region) {
      Chain chain = chains.Of(region, carrier);
      const Answer* answer = &answers.Take(chain);
      if (devices[answer] > 1) continue;
      made.singles.push_back({region, carrier, answer});
      while (devices[answer] <= 1 && !chain.empty()) answer = &answers.Take(chain);
      columns[carrier][region] = answer;
    }
  }
  made.grids = Divided(std::move(columns));
  return made;
}

std::string Label(const CodeGroup& group, const std::vector<std::string>& codes,
                  const std::string& what, std::string (*name)(const std::string& code)) {
  if (group.codes.size() == codes.size() && codes.size() > 1) return "every " + what;
  if (group.is_rest) return std::to_string(group.codes.size()) + " others";
  std::string label;
  for (const std::size_t code : group.codes)
    label += (label.empty() ? "" : ", ") + name(codes[code]);
  return label;
}
