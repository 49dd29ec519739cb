#include "output/text.h"

#include <algorithm>
#include <map>
#include <utility>

#include "common/json_text.h"
#include "common/table.h"
#include "common/text.h"
#include "file.h"
#include "output/console.h"

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
  return Table(rows);
}

namespace {

std::string Summary(const Explanation& explanation) {
  const Query& query = explanation.query;
  const std::string value = ToJsonText(explanation.recording.value);
  if (const auto* source = explanation.source()) {
    return value + ", from " + DisplayName(source->map);
  }
  return value + ", the default: no map contains " + DisplayName(query.key) + " as " +
         ToString(query.kind);
}

std::string KindsText(const ChainEntry& entry, Kind wanted) {
  if (entry.kinds.empty()) return "-";
  return Join(entry.kinds, ", ", [](Kind kind) { return ToString(kind); }) +
         (entry.Contains(wanted) ? "" : std::string(", not ") + ToString(wanted));
}

std::string ChainTable(const Explanation& explanation) {
  std::vector<Row> rows = {{"map         ", "kind   ", "value"}};
  for (const ChainEntry& entry : explanation.chain) {
    rows.push_back({DisplayName(entry.map), KindsText(entry, explanation.query.kind),
                    entry.value ? ToJsonText(*entry.value) : ""});
  }
  const auto lines = AlignedLines(rows);
  std::string table = "  " + lines[0] + '\n';
  for (std::size_t i = 0; i < explanation.chain.size(); ++i) {
    const ChainEntry& entry = explanation.chain[i];
    const std::string& line = lines[i + 1];
    const bool is_other_kind = !entry.kinds.empty() && !entry.Contains(explanation.query.kind);
    table += entry.is_source ? Colored("> " + line, kGreen)
             : is_other_kind ? Colored("  " + line, kYellow)
                             : "  " + line;
    table += '\n';
  }
  return table;
}

// The lines, indented, with the label before the first one.
std::string Labelled(std::string label, const std::vector<std::string>& lines) {
  std::string text;
  for (const std::string& line : lines) {
    label.resize(14, ' ');
    text += std::exchange(label, "") + ' ' + host::Printable(line) + '\n';
  }
  return text;
}

std::vector<std::string> FirstThree(std::vector<std::string> lines) {
  constexpr std::size_t kMost = 3;
  if (lines.size() <= kMost) return lines;
  const std::string rest = "and " + std::to_string(lines.size() - kMost) + " more";
  lines.resize(kMost);
  lines.push_back(rest);
  return lines;
}

std::vector<std::string> PropertyLines(const Recording& recording) {
  std::vector<std::string> lines;
  for (const auto& [name, value] : recording.properties) {
    const std::string line = name + (value.empty() ? " is unset" : " = " + DisplayName(value));
    if (std::ranges::find(lines, line) == lines.end()) lines.push_back(line);
  }
  return lines;
}

}  // namespace

std::string ToText(const Explanation& explanation, const DataFacts* facts) {
  std::vector<std::string> printed_lines;
  if (!explanation.recording.printed.empty()) {
    printed_lines = {explanation.recording.PrintedLine()};
  }
  std::string text = Colored(Summary(explanation), kBold) + '\n';
  for (const std::string& warning : explanation.warnings) {
    text += Colored("warning: ", kYellow) + warning + '\n';
  }
  text += '\n' + ChainTable(explanation) + '\n' +
          Labelled("properties", PropertyLines(explanation.recording)) +
          Labelled("printed", printed_lines);
  if (facts == nullptr) return text;
  return text + Labelled("data", {facts->file}) +
         Labelled("not in chain", FirstThree(facts->other_maps)) +
         Labelled("similar keys", FirstThree(facts->similar_keys));
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
