#include "commands/command.h"
#include "commands/format_option.h"
#include "commands/shared_options.h"
#include "failure.h"
#include "fleet/changes.h"
#include "fleet/feature_index.h"
#include "lookup/data_source.h"
#include "output/capture.h"
#include "output/change_printer.h"
#include "output/progress.h"

namespace cadrova::tools {
namespace {

class Diff : public Command {
 public:
  void DeclareOptions(Options& options) override {
    options.AddRequired("OLD", old_, "Customization file before the change", ValueType::kDataFile);
    options.AddRequired("NEW", new_, "Customization file after the change", ValueType::kDataFile);
    options.Add("--family", family_, "FAMILY", "Family to compare (default: all)",
                ValueType::kFamily);
    fleet_options_.DeclareOptions(options);
    format_.DeclareOptions(options);
    options.AddFlag("--exit-zero", exit_zero_, "Exit with status 0 even if devices change");
  }

  int Run() override {
    const std::string format = format_.Choose();
    if (old_ == "-" && new_ == "-") throw Failure("OLD and NEW can't both be standard input");
    const DataFile before(old_), after(new_);
    before.Use();
    const host::Contents old_contents = ListContents();
    after.Use();
    const host::Contents new_contents = ListContents();
    auto maps = MapNames(old_contents);
    const auto new_maps = MapNames(new_contents);
    maps.insert(maps.end(), new_maps.begin(), new_maps.end());
    const Fleet fleet = fleet_options_.Choose({new_, old_}).ToFleet(maps);
    std::vector<FleetChains> families;
    const Family* const only = family_ ? &FindFamily(*family_) : nullptr;
    for (const Family& family : Families()) {
      if (only == nullptr || only == &family) families.emplace_back(family, fleet, &maps);
    }

    const auto printer = ChangePrinter::Make(format, old_contents, new_contents, fleet);
    const auto features = IndexFeatures({&old_contents, &new_contents});
    Progress progress("comparing each feature");
    for (std::size_t i = 0; i < features.size(); ++i) {
      progress.Show(i, features.size());
      const auto& [key, kind, feature_maps, places] = features[i];
      std::vector<Results> new_results, old_results;
      const auto collect = [&](const DataFile& data, std::vector<Results>& results) {
        data.Use();
        for (const FleetChains& chains : families) {
          const bool has_lookup = chains.family().Has(kind);
          results.push_back(has_lookup ? chains.Collect(kind, key, &feature_maps) : Results());
        }
      };
      DiscardStdout([&] {
        collect(before, old_results);
        collect(after, new_results);
      });
      std::vector<FamilyChanges> changes;
      for (std::size_t family = 0; family < families.size(); ++family) {
        if (!families[family].family().Has(kind)) continue;
        auto found = FindChanges(families[family], old_results[family], new_results[family]);
        if (!found.empty()) changes.push_back({&families[family].family(), std::move(found)});
      }
      if (!changes.empty()) printer->Add(features[i], changes);
    }
    return printer->Finish() && !exit_zero_ ? kNegative : kSuccess;
  }

 private:
  std::string old_, new_;
  std::optional<std::string> family_;
  FleetOptions fleet_options_;
  FormatOption format_{{{"text", ""},
                        {"json", "Print a JSON array with one object per change and device"},
                        {"markdown", ""}}};
  bool exit_zero_ = false;
};

}  // namespace

std::unique_ptr<Command> MakeDiff() { return std::make_unique<Diff>(); }

}  // namespace cadrova::tools
