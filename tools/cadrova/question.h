// What the library can be asked: its families and kinds, and one question as the arguments say it.
#pragma once

#include <CLI/CLI.hpp>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "values.h"

// One call of one of the library's lookups.
struct Question {
  std::string function;
  std::string key;
  Value default_value;       // the kind's own where none is given
  bool has_default = false;  // whether one is given
  std::function<Value()> ask;

  const char* kind() const { return cadrova::watch::kKindNames[default_value.index()]; }
};

// The arguments of the commands that ask a question.
class QuestionArguments {
 public:
  explicit QuestionArguments(CLI::App& command);

  // The question; the device is then as the options have it.
  Question Take() const;

 private:
  std::string family_, kind_, key_;
  std::optional<std::string> default_, data_, region_, carrier_;
  std::vector<std::string> sim_items_;
};
