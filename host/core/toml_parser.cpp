#include "toml_parser.h"

#include <algorithm>
#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "toml_precheck.h"
#include "utf8.h"

namespace cadrova::host {
namespace {

// Texts of toml++ that only its own developers understand.
constexpr std::pair<std::string_view, std::string_view> kRewordings[] = {
    {"parsing root table", "parsing the file"},
    {"parsing unicode scalar sequence", "parsing Unicode escape"},
    {": encountered end-of-file", ": the file ends too early"},
    {": exceeded maximum nested value depth of 32 (TOML_MAX_NESTED_VALUES)",
     ": values are nested more than 32 deep"},
    {": could not determine value type", ": not a value; put text in quotes"},
    {": expected 'true', saw", ": put text in quotes; expected 'true', saw"},
    {": expected 'false', saw", ": put text in quotes; expected 'false', saw"},
    {": expected 'inf', saw", ": put text in quotes; expected 'inf', saw"},
    {": expected 'nan', saw", ": put text in quotes; expected 'nan', saw"},
    {": expected value-terminator,", ": expected the end of the value,"},
    {": expected a comment or whitespace,", ": expected the end of the line,"},
    {": expected keys, tables, whitespace or comments,", ": expected a key or a [MAP] line,"},
    {": expected bare key starting character or string delimiter,", ": expected a key,"},
    {": tables with blank bare keys are explicitly prohibited", ": a name is missing in brackets"},
    {": expected expected", ": expected"},
    {": fragment exceeeds", ": a part exceeds"},
};

std::string Reworded(std::string_view text) {
  std::string reworded(text);
  for (const auto& [from, to] : kRewordings) {
    if (const std::size_t at = reworded.find(from); at != std::string::npos) {
      reworded.replace(at, from.size(), to);
    }
  }
  return reworded;
}

std::string_view LineAt(std::size_t offset, std::string_view toml) {
  return toml.substr(offset, toml.find('\n', offset) - offset);
}

// The first key in `table`, the first key in its value, and so on.
std::vector<const toml::key*> FirstPath(const toml::table& table) {
  std::vector<const toml::key*> path;
  for (const toml::node* node = &table; node != nullptr;) {
    const toml::table* members = node->as_table();
    if (IsArrayOfTables(*node)) members = node->as_array()->back().as_table();
    node = nullptr;
    if (members != nullptr && !members->empty()) {
      path.push_back(&members->begin()->first);
      node = &members->begin()->second;
    }
  }
  return path;
}

// If `error` says that a line of `toml` defines a key or a table that exists, adds where the first
// definition is. Does nothing for a key in braces, because the text before it is no document.
void AddFirstDefinition(std::string_view toml, int lines_before, Error& error) {
  constexpr std::string_view kInHeader = "Error while parsing table header: cannot ",
                             kInPair = "Error while parsing key-value pair: cannot ";
  const bool is_header = error.reason.starts_with(kInHeader);
  if (!is_header && !error.reason.starts_with(kInPair)) return;
  const std::size_t offset = OffsetOf(error.place, toml);
  const TomlScan scan = ScanToml(toml.substr(0, offset));
  if (scan.is_in_brackets) return;
  std::size_t begin = scan.line;
  toml::parse_result before = toml::parse(toml.substr(0, begin));
  if (!before && is_header && !scan.headers.empty()) {
    // toml++ reports some errors in a header at the next line.
    begin = scan.headers.back();
    before = toml::parse(toml.substr(0, begin));
  }
  if (!before) return;

  // Only the header of this table and the key. toml++ has reached either the value, or the part of
  // the key that exists.
  std::string definition;
  if (is_header) {
    definition = std::string(LineAt(begin, toml)) + '\n';
  } else {
    if (!scan.headers.empty()) definition = LineAt(scan.headers.back(), toml);
    const std::size_t end = scan.is_in_value ? offset : EndOfKeyPart(toml, offset);
    definition += '\n';
    definition += toml.substr(begin, end - begin);
    definition += scan.is_in_value ? "0" : "=0";
  }
  const toml::parse_result parsed = toml::parse(definition);
  if (!parsed) return;
  const std::vector<const toml::key*> path = FirstPath(parsed.table());
  if (path.empty()) return;

  error.place = PlaceOf(begin, toml);
  error.place.column += is_header ? static_cast<int>(definition.find('['))
                                  : static_cast<int>(path.back()->source().begin.column) - 1;
  const toml::node* first = &before.table();
  Place place;
  std::string name, name_in_map;
  for (const toml::key* part : path) {
    const toml::table* table =
        IsArrayOfTables(*first) ? first->as_array()->back().as_table() : first->as_table();
    if (table == nullptr || table->is_inline()) break;
    const auto found = table->find(part->str());
    if (found == table->end()) return;
    first = &found->second;
    place = BeginOf(found->first.source());
    if (part != path.front()) name_in_map += (name_in_map.empty() ? "" : ".") + std::string(*part);
    name += (name.empty() ? "" : ".") + std::string(*part);
  }
  if (name_in_map.empty()) name_in_map = path.size() > 1 ? "\"\"" : name;
  if (name.empty()) name = "\"\"";
  const bool is_list = IsArrayOfTables(*first);
  const bool is_table = !is_list && first->is_table() && !first->as_table()->is_inline();
  if (is_list || is_table) place = BeginOf(first->source());
  place.line += lines_before;
  error.related = place;
  if (!is_list && !is_table && scan.is_in_value) {
    error.reason = "key " + name_in_map + " is already defined in ";
  } else {
    const char* what = is_list ? "list of tables" : is_table ? "table" : "value";
    error.reason = name + " is already a " + what + ", in ";
  }
  error.reason += "line " + std::to_string(place.line);
}

}  // namespace

bool IsArrayOfTables(const toml::node& node) {
  const toml::array* array = node.as_array();
  if (array == nullptr || array->empty()) return false;
  const toml::table* table = array->back().as_table();
  return table != nullptr && !table->is_inline();
}

std::variant<toml::table, Error> ParseWithTomlplusplus(std::string_view toml, int lines_before) {
  toml::parse_result document = toml::parse(toml);
  if (document) return std::move(document).table();
  Error error = {{}, BeginOf(document.error().source()), {}, {}};
  error.reason = document.error().description();
  const std::string_view rest = toml.substr(OffsetOf(error.place, toml));
  if (error.reason.find("control characters other than TAB") != std::string::npos &&
      (rest.starts_with('\n') || rest.starts_with("\r\n"))) {
    error.reason = "a string has no closing quote in this line";
  }
  AddFirstDefinition(toml, lines_before, error);
  error.reason = Reworded(error.reason);
  error.place.line += lines_before;
  return error;
}

}  // namespace cadrova::host
