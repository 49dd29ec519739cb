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

// toml++ asserts some conditions that it then checks, and reports as errors if they are false. With
// NDEBUG, it would let the compiler assume that they are true.
#undef NDEBUG
#define TOML_ASSERT(expression) static_assert(true)
#define TOML_EXCEPTIONS 0
#define TOML_MAX_NESTED_VALUES 32
#include <toml++/toml.h>

#include "file.h"
#include "toml_precheck.h"
#include "utf8.h"

namespace cadrova::host {
namespace {

Place BeginOf(const toml::source_region& source) {
  return {static_cast<int>(source.begin.line), static_cast<int>(source.begin.column)};
}

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

// Reads one document and collects the errors in it.
class Reader {
 public:
  explicit Reader(const std::string& file) : file_(file) {}

  // The document, or nothing after a syntax error.
  std::optional<toml::table> Parse(std::string_view toml) {
    if (auto error = FindUnsafeToml(toml, file_)) {
      errors_.push_back(std::move(*error));
      return std::nullopt;
    }
    toml::parse_result document = toml::parse(toml);
    if (document) return std::move(document).table();
    AddError(document.error().source(), document.error().description());
    return std::nullopt;
  }

  void ReadMaps(const toml::table& document, Store& store) {
    for (const auto& [name, node] : document) {
      const std::string map(name.str());
      if (const toml::table* table = node.as_table()) {
        store.AddMap(map, BeginOf(name.source()));
        ReadMap(*table, map, store);
      } else {
        AddError(name.source(), map + " is outside every map; put it below a [MAP] line");
      }
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

  void AddError(const toml::source_region& source, std::string_view reason) {
    errors_.push_back({file_, BeginOf(source), Printable(reason), {}});
  }

  void ReadMap(const toml::table& table, const std::string& map, Store& store) {
    std::vector<Leaf> leaves;
    AppendLeaves(table, "", leaves);
    // toml++ sorts by name. Of two equal keys, the second in the document is the duplicate.
    std::ranges::sort(leaves, IsBefore, &Leaf::place);
    for (const auto& [key, place, node] : leaves) {
      if (const Store::Item* first = store.Find(map, key)) {
        const std::string reason = "key " + key + " is already in this map";
        errors_.push_back({file_, place, Printable(reason), first->place});
      } else {
        store.Set(map, key, ReadValue(*node), place);
      }
    }
  }

  void AppendLeaves(const toml::table& table, const std::string& prefix,
                    std::vector<Leaf>& leaves) {
    for (const auto& [name, node] : table) {
      std::string key = prefix + std::string(name.str());
      if (const toml::table* nested = node.as_table()) {
        AppendLeaves(*nested, key + '.', leaves);
      } else {
        leaves.push_back({std::move(key), BeginOf(name.source()), &node});
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
  std::vector<Error> errors_;
};

}  // namespace

ParsedFile ParseData(std::string_view toml, const std::string& name) {
  auto data = std::make_shared<LoadedFile>(name, Store());
  Reader reader(name);
  if (const auto document = reader.Parse(toml)) reader.ReadMaps(*document, data->store);
  std::vector<Error> errors = reader.TakeErrors();
  if (!errors.empty()) data = nullptr;
  return {std::move(data), std::move(errors)};
}

ParsedFile ParseFile(const std::string& path) {
  auto contents = ReadFile(path);
  if (auto* error = std::get_if<Error>(&contents)) return {nullptr, {std::move(*error)}};
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
