// toml++, and its errors in the words of somebody who writes data.
#pragma once

#include <string_view>
#include <variant>

// toml++ asserts some conditions that it then checks, and reports as errors if they are false. With
// NDEBUG, it would let the compiler assume that they are true.
#undef NDEBUG
#define TOML_ASSERT(expression) static_assert(true)
#define TOML_EXCEPTIONS 0
#define TOML_MAX_NESTED_VALUES 32
#include <toml++/toml.h>

#include "cadrova/host.h"

namespace cadrova::host {

inline Place BeginOf(const toml::source_region& source) {
  return {static_cast<int>(source.begin.line), static_cast<int>(source.begin.column)};
}

// Whether `node` is an array that was made by [[NAME]] lines.
bool IsArrayOfTables(const toml::node& node);

// The document `toml`, or its syntax error, without a file. `ScanToml` must have found no error.
// The places in the error, but not in the document, count the lines before `toml`.
std::variant<toml::table, Error> ParseWithTomlplusplus(std::string_view toml, int lines_before);

}  // namespace cadrova::host
