#include "output/explanation_text.h"

#include <algorithm>
#include <utility>

#include "common/json_text.h"
#include "common/text.h"
#include "file.h"
#include "output/console.h"
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

}  // namespace cadrova::tools
