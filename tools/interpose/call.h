// The library's calls to the device, which is the core and the property store, for an observer.
//
// device.cpp defines the core's 21 functions and `android::base::GetProperty`. Each passes the call
// on to the next definition of its symbol, then shows the call and the returned value to
// `observer`. So a program that links device.cpp, or preloads it, observes every call of the
// library, with any core. An observer reads the core's blocks only during the call, and never frees
// them.
#pragma once

#include <functional>
#include <string>

#include "parser_core.h"

namespace cadrova::tools {

using ExistenceTest = cadrova_core_bool(const std::string& map, const std::string& key);

// One call of the library to the device, after it has returned.
struct DeviceCall {
  enum class Type { kGetProperty, kTest, kSimTest, kRead, kSetSim };

  Type type;
  const std::string& name;        // of the property or the map
  const std::string& key;         // in the map; for a property, its default
  const void* caller = nullptr;   // kGetProperty: the return address
  ExistenceTest* test = nullptr;  // kRead: the existence test of the same kind
  // The returned value, which an observer may change. NULL if the call returns another type.
  std::string* property = nullptr;
  cadrova_core_bool* exists = nullptr;
  std::function<void(std::string& text)> append_to = nullptr;

  // Appends the call and the returned value: get_int_item_exist("EU", "ring.seconds") = true
  void AppendTo(std::string& text) const { append_to(text); }
};

using Observer = void (*)(DeviceCall& call);

// Called after each call of the library, on the same thread, but not for calls that the core itself
// makes. NULL for no observer. Each binary that links device.cpp defines it, with a constant
// initialiser, because the first calls may come before other initialisers have run.
extern const Observer observer;

// Calls the existence test of the core without showing the call to the observer.
bool CoreContains(ExistenceTest* test, const std::string& map, const std::string& key);

}  // namespace cadrova::tools
