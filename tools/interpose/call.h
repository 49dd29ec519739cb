// The library's calls to the device, as an observer sees them.
//
// device.cpp defines the core's 21 functions and `android::base::GetProperty`. Each passes the call
// on to the next definition of its symbol, then shows the call and its answer to `observer`. A
// program that links device.cpp, or into which it is preloaded, observes every call of the library,
// whichever core answers it. The core's blocks are read, never freed and never kept.
#pragma once

#include <functional>
#include <string>

#include "parser_core.h"

namespace cadrova::tools {

using ExistenceTest = cadrova_core_bool(const std::string& map, const std::string& key);

// One call of the library to the device, after the device has answered it.
struct DeviceCall {
  enum class Type { kGetProperty, kTest, kSimTest, kRead, kHandOver };

  Type type;
  const std::string& name;        // of the property or the map
  const std::string& key;         // in the map; for a property, its default
  const void* caller = nullptr;   // kGetProperty: the return address
  ExistenceTest* test = nullptr;  // kRead: the existence test of the same kind
  // The answers that an observer may change; NULL if the call has another answer.
  std::string* property = nullptr;
  cadrova_core_bool* exists = nullptr;
  std::function<void(std::string& text)> append_to = nullptr;

  // Appends the call and its answer: get_int_item_exist("EU", "ring.seconds") = true
  void AppendTo(std::string& text) const { append_to(text); }
};

using Observer = void (*)(DeviceCall& call);

// Called on the calling thread after each answer, but not for calls that the core itself makes.
// NULL observes nothing. Each binary that links device.cpp defines it, with a constant initialiser:
// the first calls may come before other initialisers have run.
extern const Observer observer;

// The core's answer to `test`, which is not observed.
bool CoreContains(ExistenceTest* test, const std::string& map, const std::string& key);

}  // namespace cadrova::tools
