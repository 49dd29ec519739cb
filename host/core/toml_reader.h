// TOML as items of a store.
#pragma once

#include <string>

#include "for_command.h"
#include "store.h"

namespace cadrova::host {

// `ParseData` for the contents of the file at `path`. Each table is a map. The parts of dotted keys
// and the names of tables inside a map are joined with dots.
ParsedFile ParseFile(const std::string& path);

// The value of a SIM item that was set to `text`: a TOML value, or else a string.
StoredValue SimValueFromText(const std::string& text);

}  // namespace cadrova::host
