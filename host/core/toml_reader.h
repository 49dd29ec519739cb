// TOML as items of a store.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "cadrova/host.h"
#include "store.h"

namespace cadrova::host {

// Adds the items of a TOML document to `store`, which must be empty. Each table is a map. The parts
// of dotted keys and the names of tables inside a map are joined with dots. Returns the errors in
// the document, in its order. If there are any, `store` is incomplete. `file` is the name of the
// document in the errors.
std::vector<Error> ReadToml(std::string_view toml, const std::string& file, Store& store);

// The same for the contents of the file at `path`.
std::vector<Error> ReadTomlFile(const std::string& path, Store& store);

// The value of a SIM item that was set to `text`: a TOML value, or else a string.
StoredValue SimValueFromText(const std::string& text);

}  // namespace cadrova::host
