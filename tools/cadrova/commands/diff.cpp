#include <iterator>

#include "commands/command.h"
#include "commands/shared_options.h"
#include "common/text.h"
#include "fleet/changes.h"
#include "lookup/data_source.h"
#include "output/console.h"
#include "output/json.h"
#include "output/progress.h"
#include "output/text.h"

namespace cadrova::tools {
namespace {

// The results of one family with both files.
struct ComparedFamily {
  FleetChains chains;
  std::vector<std::optional<Results>> before, after;  // by feature
};

class Diff : public Command {
 public:
  void DeclareOptions(Options& options) override {
    options.AddRequired("OLD", old_, "Customization file before the change");
    options.AddRequired("NEW", new_, "Customization file after the change");
    options.Add("--family", family_, "FAMILY",
                "Family to compare (default: carrier-region and sim)");
    fleet_.DeclareOptions(options);
    options.AddFlag("--json", json_, "Print a JSON array with one object per change and device");
  }

  int Run() override {
    const DataFile before(old_), after(new_);
    before.Load();
    auto contents = ListContents();
    after.Load();
    auto new_contents = ListContents();
    std::ranges::move(new_contents.maps, std::back_inserter(contents.maps));
    std::ranges::move(new_contents.items, std::back_inserter(contents.items));
    const Fleet fleet = fleet_.ToFleet(MapNames(contents));
    const auto features = IndexFeatures(contents);

    std::vector<ComparedFamily> families;
    const Family* const only = family_ ? &FindFamily(*family_) : nullptr;
    for (const Family& family : Families()) {
      if (only == nullptr ? family.is_compared : only == &family) {
        families.push_back({FleetChains(family, fleet), {}, {}});
      }
    }
    for (auto& family : families) family.after = CollectAll(family.chains, features);
    before.Load();
    for (auto& family : families) family.before = CollectAll(family.chains, features);
    return json_ ? PrintAsJson(families, features) : PrintAsText(families, features, fleet);
  }

 private:
  // Calls `use` with each feature that changes, each family and its changes. Returns the exit
  // status.
  static int ForEachChange(const std::vector<ComparedFamily>& families,
                           const std::vector<Feature>& features, auto use) {
    Progress progress("comparing");
    int status = kSuccess;
    for (std::size_t i = 0; i < features.size(); ++i) {
      progress.Show(i, features.size());
      for (const auto& [chains, before, after] : families) {
        const auto &results_before = before[i], &results_after = after[i];
        if (!results_before || !results_after) continue;
        const auto changes = FindChanges(chains, *results_before, *results_after);
        if (changes.empty()) continue;
        use(features[i], chains, changes);
        status = kNegative;
      }
    }
    return status;
  }

  static int PrintAsJson(const std::vector<ComparedFamily>& families,
                         const std::vector<Feature>& features) {
    JsonArrayPrinter array;
    const int status = ForEachChange(
        families, features, [&](const auto& feature, const auto& chains, const auto& changes) {
          for (const Change& change : changes) AddChange(array, feature, chains, change);
        });
    array.Finish();
    return status;
  }

  // Families with the same changes of a feature share one paragraph.
  static int PrintAsText(const std::vector<ComparedFamily>& families,
                         const std::vector<Feature>& features, const Fleet& fleet) {
    std::string heading, text;
    const Feature* last = nullptr;
    const auto flush = [&] {
      if (last != nullptr) Print(Colored(heading, kBold) + '\n' + text);
    };
    const int status = ForEachChange(
        families, features, [&](const auto& feature, const auto& chains, const auto& changes) {
          std::string next = ToText(changes, fleet);
          if (last == &feature && next == text) {
            heading += std::string(" and ") + chains.family().name;
            return;
          }
          flush();
          heading = std::string(ToString(feature.kind)) + ' ' + DisplayName(feature.key) + " by " +
                    chains.family().name;
          text = std::move(next);
          last = &feature;
        });
    flush();
    return status;
  }

  std::string old_, new_;
  std::optional<std::string> family_;
  FleetOptions fleet_;
  bool json_ = false;
};

}  // namespace

std::unique_ptr<Command> MakeDiff() { return std::make_unique<Diff>(); }

}  // namespace cadrova::tools
