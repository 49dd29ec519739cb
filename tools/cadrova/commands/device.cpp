#include <algorithm>
#include <utility>

#include "commands/command.h"
#include "commands/format_option.h"
#include "commands/shared_options.h"
#include "common/text.h"
#include "failure.h"
#include "fleet/device_results.h"
#include "fleet/feature_index.h"
#include "fleet/key_pattern.h"
#include "lookup/data_source.h"
#include "output/capture.h"
#include "output/console.h"
#include "output/device_text.h"
#include "output/json.h"

namespace cadrova::tools {
namespace {

class DeviceCommand : public Command {
 public:
  void DeclareOptions(Options& options) override {
    options.AddRemaining("REGION/CARRIER", words_,
                         "One or two devices, and perhaps a pattern for keys, as for list",
                         Options::Need::kOptional, ValueType::kDeviceOrKey);
    device_.DeclareOptions(options);
    options.Add("--family", family_, "FAMILY", "Only this family (default: carrier-region and sim)",
                ValueType::kFamily);
    format_.DeclareOptions(options);
  }

  int Run() override {
    const std::string format = format_.Choose();
    ReadArguments();
    const auto families = ChosenFamilies();
    device_.Apply();
    const auto contents = ListContents();
    for (const Device& device : devices_) device_.WarnOfDevice(device);
    if (devices_.empty()) devices_.push_back(CurrentDevice());
    const KeyPattern pattern(pattern_.value_or(""));
    auto features = IndexFeatures({&contents});
    std::erase_if(features, [&](const Feature& feature) { return !pattern.Matches(feature.key); });
    const auto found = LookUp(families, features, MapNames(contents));
    if (format == "json") {
      JsonArrayPrinter array;
      for (const auto& [feature, all_results, family_count] : found) {
        for (const DeviceResults& results : all_results) {
          array.Add(ToJson(*feature, results, devices_, contents));
        }
      }
      array.Finish();
    } else {
      Print(ToText(found, devices_, contents));
    }
    if (features.empty()) {
      PrintError("cadrova: no key " + pattern.WithSuggestion(Keys(contents)));
      return kNegative;
    }
    return devices_.size() == 2 && !found.empty() ? kNegative : kSuccess;
  }

 private:
  // An argument with a slash is a device.
  void ReadArguments() {
    for (const std::string& word : words_) {
      const std::size_t slash = word.find('/');
      if (slash == std::string::npos) {
        if (pattern_) throw Failure("'" + word + "' is not REGION/CARRIER, and a second pattern");
        pattern_ = word;
      } else if (word.find('/', slash + 1) != std::string::npos) {
        throw Failure("'" + word + "' has more than one slash; use --region and --carrier");
      } else {
        devices_.emplace_back(word.substr(0, slash), word.substr(slash + 1));
      }
    }
    if (devices_.size() > 2) throw Failure("give at most two devices");
    if (!devices_.empty() && device_.has_codes()) {
      throw Failure("--region and --carrier can't be combined with REGION/CARRIER");
    }
  }

  std::vector<const Family*> ChosenFamilies() const {
    if (family_) return {&FindFamily(*family_)};
    std::vector<const Family*> families;
    for (const Family& family : Families()) {
      if (family.is_reported) families.push_back(&family);
    }
    return families;
  }

  // That of the options and the property store.
  Device CurrentDevice() const {
    const Recording recording = Record(MakeQuery(FindFamily("carrier-region"), Kind::kInt, ""));
    device_.WarnOfCodes(recording);
    Device device;
    for (const auto& [property, code] : recording.properties) {
      (property == kRegionCode ? device.first : device.second) = code;
    }
    return device;
  }

  // Of two devices, only the features that differ.
  std::vector<FeatureResults> LookUp(const std::vector<const Family*>& families,
                                     const std::vector<Feature>& features,
                                     const std::vector<std::string>& maps) const {
    std::vector<FeatureResults> found;
    DiscardStdout([&] {
      const DeviceLookups lookups(families, devices_, maps);
      for (const Feature& feature : features) {
        auto results = lookups.LookUp(feature);
        if (!results.results.empty()) found.push_back(std::move(results));
      }
    });
    return found;
  }

  std::vector<std::string> words_;
  std::optional<std::string> family_, pattern_;
  std::vector<Device> devices_;
  DeviceOptions device_;
  FormatOption format_{{{"text", ""}, {"json", "Print a JSON array with one object per feature"}}};
};

}  // namespace

std::unique_ptr<Command> MakeDevice() { return std::make_unique<DeviceCommand>(); }

}  // namespace cadrova::tools
