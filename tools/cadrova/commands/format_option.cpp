#include "commands/format_option.h"

#include <algorithm>

#include "commands/shared_options.h"
#include "common/text.h"
#include "failure.h"
#include "output/console.h"

namespace cadrova::tools {

FormatOption::FormatOption(const std::vector<Format>& formats) {
  for (const Format& format : formats) choices_.push_back({format, false});
}

void FormatOption::DeclareOptions(Options& options) {
  options.Add("--format", name_, "NAME",
              "Output format: " + Join(Names()) + " (default: " + choices_[0].format.name + ')',
              Names());
  for (auto& [format, is_given] : choices_) {
    if (format.description.empty()) continue;
    options.AddFlag("--" + format.name, is_given, format.description);
  }
  options.Add("--color", color_, "WHEN", "Color text: auto, always, never (default: auto)",
              std::vector<std::string>{"auto", "always", "never"});
}

std::string FormatOption::Choose(const std::vector<std::pair<std::string, bool>>& others) const {
  if (color_) ChooseColor(*color_);
  std::vector<std::pair<std::string, bool>> given = {{"--format", name_.has_value()}};
  std::string chosen = choices_[0].format.name;
  bool is_known = !name_;
  for (const auto& [format, has_short_option] : choices_) {
    given.emplace_back("--" + format.name, has_short_option);
    if (!has_short_option && name_ != format.name) continue;
    chosen = format.name;
    is_known = true;
  }
  given.insert(given.end(), others.begin(), others.end());
  RefuseCombination(given);
  if (is_known) return chosen;
  throw Failure("--format: unknown format '" + name_.value_or("") +
                "'; use one of: " + Join(Names()));
}

std::vector<std::string> FormatOption::Names() const {
  std::vector<std::string> names(choices_.size());
  std::ranges::transform(choices_, names.begin(),
                         [](const Choice& choice) { return choice.format.name; });
  return names;
}

}  // namespace cadrova::tools
