// A lookup that a program makes, and what libcadrova_trace.so says of it.
#pragma once

#include <string>

#include "common/json_text.h"
#include "common/value.h"
#include "interpose/call.h"
#include "interpose/chain.h"
#include "output.h"

namespace cadrova::tools {

// From before the lookup begins until its line is written, on one thread.
class Lookup {
 public:
  Lookup(const char* function, const std::string& key, const auto&... default_value) : key_(key) {
    AppendCall(line_, function, key, default_value...);
    current = this;
  }
  Lookup(const Lookup&) = delete;
  Lookup& operator=(const Lookup&) = delete;
  ~Lookup() { current = nullptr; }

  // The one that runs on this thread, or NULL. One that ends in another takes that in.
  static inline thread_local Lookup* current = nullptr;

  void Add(const Step& step);

  template <class Kind>
  void Returned(const Kind& value) {
    line_ += " = ";
    const std::size_t start = line_.size();
    AppendJson(line_, value);
    Finish(kKindNames[Value(std::in_place_type<Kind>).index()], start);
  }
  void HandedOver();

 private:
  void Finish(const char* kind, std::size_t value);
  void Write(const char* before_maps);

  std::string key_;
  std::string line_ = LineStart();
  std::string steps_;  // where they are shown
  Chain chain_;
};

}  // namespace cadrova::tools
