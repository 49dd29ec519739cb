// One lookup with its arguments.
#pragma once

#include <optional>
#include <string>

#include "lookup/families.h"

namespace cadrova::tools {

struct Query {
  const Family* family;
  Kind kind;
  std::string key;
  Value default_value;       // ZeroOf(kind) if none was given
  bool has_default = false;  // whether one was given

  // Makes the lookup.
  Value Run() const { return family->Get(kind).call(key, default_value); }
};

// Throws a Failure if the family has no such lookup, or the default is not one of the kind.
Query MakeQuery(const std::string& family, const std::string& kind, const std::string& key,
                const std::optional<std::string>& default_value = {});

// The same with the default `ZeroOf(kind)`. The family must have a lookup of the kind.
Query MakeQuery(const Family& family, Kind kind, const std::string& key);

}  // namespace cadrova::tools
