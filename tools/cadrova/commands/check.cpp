#include <fnmatch.h>

#include <algorithm>
#include <map>

#include "commands/command.h"
#include "commands/format_option.h"
#include "commands/shared_options.h"
#include "common/text.h"
#include "failure.h"
#include "fleet/feature_index.h"
#include "fleet/findings.h"
#include "lookup/data_source.h"
#include "output/console.h"
#include "output/json.h"
#include "output/sarif.h"
#include "output/text.h"

namespace cadrova::tools {
namespace {

class Check : public Command {
 public:
  void DeclareOptions(Options& options) override {
    options.AddRemaining("FILE", files_,
                         "Customization files, - for standard input (default: CADROVA_HOST_DATA)",
                         Options::Need::kOptional, ValueType::kDataFile);
    fleet_.DeclareOptions(options);
    options.AddRepeatable("--lookups", log_files_, "FILE",
                          "Compare the lookups in a trace with the data; repeatable",
                          ValueType::kFile);
    options.AddFlag("--unused", reports_unused_,
                    "With --lookups: report keys that no lookup asks for");
    options.AddFlag("--strict", is_strict_, "Report warnings as errors");
    options.AddRepeatable("--disable", disabled_, "FINDING", "Do not report it; repeatable",
                          OptionalFindings());
    format_.DeclareOptions(options);
  }

  int Run() override {
    const std::string format = format_.Choose();
    for (const std::string& name : disabled_) RequireOptionalFinding(name);
    if (files_.empty()) files_ = {RequireDefaultDataFile()};
    ReadLogs();
    int status = kSuccess;
    for (const std::string& file : files_) {
      try {
        const auto findings = CheckFile(file);
        findings_.insert(findings_.end(), findings.begin(), findings.end());
      } catch (const Failure& failure) {
        PrintError(failure.what());
        status = failure.status();
      }
    }
    ReportUnusedAllowances();
    if (std::ranges::any_of(findings_, &Finding::is_error)) status = std::max(status, kNegative);
    Report(format);
    return status;
  }

 private:
  void ReadLogs() {
    if (reports_unused_ && log_files_.empty()) throw Failure("--unused needs --lookups");
    if (std::ranges::count(files_, "-") + std::ranges::count(log_files_, "-") > 1) {
      throw Failure("only one file can be standard input");
    }
    for (const std::string& file : log_files_) logs_.push_back(ReadLookupLog(file));
  }

  // Throws a Failure if the file or its fleet file can't be read.
  std::vector<Finding> CheckFile(const std::string& file) {
    const DataFile data(file);
    const bool is_unreadable = !data.errors().empty() && data.errors()[0].place.line == 0;
    if (is_unreadable) throw Failure(data.errors()[0]);
    const FleetChoice choice = fleet_.Choose({file});
    std::vector<Finding> findings;
    for (const host::Error& error : data.errors()) {
      findings.push_back(MakeFinding(data.has_syntax_error() ? "syntax" : "value", data.name(),
                                     error.place, error.reason));
    }
    if (findings.empty()) {
      data.Use();
      const auto contents = ListContents();
      const Fleet fleet = choice.ToFleet(MapNames(contents));
      findings =
          CheckContents(contents, fleet, !choice.are_codes_declared(), logs_, reports_unused_);
    }
    std::vector<bool> no_allowances;
    auto& used = choice.file == nullptr ? no_allowances : UsedAllowances(*choice.file);
    // What an error hides can't be found, so each allowance may be needed. The same holds for what
    // is not searched for.
    for (std::size_t i = 0; i < used.size(); ++i) {
      const std::string& finding = choice.file->allowed[i].finding;
      if (!data.errors().empty() || !IsSearchedFor(finding)) used[i] = true;
    }
    std::erase_if(findings, [&](const Finding& finding) {
      return IsAllowed(finding, choice.file, used) || IsDisabled(finding, choice.file);
    });
    findings = Sorted(std::move(findings));
    MakeStrict(findings, choice.file);
    return findings;
  }

