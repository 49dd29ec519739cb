// What is known about a document without toml++.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "cadrova/host.h"

namespace cadrova::host {

// The first bytes of a text in UTF-8 that says so.
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

// The place of the character at `offset`, and the offset of a place.
Place PlaceOf(std::size_t offset, std::string_view toml);
std::size_t OffsetOf(const Place& place, std::string_view toml);

// An error without a file if `toml` is not UTF-8, or contains a NUL byte.
std::optional<Error> FindForeignBytes(std::string_view toml);

// The lines of a document that is UTF-8, and the state at its end.
struct TomlScan {
  // Says the first place that might crash toml++, without a file:
  // - A key of very many parts. Its tables are nested, and toml++ destroys them by recursion.
  // - A character beyond ASCII at a place at which toml++ skips blanks, because it declares this
  //   case unreachable. Such places are outside quotes, and after a backslash at the end of a line
  //   in quotes.
  // toml++ itself reports all other syntax errors.
  std::optional<Error> error;
  std::vector<std::size_t> headers;  // The offsets of the lines that are [NAME] or [[NAME]].
  std::size_t line = 0;              // The offset of the last line that is not inside a value.
  bool is_in_value = false;
  bool is_in_brackets = false;
};
TomlScan ScanToml(std::string_view toml);

// The end of the part of a dotted key that begins at `offset`.
std::size_t EndOfKeyPart(std::string_view toml, std::size_t offset);

}  // namespace cadrova::host
