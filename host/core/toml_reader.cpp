#include "toml_reader.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <tuple>
#include <utility>
#include <variant>

#include "file.h"
#include "toml_parser.h"
#include "toml_precheck.h"
#include "utf8.h"

namespace cadrova::host {
namespace {

bool IsBefore(const Place& one, const Place& other) {
  return std::pair(one.line, one.column) < std::pair(other.line, other.column);
}

TomlNode ToNode(const toml::node& node, const Place& place) {
  TomlNode result = {place, {}};
  if (const auto* boolean = node.as_boolean()) result.value = boolean->get();
  if (const auto* integer = node.as_integer()) result.value = integer->get();
  if (const auto* string = node.as_string()) result.value = string->get();
  if (const auto* array = node.as_array()) {
    auto& elements = result.value.emplace<TomlNode::Array>();
    for (const toml::node& element : *array) {
      elements.push_back(ToNode(element, BeginOf(element.source())));
    }
  }
  if (const auto* table = node.as_table()) {
    auto& members = result.value.emplace<TomlNode::Table>();
    for (const auto& [name, member] : *table) {
      members.emplace_back(name.str(), ToNode(member, BeginOf(name.source())));
    }
    // toml++ sorts by name.
    std::ranges::sort(members, IsBefore, [](const auto& member) { return member.second.place; });
  }
  return result;
}

// The name of the map in the header with which `toml` begins, or the beginning of a name in quotes.
std::string_view MapInHeader(std::string_view toml) {
  toml.remove_prefix(std::min(toml.find_first_not_of(" \t["), toml.size()));
  return toml.substr(0, toml.find_first_of(" \t.]\n"));
}

// The document `toml` in parts: a part ends where the next header names another map. Lines that
// name the same map may be in several parts.
std::vector<std::string_view> SplitByMap(std::string_view toml,
                                         const std::vector<std::size_t>& headers) {
  std::vector<std::string_view> parts;
  std::size_t begin = 0;
  std::string_view map;
  for (const std::size_t header : headers) {
    const std::string_view next = MapInHeader(toml.substr(header));
    if (next == map) continue;
    parts.push_back(toml.substr(begin, header - begin));
    begin = header;
    map = next;
  }
  parts.push_back(toml.substr(begin));
  return parts;
}

// Reads one document and collects the errors in it.
class Reader {
 public:
  explicit Reader(const std::string& file) : file_(file) {}

  // The whole document, or nothing after a syntax error.
  std::optional<toml::table> Parse(std::string_view toml) {
    return Scan(toml) ? ParsePart(toml) : std::nullopt;
  }

  // Parses one map after the other, because this takes less memory, and because the time that
  // toml++ takes for each dotted key grows with the number of tables. If a map may be in several
  // parts, only toml++ knows whether they agree.
  void ReadData(std::string_view toml, Store& store) {
    const auto scan = Scan(toml);
    if (!scan) return;
    for (const std::string_view part : SplitByMap(toml, scan->headers)) {
      auto document = ParsePart(part);
      const auto is_known = [&](const auto& member) {
        return store.Maps().contains(member.first.str());
      };
      // toml++ looks ahead, so the end of the part may have changed a syntax error.
      const std::string_view rest =
          toml.substr(static_cast<std::size_t>(part.data() - toml.data()));
      if (document ? std::any_of(document->begin(), document->end(), is_known)
                   : MayContinue(part, store) || ParsePart(rest)) {
        store = Store();
        errors_.clear();
        has_syntax_error_ = false;
        lines_before_ = 0;
        document = ParsePart(toml);
        if (document) ReadMaps(*document, store);
        return;
      }
      if (!document) return;
      ReadMaps(*document, store);
      lines_before_ += static_cast<int>(std::ranges::count(part, '\n'));
    }
  }

