// The families and the kinds of lookups, in one table each. A row contains everything that the
// command knows about a family. Its chain is recorded from the library and not repeated here.
#pragma once

#include <array>
#include <span>
#include <string>
#include <variant>

#include "cadrova/value.h"
#include "interpose/call.h"

namespace cadrova::tools {

using host::Kind;
using host::Value;

constexpr std::size_t kKindCount = std::variant_size_v<Value>;

// A lookup of the library. `call` is NULL if the family has no lookup of the kind.
struct LookupFunction {
  Value (*call)(const std::string& key, const Value& default_value) = nullptr;
  bool takes_default = false;
};

struct Family {
  const char* name;
  const char* infix;                               // in the names of its functions
  bool is_reported;                                // in the report of all features
  std::array<LookupFunction, kKindCount> lookups;  // by kind

  bool Has(Kind kind) const { return lookups[static_cast<std::size_t>(kind)].call != nullptr; }
  const LookupFunction& Get(Kind kind) const { return lookups[static_cast<std::size_t>(kind)]; }
  // "getSimCustIntFeature"
  std::string FunctionName(Kind kind) const;
};

std::span<const Family> Families();

// Both throw a Failure if there is no such name.
const Family& FindFamily(const std::string& name);
Kind FindKind(const std::string& name);

// "default, region, ...", for help texts and messages.
std::string FamilyNames();
std::string KindNames();

// The default of a lookup if none is given: false, 0, 0, "" or an empty list.
Value ZeroOf(Kind kind);

// The core's existence test of the kind. With `is_sim`, the test for SIM data, if there is one.
ExistenceTest* ExistenceTestOf(Kind kind, bool is_sim);

// The value of the same kind as the default that `map` contains under `key`, or else the default.
Value ReadFromMap(const std::string& map, const std::string& key, const Value& default_value);

}  // namespace cadrova::tools
