// Rejects documents that would crash toml++.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "cadrova/host.h"

namespace cadrova::host {

// Returns an error for the first place in the document `toml` that might crash toml++:
// - A key of very many parts. Its tables are nested, and toml++ destroys them by recursion.
// - A character beyond ASCII at a place at which toml++ skips blanks, because it declares this case
//   unreachable. Such places are outside quotes, and after a backslash at the end of a line in
//   quotes.
// toml++ itself reports all other syntax errors. `file` is the name of the document in the error.
std::optional<Error> FindUnsafeToml(std::string_view toml, const std::string& file);

}  // namespace cadrova::host
