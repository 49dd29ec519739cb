// The families and kinds of lookups, one table each. Everything that the command knows about a
// family is in its row; which maps it consults is recorded, not repeated.
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

// A function of the library; none if `call` is nullptr.
struct Lookup {
  Value (*call)(const std::string& key, const Value& default_value) = nullptr;
  bool takes_default = false;
};

struct Family {
  const char* name;
  const char* infix;                       // in the names of its functions
  bool is_compared;                        // by diff and in the report, unless a family is named
  bool is_checked;                         // by check
  std::array<Lookup, kKindCount> lookups;  // by kind

  bool Has(Kind kind) const { return lookups[static_cast<std::size_t>(kind)].call != nullptr; }
  const Lookup& Get(Kind kind) const { return lookups[static_cast<std::size_t>(kind)]; }
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

// What a lookup is given if the user names no default: false, 0, 0, "" or an empty list.
Value ZeroOf(Kind kind);

// The core's existence test of the kind. With `is_sim`, the one for SIM data, if it has one.
ExistenceTest* TestOf(Kind kind, bool is_sim);

// The value that `map` contains under `key`, or the default, whose kind it has.
Value ReadFromMap(const std::string& map, const std::string& key, const Value& default_value);

}  // namespace cadrova::tools
