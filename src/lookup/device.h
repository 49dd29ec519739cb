// What the lookup families ask of the device: its codes, and whether a map holds an item.
#pragma once

#include <android-base/properties.h>

#include <string>

#include "bridge/ask.h"
#include "bridge/parser_core.h"

namespace android {

// The device's codes, verbatim; empty where their system property is unset.
inline std::string RegionCode() { return base::GetProperty("ro.orvel.region", ""); }
inline std::string CarrierCode() { return base::GetProperty("persist.sys.cota.carrier", ""); }

// Whether `map` holds an item under `key`, of the kind that `exists` asks for.
inline bool Holds(cadrova_existence_test* exists, const std::string& map, const std::string& key) {
  return IsYes(Ask(exists, map, key));
}

// A composed map name, in a single allocation. Adding two named strings is the one way to join them
// that imports nothing from the standard library; inlined, a fixed front is no more than a store.
[[gnu::always_inline, gnu::flatten]] inline std::string Joined(const std::string& front,
                                                               const std::string& back) {
  return front + back;
}

}  // namespace android
