// --format, the short options for single formats, and --color.
#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "commands/command_line.h"

namespace cadrova::tools {

struct Format {
  std::string name;
  // What the command prints in this format, for the help text of its short option, such as --json.
  // If it is empty, the format has no short option.
  std::string description;
};

class FormatOption {
 public:
  // The first format is the default.
  explicit FormatOption(const std::vector<Format>& formats);

  void DeclareOptions(Options& options);

  // The name of the chosen format. Applies --color. Throws a Failure if there is no such format, or
  // if more than one of these options and the `others` is given.
  std::string Choose(const std::vector<std::pair<std::string, bool>>& others = {}) const;

 private:
  struct Choice {
    Format format;
    bool is_given;  // by the short option
  };
  std::vector<std::string> Names() const;

  std::optional<std::string> name_, color_;
  std::vector<Choice> choices_;
};

}  // namespace cadrova::tools
