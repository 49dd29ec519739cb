// What the fake core offers to the command only, in addition to the test kit.
//
// Thread safety: call `UseData` under the conditions of `LoadFile` in cadrova/host.h. All other
// functions may run at any time.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "cadrova/host.h"

namespace cadrova::host {

struct LoadedFile;

struct ParsedFile {
  std::shared_ptr<LoadedFile> data;  // NULL if there are errors.
  std::vector<Error> errors;         // In file order.
  bool has_syntax_error = false;     // It is the only error then.
};

// A value of a TOML document.
struct TomlNode {
  using Array = std::vector<TomlNode>;
  using Table = std::vector<std::pair<std::string, TomlNode>>;  // In the order of the document.

  Place place;  // Of its key if it is a member of a table, or else of the value.
  // Nothing for a float, a date or a time.
  std::variant<std::monostate, bool, std::int64_t, std::string, Array, Table> value;
};

// The fake core exports these functions.
#pragma GCC visibility push(default)

// Reads the customization file `toml`, which is called `name` in errors. Does not change the data
// of the core.
ParsedFile ParseData(std::string_view toml, const std::string& name);

// The core reads `data` from now on, and `Set` changes it. Takes constant time, if `data` that was
// used before has another owner.
void UseData(std::shared_ptr<LoadedFile> data);

// The names of the maps that `List` lists, sorted. Does not list the items.
std::vector<std::string> ListMapNames();

// Any TOML document as a table, or the first error in it. `name` is its name in the error.
std::variant<TomlNode, Error> ParseToml(std::string_view toml, const std::string& name);

#pragma GCC visibility pop

}  // namespace cadrova::host