  // The value of `node`. After an error, any value.
  StoredValue ReadValue(const toml::node& node) {
    if (const auto* value = node.as_boolean()) return value->get();
    if (const auto* value = node.as_integer()) return Int(*value);
    if (const auto* value = node.as_floating_point()) return Float(*value);
    if (const auto* value = node.as_string()) return String(*value);
    if (const auto* array = node.as_array()) {
      if (array->empty()) return EmptyList();
      if (array->is_homogeneous<std::string>()) return Strings(*array);
      if (array->is_homogeneous<std::int64_t>()) return Ints(*array);
      if (array->is_homogeneous<toml::array>()) return Pairs(*array);
      AddError(node.source(),
               "an array must contain strings, integers or pairs of strings, and only one kind");
    } else {
      AddError(node.source(), "a date or time is not a supported value");
    }
    return EmptyList();
  }

  bool has_syntax_error() const { return has_syntax_error_; }

  // The errors so far, in the order of the document.
  std::vector<Error> TakeErrors() {
    std::ranges::sort(errors_, {}, [](const Error& error) {
      return std::tie(error.place.line, error.place.column, error.reason);
    });
    return std::move(errors_);
  }

 private:
  // An item whose value is still to be read.
  struct Leaf {
    std::string key;
    Place place;
    const toml::node* node;
  };

  // What is known about `toml` before it is parsed, or nothing after an error. Removes a byte order
  // mark.
  std::optional<TomlScan> Scan(std::string_view& toml) {
    if (toml.starts_with(kByteOrderMark)) toml.remove_prefix(kByteOrderMark.size());
    TomlScan scan;
    scan.error = FindForeignBytes(toml);
    if (!scan.error) scan = ScanToml(toml);
    if (!scan.error) return scan;
    Fail(std::move(*scan.error));
    return std::nullopt;
  }

  // Whether `part`, which has a syntax error, may begin with the header of a map in `store`.
  static bool MayContinue(std::string_view part, const Store& store) {
    const std::string_view map = MapInHeader(part);
    return map.starts_with('"') || map.starts_with('\'') || store.Maps().contains(map);
  }

  std::optional<toml::table> ParsePart(std::string_view part) {
    auto document = ParseWithTomlplusplus(part, lines_before_);
    if (auto* table = std::get_if<toml::table>(&document)) return std::move(*table);
    Fail(std::move(std::get<Error>(document)));
    return std::nullopt;
  }

  // After a syntax error, there are no others.
  void Fail(Error error) {
    has_syntax_error_ = true;
    error.file = file_;
    error.reason = Printable(error.reason);
    errors_ = {std::move(error)};
  }

  void ReadMaps(const toml::table& document, Store& store) {
    for (const auto& [name, node] : document) {
      const std::string map(name.str());
      store.AddMap(map, PlaceOf(name.source()));
      if (map.find('\0') != std::string::npos) {
        AddError(name.source(),
                 "the name of a map must not contain a NUL byte, which would end it");
      } else if (const toml::table* table = node.as_table()) {
        ReadMap(*table, map, store);
      } else if (IsArrayOfTables(node)) {
        AddError(name.source(), SingleBrackets(map));
      } else {
        AddError(name.source(), map + " is outside every map; put it below a [MAP] line");
      }
    }
  }

  static std::string DefinedTwice(const std::string& key, const Place& first) {
    return "key " + key + " is already defined in line " + std::to_string(first.line);
  }

  static std::string SingleBrackets(const std::string& name) {
    return "[[" + name + "]] is a list of tables; write [" + name + "], with single brackets";
  }

  Place PlaceOf(const toml::source_region& source) const {
    const Place place = BeginOf(source);
    return {place.line + lines_before_, place.column};
  }

  void AddError(const Place& place, std::string_view reason) {
    errors_.push_back({file_, place, Printable(reason), {}});
  }
  void AddError(const toml::source_region& source, std::string_view reason) {
    AddError(PlaceOf(source), reason);
  }

  void ReadMap(const toml::table& table, const std::string& map, Store& store) {
    std::vector<Leaf> leaves;
    AppendLeaves(table, "", leaves);
    // toml++ sorts by name. Of two equal keys, the second in the document is the duplicate.
    std::ranges::sort(leaves, IsBefore, &Leaf::place);
    for (const auto& [key, place, node] : leaves) {
      const auto [item, is_new] = store.Add(map, key, place);
      if (!is_new) {
        AddError(place, DefinedTwice(key, item->place));
        errors_.back().related = item->place;
      } else if (key.find('\0') != std::string::npos) {
        AddError(place, "a key must not contain a NUL byte, which would end it");
      } else if (node->is_table()) {
        AddError(place, "an empty table is not a supported value");
      } else if (IsArrayOfTables(*node)) {
        AddError(place, SingleBrackets(std::string(map).append(".").append(key)));
      } else {
        item->value = ReadValue(*node);
      }
    }
  }

