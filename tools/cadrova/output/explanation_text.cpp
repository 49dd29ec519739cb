#include "output/explanation_text.h"

#include <algorithm>
#include <utility>

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
  if (!entry.exists) return "no such map";
  if (entry.kinds.empty()) return "-";
  return Join(entry.kinds, ", ", [](Kind kind) { return ToString(kind); }) +
         (entry.Contains(wanted) ? "" : std::string(", not ") + ToString(wanted));
}

std::string PlaceText(const Explanation& explanation, const ChainEntry& entry) {
  return explanation.file ? ShortLocationText(*explanation.file, entry.place) : "";
}

// The values in the tables. That of the first line is not shown again.
class ValueTexts {
 public:
  explicit ValueTexts(const Explanation& explanation)
      : in_first_line_(ToJsonText(explanation.recording.value)) {}

  std::string ToText(const Value& value) {
    const std::string text = ToJsonText(value);
    const bool is_repeated = text == in_first_line_ && DisplayWidth(text) > kWidest;
    return is_repeated ? "(above)" : long_values_.ToText(text);
  }

  std::string List() const {
    const auto rows = long_values_.Rows();
    return rows.empty() ? "" : '\n' + Table(rows, TerminalWidth());
  }

 private:
  static constexpr std::size_t kWidest = 30;
  std::string in_first_line_;
  LongValues long_values_{kWidest};
};

std::string Colors(const std::string& one, const std::string& other) {
  return one + (one.empty() || other.empty() ? "" : ";") + other;
}

// A result by each family.
std::string FamilyTable(const std::vector<Explanation>& explanations, ValueTexts& values) {
  std::vector<Row> rows = {
      {"  family      ", "value  ", "map", explanations[0].file ? "place" : ""}};
  for (const Explanation& explanation : explanations) {
    const ChainEntry* const source = explanation.source();
    Row row = {std::string("  ") + explanation.query.family->name, "no map", "", ""};
    if (source != nullptr) {
      row = {row[0], values.ToText(explanation.recording.value), DisplayName(source->map),
             PlaceText(explanation, *source)};
    }
    rows.push_back(std::move(row));
  }
  return Table(rows, TerminalWidth());
}

std::string ChainTable(const Explanation& explanation, ValueTexts& values) {
  const auto& [family, kind, key, default_value, has_default] = explanation.query;
  std::vector<Row> rows = {{"  map         ", "kind   ", "value", explanation.file ? "place" : ""}};
  for (std::uint32_t i = 0; i < explanation.chain.size(); ++i) {
    const ChainEntry& entry = explanation.chain[i];
    const bool is_other_kind = !entry.kinds.empty() && !entry.Contains(kind);
    const char* const bold = entry.is_source ? kBold : "";
    rows.push_back({TableCell((entry.is_source ? "> " : "  ") + DisplayName(entry.map),
                              Colors(MapColor(*family, i), bold)),
                    TableCell(KindsText(entry, kind), is_other_kind ? kYellow : bold),
                    TableCell(entry.value ? values.ToText(*entry.value) : "", bold),
                    TableCell(PlaceText(explanation, entry), bold)});
  }
  return Table(rows, TerminalWidth());
}

// The lines, indented, with the label before the first one.
std::string Labelled(std::string label, const std::vector<std::string>& lines) {
  constexpr std::size_t kIndentation = 15;
  const std::size_t terminal = TerminalWidth();
  const std::size_t width = terminal - std::min(terminal, kIndentation);
  std::string text;
  for (const std::string& line : lines) {
    for (const std::string& part : Wrapped(host::Printable(line), width)) {
      label.resize(kIndentation, ' ');
      text += std::exchange(label, "") + part + '\n';
    }
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

std::string ToText(const std::vector<Explanation>& explanations, const DataFacts* facts) {
  const Explanation& explanation = explanations.back();
  const Query& query = explanation.query;
  const bool has_families = explanations.size() > 1;
  const std::string feature = std::string(ToString(query.kind)) + ' ' + DisplayName(query.key) +
                              " by " + query.family->name + ": ";
  std::string text;
  for (const std::string& line :
       Wrapped((has_families ? feature : "") + Summary(explanation), TerminalWidth())) {
    text += Colored(line, kBold) + '\n';
  }
  for (const Explanation& each : explanations) {
    for (const std::string& warning : each.warnings) {
      text += Colored("warning: ", kYellow) + warning + '\n';
    }
  }
  ValueTexts values(explanation);
  if (has_families) text += '\n' + FamilyTable(explanations, values);
  text += '\n' + ChainTable(explanation, values) + values.List() + '\n' +
          Labelled("properties", PropertyLines(explanation.recording));
  if (!explanation.recording.printed.empty()) {
    text += Labelled("printed", {explanation.recording.PrintedLine()});
  }
  if (facts == nullptr) return text;
  return text + Labelled("data", {facts->file}) +
         Labelled("not in chain", FirstThree(facts->other_maps)) +
         Labelled("similar keys", FirstThree(facts->similar_keys));
}

}  // namespace cadrova::tools
