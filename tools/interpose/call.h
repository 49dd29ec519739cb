// The library's calls to the device, which is the core and the property store, for an observer.
//
// device.cpp defines the core's 21 functions and `android::base::GetProperty`. Each passes the call
// on to the next definition of its symbol, then shows the call and the returned value to the
// observer. So a program that links device.cpp, or preloads it, observes every call of the library,
// with any core. An observer reads the core's blocks only during the call, and never frees them.
#pragma once

#include <string>

#include "common/text_buffer.h"
#include "interpose/next_definition.h"
#include "parser_core.h"

namespace cadrova::tools {

using ExistenceTest = cadrova_core_bool(const std::string& map, const std::string& key);

// One call of the library to the device, after it has returned.
struct DeviceCall {
  enum class Type { kGetProperty, kTest, kSimTest, kRead, kSetSim };

  Type type;
  const std::string& name;  // of the property or the map
  const std::string& key;   // in the map; for a property, its default
  const void* caller;       // the return address
  // kRead: finds the core's existence test of the same kind, or NULL if the core does not define
  // it.
  ExistenceTest* (*find_test)(const void* caller) = nullptr;
  // The returned value, which an observer may change. NULL if the call returns another type.
  std::string* property = nullptr;
  cadrova_core_bool* exists = nullptr;
  std::size_t (*append)(const void* context, TextBuffer& text) = nullptr;
  const void* context = nullptr;

  // Appends the call and the returned value: get_int_item_exist("EU", "ring.seconds") = true
  // Returns the position of the value in the text.
  std::size_t AppendTo(TextBuffer& text) const { return append(context, text); }
};

// Each binary that links device.cpp defines these three functions. The first calls may come before
// its initialisers have run.

// Called before a call that the device does not make itself. Returns whether to observe it.
bool IsObserved(DeviceCall::Type type, Caller caller, const void* address);
// Called after each such call, on the same thread.
void ObserveCall(DeviceCall& call);
// Called if no other binary defines `function`, before it returns what a missing item returns.
void ReportNoDefinition(const char* function);

// The trace library defines this, and traces the call. An observer in the program that changes
// returned values calls it with the changed ones. NULL if the program is not traced, or by a trace
// library for another standard library: `name` makes the symbol name differ.
[[gnu::weak, gnu::visibility("default")]] void RecordInTrace(const DeviceCall& call,
                                                             const std::string& name);

// The stack frame of the call to the device that runs on this thread, or NULL. Calls that it makes
// in its turn are not observed.
extern constinit thread_local const void* running_device_call;

// Calls an existence test of the core, and does not observe it. NULL is false.
bool CoreContains(ExistenceTest* test, const std::string& map, const std::string& key);

}  // namespace cadrova::tools
