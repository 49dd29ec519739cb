#include "output/text.h"

#include <algorithm>

#include "common/json_text.h"
#include "common/text.h"
#include "file.h"
#include "lookup/data_source.h"
#include "output/console.h"
#include "output/long_values.h"
#include "output/map_types.h"
#include "output/table.h"

namespace cadrova::tools {
namespace {

std::string ToPlain(const std::string& text) { return text; }
std::string ToPlain(const std::pair<std::string, std::string>& pair) {
  return pair.first + '=' + pair.second;
}
std::string ToPlain(auto number) {
  std::string text;
  AppendJson(text, number);
  return text;
}

}  // namespace

std::string ToLines(const Value& value) {
  return std::visit(
      []<class T>(const T& contents) {
        if constexpr (kIsList<T>) {
          std::string lines;
          for (const auto& element : contents) lines += ToPlain(element) + '\n';
          return lines;
        } else {
          return ToPlain(contents) + '\n';
        }
      },
      value);
}

std::string ToText(const std::vector<Feature>& features, const std::string& file) {
  std::vector<Row> rows;
  rows.reserve(features.size());
  for (const auto& [key, kind, maps, places] : features) {
    host::Place first;
    for (const host::Place& place : places) {
      const bool is_first = first.line == 0 || place.line < first.line;
      if (place.line != 0 && is_first) first = place;
    }
    rows.push_back({DisplayName(key), ToString(kind), ShortLocationText(file, first),
                    Join(maps, ", ", DisplayName)});
  }
  return Table(rows, TerminalWidth());
}

namespace {

// The rows of the tables of a matrix. Long values are replaced with numbers. These, and the maps
// that were passed over, are explained below the tables.
class MatrixRows {
 public:
  explicit MatrixRows(const FleetChains& chains)
      : family_(&chains.family()), fleet_(&chains.fleet()) {}

  std::vector<Row> Of(const MatrixTable& table) {
    const auto& [regions, carriers, cells] = table;
    std::vector<Row> rows(2, Row(carriers.size() + 1));
    rows[0][1] = "carrier";
    rows[1][0] = "region";
    for (std::size_t i = 0; i < carriers.size(); ++i) {
      rows[1][i + 1] = Heading(carriers[i], fleet_->carriers, "carrier", DisplayName);
    }
    for (std::size_t i = 0; i < regions.size(); ++i) {
      Row& row =
          rows.emplace_back(Row{Heading(regions[i], fleet_->regions, "region", DisplayName)});
      for (const Cell& cell : cells[i]) {
        row.push_back(ToTableCell(cell));
        row.back().is_whole = carriers.size() > 1;  // Fewer columns are better than broken cells.
      }
    }
    return rows;
  }

  std::vector<Row> Of(const std::vector<MatrixLayout::Exception>& exceptions) {
    std::vector<Row> rows = {{"region", "carrier", "exception"}};
    for (const auto& [region, carrier, cell] : exceptions) {
      rows.push_back({DisplayName(fleet_->regions[region]), DisplayName(fleet_->carriers[carrier]),
                      ToTableCell(cell)});
    }
    return rows;
  }

  std::vector<Row> OfPassedOverMaps() const {
    std::vector<Row> rows;
    rows.reserve(passed_over_.size());
    for (const PassedOver* map : passed_over_) {
      rows.push_back({kMark, DisplayName(map->map) + ": " + map->kinds});
    }
    return rows;
  }

  std::vector<Row> OfLongValues() const { return long_values_.Rows(); }

 private:
  static constexpr char kMark[] = "!";

  TableCell ToTableCell(const Cell& cell) {
    if (cell.result == nullptr) return "";
    const auto& [value, map] = *cell.result;
    std::string text =
        map ? long_values_.ToText(ToJsonText(value)) + ' ' + DisplayName(*map) : "no map";
    if (cell.passed_over != nullptr) {
      text.append(" ").append(kMark);
      const bool is_known = std::ranges::any_of(passed_over_, [&](const PassedOver* other) {
        return other->map == cell.passed_over->map && other->kinds == cell.passed_over->kinds;
      });
      if (!is_known) passed_over_.push_back(cell.passed_over);
    }
    return {text, MapColor(*family_, cell.position)};
  }

  const Family* family_;
  const Fleet* fleet_;
  LongValues long_values_{16};
  std::vector<const PassedOver*> passed_over_;
};

}  // namespace

std::string ToText(const FleetChains& chains, const Results& results,
                   const PassedOverMaps& passed_over) {
  const std::size_t width = TerminalWidth();
  std::function<bool(const MatrixTable&)> fits;
  // A table is measured with the numbers of long values that the tables before it leave.
  MatrixRows measured(chains);
  if (width != kAnyWidth) {
    fits = [&](const MatrixTable& table) {
      MatrixRows next = measured;
      if (!IsAlignable(next.Of(table), width)) return false;
      measured = std::move(next);
      return true;
    };
  }
  const MatrixLayout layout = LayOut(chains, results, passed_over, fits);
  MatrixRows rows(chains);
  std::string text;
  const auto add = [&](const std::vector<Row>& part) {
    if (!part.empty()) text += (text.empty() ? "" : "\n") + Table(part, width);
  };
  for (const MatrixTable& table : layout.tables) add(rows.Of(table));
  if (!layout.exceptions.empty()) add(rows.Of(layout.exceptions));
  add(rows.OfPassedOverMaps());
  add(rows.OfLongValues());
  return text;
}

std::string ToText(const std::vector<Finding>& findings) {
  std::string lines;
  for (const Finding& finding : findings) {
    const host::Error position = {finding.file, finding.place, "", {}};
    lines += Colored(host::Printable(ToString(position)), kBold) +
             (finding.is_error ? Colored("error: ", kRed) : Colored("warning: ", kYellow)) +
             host::Printable(finding.message) + " [" + finding.type->name + "]\n";
  }
  return lines;
}

}  // namespace cadrova::tools
