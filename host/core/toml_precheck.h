// Rejects documents that toml++ can't survive.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "cadrova/host.h"

namespace cadrova::host {

// The first place in the document `toml` that toml++ might not survive:
// - A key of very many parts: its tables are nested, and toml++ destroys them by recursion.
// - A character beyond ASCII where toml++ skips blanks, as it declares that case unreachable. That
// is
//   outside quotes, where TOML allows no such character, and after a backslash that ends a line in
//   quotes.
// toml++ itself reports all other syntax errors. The error calls the document `file`.
std::optional<Error> FindUnsafeToml(std::string_view toml, const std::string& file);

}  // namespace cadrova::host
