#include <fnmatch.h>

#include "commands/command.h"
#include "commands/format_option.h"
#include "commands/shared_options.h"
#include "fleet/feature_index.h"
#include "lookup/data_source.h"
#include "output/console.h"
#include "output/json.h"
#include "output/text.h"

namespace cadrova::tools {
namespace {

class List : public Command {
 public:
  void DeclareOptions(Options& options) override {
    options.Add("PATTERN", pattern_, "", "Shell pattern for keys (default: all keys)");
    data_.DeclareOptions(options);
    format_.DeclareOptions(options);
  }

  int Run() override {
    const std::string format = format_.Choose();
    data_.Apply();
    const std::string pattern = pattern_.value_or("*");
    const auto contents = ListContents();
    auto features = IndexFeatures({&contents});
    std::erase_if(features, [&](const Feature& feature) {
      return fnmatch(pattern.c_str(), feature.key.c_str(), 0) != 0;
    });
    if (format == "json") {
      JsonArrayPrinter array;
      for (const Feature& feature : features) array.Add(ToJson(feature));
      array.Finish();
    } else {
      Print(ToText(features));
    }
    if (!features.empty()) return kSuccess;
    PrintError("cadrova: no key matches '" + pattern + "'");
    return kNegative;
  }

 private:
  std::optional<std::string> pattern_;
  DataOption data_;
  FormatOption format_{{{"text", ""}, {"json", "Print a JSON array of objects: key, kind, maps"}}};
};

}  // namespace

std::unique_ptr<Command> MakeList() { return std::make_unique<List>(); }

}  // namespace cadrova::tools
