#include "output/text.h"

#include <algorithm>

#include "common/json_text.h"
#include "common/text.h"
#include "file.h"
#include "output/console.h"
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
  const std::string shown_file = host::Printable(file);
  std::vector<Row> rows;
  rows.reserve(features.size());
  for (const auto& [key, kind, maps, places] : features) {
    int first_line = 0;
    for (const auto& [line, column] : places) {
      if (line != 0 && (first_line == 0 || line < first_line)) first_line = line;
    }
    rows.push_back({DisplayName(key), ToString(kind),
                    first_line == 0 ? "" : shown_file + ':' + std::to_string(first_line),
                    Join(maps, ", ", DisplayName)});
  }
  return Table(rows, TerminalWidth());
}

namespace {

// The texts of the cells of a matrix. Long values are replaced with numbers, and listed separately.
class CellTexts {
 public:
  std::string ToText(const Cell& cell) {
    if (cell.result == nullptr) return "";
    const Result& result = *cell.result;
    if (!result.map) return "no map";
    std::string value = ToJsonText(result.value);
    if (host::CharacterCount(value) > kMostCharacters) value = NumberOf(value);
    return value + ' ' + DisplayName(*result.map);
  }

  std::string LongValues() const {
    std::string lines;
    for (std::size_t i = 0; i < long_values_.size(); ++i) {
      lines += (i == 0 ? "\n(" : "(") + std::to_string(i + 1) + ")  " + long_values_[i] + '\n';
    }
    return lines;
  }

 private:
  static constexpr std::size_t kMostCharacters = 16;

  std::string NumberOf(const std::string& value) {
    auto found = std::ranges::find(long_values_, value);
    if (found == long_values_.end()) found = long_values_.insert(found, value);
    return '(' + std::to_string(found - long_values_.begin() + 1) + ')';
  }

  std::vector<std::string> long_values_;
};

}  // namespace

std::string ToText(const MatrixLayout& layout, const Fleet& fleet) {
  std::string text;
  CellTexts cells;
  for (const auto& [regions, carriers, table] : layout.tables) {
    std::vector<Row> rows(2, Row(carriers.size() + 1));
    rows[0][1] = "carrier";
    rows[1][0] = "region";
    for (std::size_t i = 0; i < carriers.size(); ++i) {
      rows[1][i + 1] = Heading(carriers[i], fleet.carriers, "carrier", DisplayName);
    }
    for (std::size_t i = 0; i < regions.size(); ++i) {
      Row& row = rows.emplace_back(Row{Heading(regions[i], fleet.regions, "region", DisplayName)});
      for (const Cell& cell : table[i]) row.push_back(cells.ToText(cell));
    }
    text += (text.empty() ? "" : "\n") + Table(rows);
  }
  if (!layout.exceptions.empty()) {
    std::vector<Row> rows = {{"region", "carrier", "exception"}};
    for (const auto& [region, carrier, cell] : layout.exceptions) {
      rows.push_back({DisplayName(fleet.regions[region]), DisplayName(fleet.carriers[carrier]),
                      cells.ToText(cell)});
    }
    text += '\n' + Table(rows);
  }
  return text + cells.LongValues();
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
