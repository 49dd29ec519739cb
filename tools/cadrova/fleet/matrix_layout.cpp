#include "fleet/matrix_layout.h"

#include <algorithm>
#include <functional>
#include <map>
#include <numeric>
#include <span>
#include <unordered_map>
#include <utility>

#include "common/text.h"

namespace cadrova::tools {
namespace {

using CellRow = std::vector<Cell>;
using CellColumn = std::vector<Cell>;

// Merges equal rows, or equal columns. Returns the positions of the merged ones.
std::vector<CodeGroup> MergeEqual(std::vector<std::vector<Cell>>& rows) {
  constexpr std::size_t kMostListed = 6;
  std::vector<CodeGroup> groups;
  std::vector<std::vector<Cell>> merged;
  std::map<std::vector<Cell>, std::size_t> numbers;
  for (std::size_t i = 0; i < rows.size(); ++i) {
    const auto [number, is_new] = numbers.try_emplace(rows[i], groups.size());
    if (is_new) {
      groups.emplace_back();
      merged.push_back(std::move(rows[i]));
    }
    groups[number->second].codes.push_back(i);
  }
  rows = std::move(merged);
  const auto size = [](const CodeGroup& group) { return group.codes.size(); };
  const auto largest = std::ranges::max_element(groups, {}, size);
  largest->is_rest = size(*largest) > kMostListed;
  return groups;
}

std::vector<CellRow> Transpose(const std::vector<CellColumn>& columns) {
  std::vector<CellRow> rows(columns[0].size());
  for (const CellColumn& column : columns) {
    for (std::size_t i = 0; i < column.size(); ++i) rows[i].push_back(column[i]);
  }
  return rows;
}

using Fits = std::function<bool(const MatrixTable&)>;

std::vector<MatrixTable> ToTables(std::vector<CellColumn> columns, const Fits& fits) {
  constexpr std::size_t kMostColumns = 8;
  const auto groups = MergeEqual(columns);
  const auto make_table = [&](std::span<const std::size_t> chosen) {
    MatrixTable table;
    std::vector<CellColumn> table_columns;
    for (const std::size_t i : chosen) {
      table_columns.push_back(columns[i]);
      table.carriers.push_back(groups[i]);
    }
    table.rows = Transpose(table_columns);
    table.regions = MergeEqual(table.rows);
    return table;
  };
  std::vector<std::size_t> order(columns.size());
  std::iota(order.begin(), order.end(), std::size_t{0});
  if (order.size() <= kMostColumns) {
    MatrixTable table = make_table(order);
    if (!fits || fits(table)) return {table};
  }
  const auto end_of_varying = std::partition(order.begin(), order.end(), [&](std::size_t i) {
    return std::ranges::adjacent_find(columns[i], std::not_equal_to()) != columns[i].end();
  });
  std::sort(order.begin(), end_of_varying);
  std::sort(end_of_varying, order.end());
  std::vector<MatrixTable> tables;
  for (auto next = order.begin(); next != order.end();) {
    const auto end = next < end_of_varying ? end_of_varying : order.end();
    auto count = std::min<std::ptrdiff_t>(kMostColumns, end - next);
    MatrixTable table = make_table({next, next + count});
    while (fits && !fits(table) && count > 1) table = make_table({next, next + --count});
    tables.push_back(std::move(table));
    next += count;
  }
  return tables;
}

std::size_t CountCells(const std::vector<MatrixTable>& tables) {
  std::size_t cells = 0;
  for (const auto& table : tables) cells += table.regions.size() * table.carriers.size();
  return cells;
}

}  // namespace

MatrixLayout LayOut(const FleetChains& chains, const Results& results,
                    const PassedOverMaps& passed_over, const Fits& fits) {
  constexpr std::size_t kMostCells = 200;
  const Fleet& fleet = chains.fleet();
  // Without the maps before the position `first`.
  const auto cell_of = [&](ChainMaps chain, std::uint32_t first) {
    const auto [result, position] = results.Find(chain, first);
    Cell cell = {result, position, nullptr};
    for (const auto& [id, map_position] : chain) {
      if (map_position >= position || passed_over.empty()) break;
      const auto found = passed_over.find(id);
      if (found == passed_over.end()) continue;
      cell.passed_over = &found->second;
      break;
    }
    return cell;
  };
  std::vector<CellColumn> columns(fleet.carriers.size(), CellColumn(fleet.regions.size()));
  std::unordered_map<const Result*, std::size_t> devices;  // how many get this result
  for (std::size_t carrier = 0; carrier < fleet.carriers.size(); ++carrier) {
    for (std::size_t region = 0; region < fleet.regions.size(); ++region) {
      if (!fleet.Has(region, carrier)) continue;
      columns[carrier][region] = cell_of(chains.Get(region, carrier), 0);
      ++devices[columns[carrier][region].result];
    }
  }
  MatrixLayout layout = {ToTables(columns, {}), {}};
  const bool is_too_large = CountCells(layout.tables) > kMostCells;
  for (std::size_t carrier = 0; carrier < fleet.carriers.size() && is_too_large; ++carrier) {
    for (std::size_t region = 0; region < fleet.regions.size(); ++region) {
      Cell& cell = columns[carrier][region];
      if (cell.result == nullptr || devices[cell.result] > 1) continue;
      layout.exceptions.push_back({region, carrier, cell});
      while (devices[cell.result] <= 1 && cell.result->map) {
        cell = cell_of(chains.Get(region, carrier), cell.position + 1);
      }
    }
  }
  if (is_too_large || fits) layout.tables = ToTables(std::move(columns), fits);
  return layout;
}

std::string Heading(const CodeGroup& group, const std::vector<std::string>& codes,
                    const std::string& what, std::string (*show)(const std::string& code)) {
  if (group.codes.size() == codes.size() && codes.size() > 1) return "every " + what;
  if (group.is_rest) return std::to_string(group.codes.size()) + " others";
  return Join(group.codes, ", ", [&](std::size_t code) { return show(codes[code]); });
}

}  // namespace cadrova::tools
