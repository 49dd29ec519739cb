// Parses the command line: a command with its options and arguments.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace cadrova::tools {

// What completion offers as the value of an option or argument.
enum class ValueType {
  kOther,  // nothing
  kFile,
  kDataFile,  // a customization file, in which the command looks
  kProgram,
  kFamily,
  kKind,  // of the family, if one is given
  kKey,   // of the kind, if one is given
  kKeyOrFamily,
  kMap,
  kRegion,
  kCarrier,
  kRegions,  // comma-separated
  kCarriers,
  kDeviceOrKey,  // REGION/CARRIER, or a part of a key
};
// One of these types, or a list of all values.
using Completion = std::variant<ValueType, std::vector<std::string>>;
// By option or argument.
using Completions = std::map<const CLI::Option*, Completion>;

// Declares the options and arguments of one command. A `name` that begins with a dash is an option;
// any other name is a positional argument. `type` is the name of an option's value in the help
// text.
class Options {
 public:
  Options(CLI::App& app, Completions& completions) : app_(app), completions_(completions) {}

  void AddRequired(const std::string& name, std::string& value, const std::string& description,
                   const Completion& completion = {});
  void Add(const std::string& name, std::optional<std::string>& value, const std::string& type,
           const std::string& description, const Completion& completion = {});
  void AddFlag(const std::string& name, bool& value, const std::string& description);
  // An option that may be repeated, each time with one value.
  void AddRepeatable(const std::string& name, std::vector<std::string>& values,
                     const std::string& type, const std::string& description,
                     const Completion& completion = {});
  // All remaining arguments.
  enum class Need { kOptional, kAtLeastOne };
  void AddRemaining(const std::string& name, std::vector<std::string>& values,
                    const std::string& description, Need need = Need::kAtLeastOne,
                    const Completion& completion = {});

 private:
  CLI::App& app_;
  Completions& completions_;
};

// Runs the command that the arguments name, and returns the exit status; throws a Failure.
int RunCommandLine(int argc, const char* const* argv);

// The last word of a command line that is not complete.
struct IncompleteWord {
  std::string start;  // that is complete, such as "--data="
  std::string rest;   // to complete
  Completion completion = {};
  std::map<ValueType, std::string> given = {};  // the first value of each type in other words
};

// What the last of the `words` after "cadrova" may become.
IncompleteWord ParseIncomplete(const std::vector<std::string>& words);

// The help text of the command, or of cadrova itself if the name is empty; throws a Failure.
std::string HelpText(const std::string& command);

}  // namespace cadrova::tools
