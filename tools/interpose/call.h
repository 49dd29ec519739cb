// In front of the device: the core's 21 functions and `android::base::GetProperty`, each of which
// passes the call on to the next definition and tells what was asked and answered. An executable or
// a preloaded library that holds these sees all that the library asks, of any core. The answers'
// blocks are looked at, never freed and never kept.
#pragma once

#include <string>

#include "parser_core.h"

namespace cadrova::tools {

using ExistenceTest = cadrova_core_bool(const std::string& map, const std::string& key);

// One question that has been answered, while the library waits for the answer.
struct Step {
  enum class What { kProperty, kTest, kSimTest, kRead, kHandOver };

  What what;
  const std::string& name;                // the property, or the map
  const std::string& key;                 // in that map; or the property's default
  const void* caller = nullptr;           // where in the program it was asked
  ExistenceTest* test_of_kind = nullptr;  // whether a map holds what was read
  // The answers that may be changed, NULL for what has another.
  std::string* property = nullptr;
  cadrova_core_bool* exists = nullptr;

  Step(What of, const std::string& asked, const std::string& under)
      : what(of), name(asked), key(under) {}

  // Appends the question and its answer: get_int_item_exist("EU", "ring.seconds") = true
  virtual void AppendTo(std::string& text) const = 0;

 protected:
  ~Step() = default;
};

// For whoever has this layer to define. Called on the thread that asks, after each answer; but not
// for what the core asks in its turn.
void Heard(Step& step);

// The answer of `test`, one of the core's, which is not heard.
bool Holds(ExistenceTest* test, const std::string& map, const std::string& key);

}  // namespace cadrova::tools
