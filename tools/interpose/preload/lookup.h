// A lookup of the program, and the line that libcadrova_trace.so writes about it.
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
class Lookup {
 public:
  Lookup(const char* function, const std::string& key, const auto&... default_value) : key_(key) {
    AppendCall(line_, function, key, default_value...);
    current = this;
  }
  Lookup(const Lookup&) = delete;
  Lookup& operator=(const Lookup&) = delete;
  ~Lookup() { current = nullptr; }

  // The lookup that runs on this thread, or NULL. If it calls another, that is part of it.
  static inline thread_local Lookup* current = nullptr;

  void Add(const DeviceCall& call);

  template <class T>
  void Finish(const T& value) {
    Finish(host::ToString(host::KindOf(host::Value(std::in_place_type<T>))), ToJsonText(value));
  }
  void FinishHandOver();

 private:
  void Finish(const char* kind, const std::string& value);
  void WriteLine();

  std::string key_;
  std::string line_ = LineStart();
  std::string steps_;  // only if they are shown
  Chain chain_;
};

}  // namespace cadrova::tools