  static std::vector<std::string> OptionalFindings() {
    std::vector<std::string> names;
    for (const FindingType& type : FindingTypes().subspan(2)) names.emplace_back(type.name);
    return names;
  }

  static void RequireOptionalFinding(const std::string& name) {
    if (name == "syntax" || name == "value") {
      throw Failure("--disable: " + name +
                    " can't be disabled: a file with such an error can't be used");
    }
    const auto names = OptionalFindings();
    if (std::ranges::find(names, name) != names.end()) return;
    throw Failure("--disable: unknown finding '" + name + "'; use one of: " + Join(names));
  }

  bool IsSearchedFor(const std::string& finding) const {
    if (finding == "unused-key") return reports_unused_;
    return !logs_.empty() || (finding != "unheld-key" && finding != "wrong-kind");
  }

  bool IsDisabled(const Finding& finding, const FleetFile* fleet) const {
    return std::ranges::find(disabled_, finding.type->name) != disabled_.end() ||
           (fleet != nullptr &&
            std::ranges::find(fleet->disabled, finding.type->name, &FleetFile::Disabled::finding) !=
                fleet->disabled.end());
  }

  std::vector<bool>& UsedAllowances(const FleetFile& fleet) {
    return fleets_.try_emplace(fleet.path, &fleet, std::vector<bool>(fleet.allowed.size()))
        .first->second.second;
  }

  static bool IsAllowed(const Finding& finding, const FleetFile* fleet, std::vector<bool>& used) {
    const auto matches = [](const std::optional<std::string>& pattern, const std::string& name) {
      return !pattern || fnmatch(pattern->c_str(), name.c_str(), 0) == 0;
    };
    bool is_allowed = false;
    for (std::size_t i = 0; i < used.size(); ++i) {
      const auto& [name, map, key, place] = fleet->allowed[i];
      if (name != finding.type->name || !matches(map, finding.map) || !matches(key, finding.key)) {
        continue;
      }
      used[i] = is_allowed = true;
    }
    return is_allowed;
  }

  void ReportUnusedAllowances() {
    for (const auto& [path, fleet_and_used] : fleets_) {
      const auto& [fleet, used] = fleet_and_used;
      std::vector<Finding> findings;
      for (std::size_t i = 0; i < used.size(); ++i) {
        if (used[i]) continue;
        findings.push_back(MakeFinding("unused-allow", path, fleet->allowed[i].place,
                                       "no finding matches this entry; remove it"));
      }
      const FleetFile* const file = fleet;
      std::erase_if(findings, [&](const auto& finding) { return IsDisabled(finding, file); });
      MakeStrict(findings, file);
      findings_.insert(findings_.end(), findings.begin(), findings.end());
    }
  }

  void MakeStrict(std::vector<Finding>& findings, const FleetFile* fleet) const {
    if (!is_strict_ && (fleet == nullptr || !fleet->is_strict)) return;
    for (Finding& finding : findings) finding.is_error = true;
  }

  void Report(const std::string& format) const {
    if (format == "text") {
      Print(ToText(findings_));
    } else if (format == "sarif") {
      Print(ToSarif(findings_));
    } else {
      JsonArrayPrinter array;
      for (const Finding& finding : findings_) array.Add(ToJson(finding));
      array.Finish();
    }
  }

  std::vector<std::string> files_, log_files_, disabled_;
  std::vector<LookupLog> logs_;
  FleetOptions fleet_;
  FormatOption format_{
      {{"text", ""}, {"json", "Print a JSON array with one object per finding"}, {"sarif", ""}}};
  bool is_strict_ = false, reports_unused_ = false;
  // The fleet files by path, each with whether an allowance was used.
  std::map<std::string, std::pair<const FleetFile*, std::vector<bool>>> fleets_;
  std::vector<Finding> findings_;
};

}  // namespace

std::unique_ptr<Command> MakeCheck() { return std::make_unique<Check>(); }

}  // namespace cadrova::tools
