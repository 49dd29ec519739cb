// The steps of a lookup: read the device's codes, compose map names, test whether a map contains an
// item, print a line and read the value.
#pragma once

#include <android-base/properties.h>

#include <cstdio>
#include <string>

#include "bridge/call_core.h"
#include "lookup/kind.h"
#include "lookup/line.h"
#include "parser_core.h"

namespace android::cadrova_cpp {

// The device's codes, unchanged; empty if the system property is unset.
inline std::string RegionCode() { return base::GetProperty("ro.orvel.region", ""); }
inline std::string CarrierCode() { return base::GetProperty("persist.sys.cota.carrier", ""); }

// Composes a map name. Flattened, because `front` is mostly a constant, which then costs a single
// store instruction.
[[gnu::flatten]] inline std::string Concatenated(const std::string& front,
                                                 const std::string& back) {
  return front + back;
}

inline std::string CarrierMap() { return Concatenated("COTA_", CarrierCode()); }

using ExistenceTest = cadrova_core_bool(const std::string& map, const std::string& key);

// Whether `map` contains an item under `key`, according to the existence test `exists`. Not
// inlined: the copies make it long, and it has many callers.
[[gnu::noinline]] inline bool Contains(ExistenceTest* exists, const std::string& map,
                                       const std::string& key) {
  return ::cadrova::core::IsTrue(CallCore(exists, map, key));
}

// Converts a value to an argument of `printf`.
template <class Number>
Number PrintfArgument(Number number) {
  return number;
}
inline const char* PrintfArgument(const std::string& text) { return text.c_str(); }

// Scalars and strings: reads the value, prints it, and reads it again for the caller.
template <class Value>
Value PrintAndRead(Line<Value> line, const std::string& map, const std::string& key,
                   const Value& default_value) {
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"  // `Line` has checked it.
  std::printf(line.text, PrintfArgument(KindTraits<Value>::read(map, key, default_value)));
#pragma GCC diagnostic pop
  return KindTraits<Value>::read(map, key, default_value);
}

// Lists: prints the line, then reads the value once.
template <class Value>
Value PrintAndRead(Line<Value> line, const std::string& map, const std::string& key) {
  std::puts(line.text);
  return KindTraits<Value>::read(map, key);
}

}  // namespace android::cadrova_cpp