  // Empty tables in braces are leaves, too.
  void AppendLeaves(const toml::table& table, const std::string& prefix,
                    std::vector<Leaf>& leaves) {
    for (const auto& [name, node] : table) {
      std::string key = prefix + std::string(name.str());
      const toml::table* nested = node.as_table();
      if (nested != nullptr && !(nested->empty() && nested->is_inline())) {
        AppendLeaves(*nested, key + '.', leaves);
      } else {
        leaves.push_back({std::move(key), PlaceOf(name.source()), &node});
      }
    }
  }

  std::int32_t Int(const toml::value<std::int64_t>& node) {
    if (!std::in_range<std::int32_t>(node.get())) {
      AddError(node.source(), std::to_string(node.get()) + " does not fit in 32 bits");
    }
    return static_cast<std::int32_t>(node.get());
  }

  float Float(const toml::value<double>& node) {
    const auto value = static_cast<float>(node.get());
    if (std::isinf(value) && !std::isinf(node.get())) {
      AddError(node.source(), "beyond the range of a 32-bit float");
    }
    return value;
  }

  std::string String(const toml::value<std::string>& node) {
    if (node->find('\0') != std::string::npos) {
      AddError(node.source(), "a string must not contain a NUL byte, which would end it");
    }
    return node.get();
  }

  StringArray Strings(const toml::array& array) {
    StringArray list;
    for (const toml::node& node : array) list.push_back(String(*node.as_string()));
    return list;
  }

  IntArray Ints(const toml::array& array) {
    IntArray list;
    for (const toml::node& node : array) list.push_back(Int(*node.as_integer()));
    return list;
  }

  MapArray Pairs(const toml::array& array) {
    MapArray list;
    for (const toml::node& node : array) {
      const toml::array& pair = *node.as_array();
      if (pair.size() == 2 && pair.is_homogeneous<std::string>()) {
        list.emplace_back(String(*pair[0].as_string()), String(*pair[1].as_string()));
      } else {
        AddError(pair.source(), "an array of arrays must contain pairs of strings");
      }
    }
    return list;
  }

  const std::string& file_;
  int lines_before_ = 0;  // the part of the document that is read
  std::vector<Error> errors_;
  bool has_syntax_error_ = false;
};

}  // namespace

ParsedFile ParseData(std::string_view toml, const std::string& name) {
  auto data = std::make_shared<LoadedFile>(name, Store());
  Reader reader(name);
  reader.ReadData(toml, data->store);
  std::vector<Error> errors = reader.TakeErrors();
  if (!errors.empty()) data = nullptr;
  return {std::move(data), std::move(errors), reader.has_syntax_error()};
}

ParsedFile ParseFile(const std::string& path) {
  auto contents = ReadFile(path);
  if (auto* error = std::get_if<Error>(&contents)) return {nullptr, {std::move(*error)}, false};
  return ParseData(std::get<std::string>(contents), path);
}

std::variant<TomlNode, Error> ParseToml(std::string_view toml, const std::string& name) {
  Reader reader(name);
  if (const auto document = reader.Parse(toml)) return ToNode(*document, {1, 1});
  return std::move(reader.TakeErrors().front());
}

StoredValue SimValueFromText(const std::string& text) {
  const std::string line = "value = " + text;
  const std::string file;
  Reader reader(file);
  const auto document = reader.Parse(line);
  if (!document) return text;
  const toml::node& node = *document->get("value");
  StoredValue value = reader.ReadValue(node);
  // If a blank, a comment or a line follows the value, the text is a string.
  const bool is_whole =
      node.source().end.line == 1 && node.source().end.column == CharacterCount(line) + 1;
  return is_whole && reader.TakeErrors().empty() ? value : text;
}

}  // namespace cadrova::host
