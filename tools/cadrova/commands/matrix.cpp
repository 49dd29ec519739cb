#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <system_error>

#include "commands/command.h"
#include "commands/format_option.h"
#include "commands/shared_options.h"
#include "common/text.h"
#include "failure.h"
#include "fleet/feature_index.h"
#include "fleet/matrix_layout.h"
#include "fleet/passed_over.h"
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

// The time that SOURCE_DATE_EPOCH gives, so that a build can be repeated, or else that of the file.
std::optional<std::time_t> TimeOfChange(const std::string& file) {
  const char* const epoch = std::getenv("SOURCE_DATE_EPOCH");
  if (epoch != nullptr && *epoch != '\0') {
    constexpr std::time_t kLastYear = 253'402'300'799;  // the end of the year 9999
    std::time_t time = 0;
    const char* const end = epoch + std::strlen(epoch);
    const auto [rest, error] = std::from_chars(epoch, end, time);
    if (rest != end || error != std::errc() || time < 0 || time > kLastYear) {
      throw Failure("SOURCE_DATE_EPOCH is " + DisplayName(epoch) +
                    "; it must be a number of seconds since 1970");
    }
    return time;
  }
  struct stat status = {};
  if (stat(file.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) return std::nullopt;
  return status.st_mtime;
}

class Matrix : public Command {
 public:
  void DeclareOptions(Options& options) override {
    options.Add("FAMILY", family_, "", FamilyNames(), ValueType::kFamily);
    options.Add("KIND", kind_, "", KindNames(), ValueType::kKind);
    options.Add("KEY", key_, "", "Key of the feature", ValueType::kKey);
    data_.DeclareOptions(options);
    fleet_.DeclareOptions(options);
    format_.DeclareOptions(options);
    options.Add(
        "--html", html_, "FILE",
        "Write an HTML report (\"-\": to standard output), of all features if none is named",
        ValueType::kFile);
    options.Add("--revision", revision_, "TEXT",
                "Revision of the data, to show in the HTML report");
  }

  int Run() override {
    const std::string format = format_.Choose({{"--html", html_.has_value()}});
    if (!key_ && (family_ || !html_)) {
      throw Failure("give FAMILY, KIND and KEY; or none of them, with --html");
    }
    if (revision_ && !html_)
      throw Failure("--revision needs --html; only the report shows the revision");
    std::optional<Query> query;
    if (family_ && kind_ && key_) query = MakeQuery(*family_, *kind_, *key_);
    data_files_ = data_.Apply();
    const FleetChoice choice = fleet_.Choose(data_files_);
    return query ? ShowFeature(choice, *query, format) : WriteReportOfAll(choice);
  }

 private:
  int ShowFeature(const FleetChoice& choice, const Query& query, const std::string& format) const {
    std::vector<std::string> maps;
    const bool can_list = HasFakeCore() || !choice.are_codes_declared();
    if (can_list) maps = ListMapNames("give both --regions and --carriers");
    const Fleet fleet = choice.ToFleet(maps);
    const auto page = html_ ? std::optional(Page(choice)) : std::nullopt;
    const FleetChains chains(*query.family, fleet, can_list ? &maps : nullptr);
    const Results results = chains.Collect(query.kind, query.key);
    if (format == "json") {
      PrintJson(chains, results);
    } else if (format == "csv") {
      Print(DataFor(STDOUT_FILENO, ToCsv(chains, results)));
    } else if (page) {
      HtmlReport report(Source(HasFakeCore() ? ListContents().file : "libcadrova_ffi.so"), fleet);
      report.BeginFeature(query.key, query.kind);
      const auto passed_over = FindPassedOver(chains, results, query.kind, query.key);
      report.Add(*query.family, LayOut(chains, results, passed_over));
      page->Write(report.ToHtml());
    } else {
      const auto passed_over = FindPassedOver(chains, results, query.kind, query.key);
      Print(ToText(chains, results, passed_over));
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

  int WriteReportOfAll(const FleetChoice& choice) const {
    const auto contents =
        ListContents("give FAMILY, KIND and KEY, and both --regions and --carriers");
    const OutputFile page = Page(choice);
    const auto maps = MapNames(contents);
    const Fleet fleet = choice.ToFleet(maps);
    const auto features = IndexFeatures({&contents});
    std::vector<FleetChains> families;
    for (const Family& family : Families()) {
      if (family.is_reported) families.emplace_back(family, fleet, &maps);
    }
    HtmlReport report(Source(contents.file), fleet);
    Progress progress("looking up each feature");
    for (std::size_t i = 0; i < features.size(); ++i) {
      progress.Show(i, features.size());
      const auto& [key, kind, feature_maps, places] = features[i];
      const auto other_maps = MapsOfOtherKinds(features, i);
      report.BeginFeature(key, kind);
      for (const FleetChains& chains : families) {
        if (!chains.family().Has(kind)) continue;
        const Results results = chains.Collect(kind, key, &feature_maps);
        const auto passed_over = FindPassedOver(chains, results, kind, key, &other_maps);
        report.Add(chains.family(), LayOut(chains, results, passed_over));
      }
    }
    page.Write(report.ToHtml());
    return kSuccess;
  }

  ReportSource Source(const std::string& name) const {
    return {name, TimeOfChange(name), revision_};
  }

  OutputFile Page(const FleetChoice& choice) const {
    auto inputs = data_files_;
    if (inputs.empty() && HasFakeCore()) inputs.push_back(ListContents().file);  // the sample
    std::ranges::replace(inputs, "-", "/dev/stdin");
    const char* const properties = std::getenv("CADROVA_HOST_PROPS");
    if (properties != nullptr) inputs.emplace_back(properties);
    if (choice.file != nullptr) inputs.push_back(choice.file->path);
    return {"--html", html_.value_or(""), inputs};
  }

  std::optional<std::string> family_, kind_, key_, html_, revision_;
  DataOption data_;
  std::vector<std::string> data_files_;  // as they were named
  FleetOptions fleet_;
  FormatOption format_{{{"text", ""},
                        {"json", "Print a JSON array of objects: region, carrier, value, map"},
                        {"csv", "Print comma-separated values, one line per device"}}};
};

}  // namespace

std::unique_ptr<Command> MakeMatrix() { return std::make_unique<Matrix>(); }

}  // namespace cadrova::tools
