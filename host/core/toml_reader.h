// TOML as items of a store.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "cadrova/host.h"
#include "store.h"

namespace cadrova::host {

// Adds the items of a TOML document to `store`, which must be empty. Each table is a map; dotted
// keys and tables inside a map make keys that are joined with dots. Returns the errors in the
// document, in its order; if there are any, `store` is incomplete. Errors call the document `file`.
std::vector<Error> ReadToml(std::string_view toml, const std::string& file, Store& store);

// The same for the contents of the file at `path`.
std::vector<Error> ReadTomlFile(const std::string& path, Store& store);

// The value of a SIM item that was handed over as `text`: a TOML value, or else a string.
StoredValue SimValueFromText(const std::string& text);

}  // namespace cadrova::host
