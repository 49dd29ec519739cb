// What the library can be asked: its families and kinds, and one question as the arguments say it.
#pragma once

#include <CLI/CLI.hpp>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "values.h"
#include "watch.h"

// One call of one of the library's lookups.
struct Question {
  std::string function;
  std::string key;
  Value default_value;       // the kind's own where none is given
  bool has_default = false;  // whether one is given
  std::function<Value()> ask;

  const char* kind() const { return cadrova::watch::kKindNames[default_value.index()]; }
};

// Whether the family has a lookup of the kind: the SIM's has none of a float.
bool HasLookup(const std::string& family, const std::string& kind);

// A question, or the command fails where the library can't be asked it.
Question ToQuestion(const std::string& family, const std::string& kind, const std::string& key,
                    const std::optional<std::string>& default_value = {});

// The core's test for the kind of `value`; of SIM data, where it has one.
cadrova::watch::ExistenceTest* TestOf(const Value& value, bool is_sim);

// Adds an option, or an argument where `name` has no dashes.
template <class Into>
CLI::Option* AddArgument(CLI::App& command, const std::string& name, Into& into,
                         const std::string& type, const std::string& what) {
  return command.add_option(name, into, what)
      ->type_name(type)
      ->check([name](const std::string& given) {
        // A value that was forgotten would be taken for the next option's name.
        return name[0] == '-' && given.starts_with("--") ? "'" + given + "' is an option" : "";
      });
}

// Adds FAMILY, KIND and KEY.
void AddFeature(CLI::App& command, auto& family, auto& kind, auto& key) {
  AddArgument(command, "FAMILY", family, "", "default, region, carrier, carrier-region or sim");
  AddArgument(command, "KIND", kind, "",
              "bool, int, float, string, string-array, int-array or map-array");
  AddArgument(command, "KEY", key, "", "The feature key");
}

// Adds --data.
void AddData(CLI::App& command, std::optional<std::string>& data);

// The arguments of the commands that ask one question.
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
