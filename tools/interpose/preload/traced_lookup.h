// A lookup of the program, and its line in the trace.
#pragma once

#include <string>
#include <utility>

#include "cadrova/value.h"
#include "common/text.h"
#include "interpose/call.h"
#include "interpose/chain.h"
#include "output.h"

namespace cadrova::tools {

// Exists on the calling thread from the start of the lookup until its line is written.
class TracedLookup {
 public:
  TracedLookup(const char* function, const std::string& key, const auto&... default_value)
      : key_(key) {
    AppendCall(line_, function, key, default_value...);
    current = this;
  }
  TracedLookup(const TracedLookup&) = delete;
  TracedLookup& operator=(const TracedLookup&) = delete;
  ~TracedLookup() { current = nullptr; }

  // The lookup that runs on this thread, or NULL. A lookup that it calls is part of it.
  static inline thread_local TracedLookup* current = nullptr;

  void Add(const DeviceCall& call);

  template <class T>
  void Finish(const T& value) {
    Finish(host::ToString(host::KindOf(host::Value(std::in_place_type<T>))), ToJsonText(value));
  }
  void FinishSetSim();

 private:
  void Finish(const char* kind, const std::string& value);
  void WriteLine();

  std::string key_;
  std::string line_ = LineStart();
  std::string steps_;  // only if they are shown
  Chain chain_;
};

}  // namespace cadrova::tools
