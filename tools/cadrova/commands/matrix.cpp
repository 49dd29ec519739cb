#include <cstdlib>

#include "commands/command.h"
#include "commands/shared_options.h"
#include "common/text.h"
#include "failure.h"
#include "fleet/feature_index.h"
#include "fleet/matrix_layout.h"
#include "lookup/data_source.h"
#include "output/console.h"
#include "output/csv.h"
#include "output/html_report.h"
#include "output/json.h"
#include "output/output_file.h"
#include "output/progress.h"
#include "output/text.h"

namespace cadrova::tools {
namespace {

class Matrix : public Command {
 public:
  void DeclareOptions(Options& options) override {
    options.Add("FAMILY", family_, "", FamilyNames());
    options.Add("KIND", kind_, "", KindNames());
    options.Add("KEY", key_, "", "Key of the feature");
    data_.DeclareOptions(options);
    fleet_.DeclareOptions(options);
    options.AddFlag("--json", json_, "Print a JSON array of objects: region, carrier, value, map");
    options.AddFlag("--csv", csv_, "Print comma-separated values, one line per device");
    options.Add(
        "--html", html_, "FILE",
        "Write an HTML report (\"-\": to standard output), of all features if none is named");
  }

  int Run() override {
    RefuseCombination({{"--json", json_}, {"--csv", csv_}, {"--html", html_.has_value()}});
    data_.Apply();
    if (family_ && kind_ && key_) return ShowFeature(MakeQuery(*family_, *kind_, *key_));
    if (!family_ && html_) return WriteReportOfAll();
    throw Failure("give FAMILY, KIND and KEY; or none of them, with --html");
  }

 private:
  int ShowFeature(const Query& query) const {
    const Fleet fleet = fleet_.ToFleet(
        fleet_.are_complete() ? std::vector<std::string>()
                              : MapNames(ListContents("give both --regions and --carriers")));
    const auto page = html_ ? std::optional(Page()) : std::nullopt;
    const FleetChains chains(*query.family, fleet);
    const Results results = chains.Collect(query.kind, query.key);
    if (json_) {
      PrintJson(chains, results);
    } else if (csv_) {
      Print(ToCsv(chains, results));
    } else if (page) {
      HtmlReport report(HasFakeCore() ? ListContents().file : "libcadrova_ffi.so", fleet);
      report.BeginFeature(query.key, query.kind);
      report.Add(*query.family, LayOut(chains, results));
      page->Write(report.ToHtml());
    } else {
      Print(ToText(LayOut(chains, results), fleet));
    }
    if (!results.is_stable()) {
      PrintError(
          "cadrova: warning: the core returned different values for the same call, so a device may "
          "get another result");
    }
    if (results.has_any()) return kSuccess;
    PrintError("cadrova: no map contains " + DisplayName(query.key) + " as " +
               ToString(query.kind));
    return kNegative;
  }

  int WriteReportOfAll() const {
    const auto contents =
        ListContents("give FAMILY, KIND and KEY, and both --regions and --carriers");
    const OutputFile page = Page();
    const Fleet fleet = fleet_.ToFleet(MapNames(contents));
    const auto features = IndexFeatures(contents);
    std::vector<FleetChains> families;
    for (const Family& family : Families()) {
      if (family.is_compared) families.emplace_back(family, fleet);
    }
    HtmlReport report(contents.file, fleet);
    Progress progress("looking up each feature");
    for (std::size_t i = 0; i < features.size(); ++i) {
      progress.Show(i, features.size());
      const auto& [key, kind, maps] = features[i];
      report.BeginFeature(key, kind);
      for (const FleetChains& chains : families) {
        if (!chains.family().Has(kind)) continue;
        report.Add(chains.family(), LayOut(chains, chains.Collect(kind, key, &maps)));
      }
    }
    page.Write(report.ToHtml());
    return kSuccess;
  }

  OutputFile Page() const {
    std::vector<std::string> inputs;
    if (HasFakeCore()) inputs.push_back(ListContents().file);
    const char* const properties = std::getenv("CADROVA_HOST_PROPS");
    if (properties != nullptr) inputs.emplace_back(properties);
    return {"--html", *html_, inputs};
  }

  std::optional<std::string> family_, kind_, key_, html_;
  DataOption data_;
  FleetOptions fleet_;
  bool json_ = false, csv_ = false;
};

}  // namespace

std::unique_ptr<Command> MakeMatrix() { return std::make_unique<Matrix>(); }

}  // namespace cadrova::tools
