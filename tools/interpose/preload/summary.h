// Counts the lookups of a process, and writes a table when it ends. Takes no lock, because a signal
// handler may interrupt the counting, make a lookup of its own, and jump out of it.
#pragma once

#include <string_view>

namespace cadrova::tools {

// Counts a lookup. `source` says which map the value came from; it is empty for the default.
// Returns false if memory ran out.
bool CountLookup(std::string_view key, const char* kind, std::string_view source,
                 std::string_view value);

// Counts a call to the device by a lookup whose name is unknown.
void CountUnnamedCall();

}  // namespace cadrova::tools
