// What must not reach toml++, which takes for granted that it never comes.
#pragma once

#include <optional>
#include <string_view>

#include "cadrova/host.h"

namespace cadrova::host {

// The first place in the document `toml` that toml++ might not survive:
// - a key of very many parts, whose tables lie within each other and are torn down by recursion;
// - a letter beyond ASCII where it looks for blanks, which it declares unreachable: outside quotes,
//   where TOML has none, and behind a backslash that ends a line inside quotes.
// All else that is no TOML, toml++ reports itself.
std::optional<Mistake> WhatTomlCannotTake(std::string_view toml);

}  // namespace cadrova::host
