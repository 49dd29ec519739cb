// What a lookup is made of: the device's codes, names composed of them, whether a map holds an
// item, and the reading that prints a line and comes back with the value.
#pragma once

#include <android-base/properties.h>

#include <cstdio>
#include <string>

#include "bridge/call_core.h"
#include "lookup/kind.h"
#include "lookup/line.h"
#include "parser_core.h"

namespace android::cadrova_cpp {

// The device's codes, verbatim; empty where their system property is unset.
inline std::string RegionCode() { return base::GetProperty("ro.orvel.region", ""); }
inline std::string CarrierCode() { return base::GetProperty("persist.sys.cota.carrier", ""); }

// Two parts of a map name. Flattened, since most fronts are constants and then no more than a
// store.
[[gnu::flatten]] inline std::string Concatenated(const std::string& front,
                                                 const std::string& back) {
  return front + back;
}

using ExistenceTest = cadrova_core_bool(const std::string& map, const std::string& key);

// Whether `map` holds an item under `key`, of the kind and in the data that `exists` asks about.
// Compiled once and called: copies are most of it, and lookups ask in many places.
[[gnu::noinline]] inline bool Holds(ExistenceTest* exists, const std::string& map,
                                    const std::string& key) {
  return ::cadrova::core::IsTrue(CallCore(exists, map, key));
}

// A value as `printf` takes it.
template <class Number>
Number PrintfArgument(Number number) {
  return number;
}
inline const char* PrintfArgument(const std::string& text) { return text.c_str(); }

// Scalars and strings: the line shows a first reading, and the caller gets a second.
template <class Value>
Value Report(Line<Value> line, const std::string& map, const std::string& key,
             const Value& default_value) {
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"  // `Line` has checked it.
  std::printf(line.text, PrintfArgument(KindTraits<Value>::read(map, key, default_value)));
#pragma GCC diagnostic pop
  return KindTraits<Value>::read(map, key, default_value);
}

// Lists: announced by the line, then read once.
template <class Value>
Value Report(Line<Value> line, const std::string& map, const std::string& key) {
  std::puts(line.text);
  return KindTraits<Value>::read(map, key);
}

}  // namespace android::cadrova_cpp
