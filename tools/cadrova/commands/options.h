// What the commands' arguments have in common.
#pragma once

#include <CLI/CLI.hpp>
#include <optional>
#include <string>
#include <vector>

#include "fleet/devices.h"
#include "lookup/query.h"

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

// The arguments of the commands that ask every device.
class FleetArguments {
 public:
  explicit FleetArguments(CLI::App& command);

  bool are_given() const { return regions_.has_value() && carriers_.has_value(); }

  // The codes as they are given, and what is not given as the names of the maps have it.
  Fleet Take(const std::vector<std::string>& maps) const;

 private:
  std::optional<std::string> regions_, carriers_;
};
