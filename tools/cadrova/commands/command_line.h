// Parses the command line: a command with its options and arguments.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace cadrova::tools {

// Declares the options and arguments of one command. A `name` that begins with a dash is an option;
// any other name is a positional argument. `type` is the name of an option's value in the help
// text.
class Options {
 public:
  explicit Options(CLI::App& app) : app_(app) {}

  void AddRequired(const std::string& name, std::string& value, const std::string& description);
  void Add(const std::string& name, std::optional<std::string>& value, const std::string& type,
           const std::string& description);
  void AddFlag(const std::string& name, bool& value, const std::string& description);
  // An option that may be repeated, each time with one value.
  void AddRepeatable(const std::string& name, std::vector<std::string>& values,
                     const std::string& type, const std::string& description);
  // All remaining arguments.
  enum class Need { kOptional, kAtLeastOne };
  void AddRemaining(const std::string& name, std::vector<std::string>& values,
                    const std::string& description, Need need = Need::kAtLeastOne);

 private:
  CLI::App& app_;
};

// Runs the command that the arguments name, and returns the exit status; throws a Failure.
int RunCommandLine(int argc, const char* const* argv);

// The help text of the command, or of cadrova itself if the name is empty; throws a Failure.
std::string HelpText(const std::string& command);

}  // namespace cadrova::tools
