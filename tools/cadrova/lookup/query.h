// What the library can be asked: its families and kinds, and one question.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "interpose/call.h"
#include "output/text.h"

// One call of one of the library's lookups.
struct Question {
  std::string function;
  std::string key;
  Value default_value;       // the kind's own where none is given
  bool has_default = false;  // whether one is given
  std::function<Value()> ask;

  const char* kind() const { return cadrova::tools::kKindNames[default_value.index()]; }
};

// Whether the family has a lookup of the kind: the SIM's has none of a float.
bool HasLookup(const std::string& family, const std::string& kind);

// A question, or the command fails where the library can't be asked it.
Question ToQuestion(const std::string& family, const std::string& kind, const std::string& key,
                    const std::optional<std::string>& default_value = {});

// The core's test for the kind of `value`; of SIM data, where it has one.
cadrova::tools::ExistenceTest* TestOf(const Value& value, bool is_sim);
