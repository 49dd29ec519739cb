#include <algorithm>

#include "commands/command.h"
#include "commands/shared_options.h"
#include "failure.h"
#include "fleet/feature_index.h"
#include "fleet/findings.h"
#include "lookup/data_source.h"
#include "output/console.h"
#include "output/text.h"

namespace cadrova::tools {
namespace {

class Check : public Command {
 public:
  void DeclareOptions(Options& options) override {
    options.Add("FILE", file_, "", "Customization file (default: the one that the core reads)");
    fleet_.DeclareOptions(options);
  }

  int Run() override {
    const auto errors = file_ ? TryLoadData(*file_) : std::vector<host::Error>();
    if (!errors.empty()) return ReportErrors(errors);
    const auto contents = ListContents();
    const Fleet fleet = fleet_.ToFleet(MapNames(contents));
    const auto findings = CheckContents(contents, fleet, !fleet_.are_complete());
    Print(ToText(findings, contents.file));
    return std::ranges::any_of(findings, &Finding::is_error) ? kNegative : kSuccess;
  }

 private:
  static int ReportErrors(const std::vector<host::Error>& errors) {
    if (errors[0].place.line == 0) throw Failure(errors[0]);  // The file can't be read.
    std::vector<Finding> findings(errors.size());
    std::ranges::transform(errors, findings.begin(), [](const host::Error& error) {
      return Finding{error.place, true, error.reason};
    });
    Print(ToText(findings, errors[0].file));
    return kNegative;
  }

  std::optional<std::string> file_;
  FleetOptions fleet_;
};

}  // namespace

std::unique_ptr<Command> MakeCheck() { return std::make_unique<Check>(); }

}  // namespace cadrova::tools
