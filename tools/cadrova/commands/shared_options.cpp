#include "commands/shared_options.h"

#include <algorithm>
#include <set>
#include <utility>

#include "cadrova/cadrova.h"
#include "common/text.h"
#include "failure.h"
#include "fleet/suggestions.h"
#include "lookup/data_source.h"
#include "output/console.h"

namespace cadrova::tools {
namespace {

using Codes = std::vector<std::string>;

Codes SplitCodes(const std::string& text) {
  constexpr char kBlanks[] = " \t";
  Codes codes;
  std::size_t begin = 0;
  for (std::size_t comma = 0; comma != std::string::npos; begin = comma + 1) {
    comma = text.find(',', begin);
    std::string code = text.substr(begin, comma - begin);
    code.erase(0, code.find_first_not_of(kBlanks));
    code.erase(code.find_last_not_of(kBlanks) + 1);
    if (std::ranges::find(codes, code) == codes.end()) codes.push_back(std::move(code));
  }
  return codes;
}

enum class CodeType { kRegion, kCarrier };

// What is doubtful about `code`, or "". If the fleet file declares such codes, it is not one of
// them. Otherwise, the maps do not use it, but a similar one. `file` may be NULL.
std::string DoubtOf(const std::string& code, CodeType type, const FleetFile* file,
                    const Fleet& used) {
  const bool is_region = type == CodeType::kRegion;
  const Codes* declared = nullptr;
  if (file != nullptr) {
    const auto& codes = is_region ? file->regions : file->carriers;
    if (codes) declared = &*codes;
  }
  const Codes& known = declared != nullptr ? *declared : is_region ? used.regions : used.carriers;
  if (std::ranges::find(known, code) != known.end()) return "";
  const auto similar = std::ranges::find_if(
      known, [&](const std::string& other) { return IsSimilarCode(code, other); });
  if (declared == nullptr && similar == known.end()) return "";
  return (declared != nullptr ? "no device in " + file->path + " has " : "no map uses ") +
         (is_region ? "region " : "carrier ") + DisplayName(code) +
         (similar == known.end() ? "" : DidYouMean(*similar));
}

// Only once: a command may look at several customization files.
void WarnOnce(const std::string& line) {
  static std::set<std::string> warned;
  if (warned.insert(line).second) PrintError("cadrova: " + line);
}

}  // namespace

void DataOption::DeclareOptions(Options& options) {
  options.Add("--data", file_, "FILE",
              "Customization file, - for standard input (default: CADROVA_HOST_DATA)",
              ValueType::kDataFile);
}

std::vector<std::string> DataOption::Apply() const {
  if (file_) {
    DataFile(*file_).Use();
    return {*file_};
  }
  if (auto file = DefaultDataFile()) return {*std::move(file)};
  WarnOfSample();
  return {};
}

void FleetFileOption::DeclareOptions(Options& options) {
  options.Add("--fleet", file_, "FILE", "Fleet file (default: cadrova.toml beside the data)",
              ValueType::kFile);
}

const FleetFile* FleetFileOption::Read(const std::vector<std::string>& data_files) {
  std::optional<std::string> path = file_;
  for (std::size_t i = 0; !path && i < data_files.size(); ++i) path = FindFleetFile(data_files[i]);
  if (!path) return nullptr;
  const auto found = read_.find(*path);
  return found != read_.end() ? &found->second
                              : &read_.emplace(*path, ReadFleetFile(*path)).first->second;
}

void DeviceOptions::DeclareOptions(Options& options) {
  data_.DeclareOptions(options);
  fleet_.DeclareOptions(options);
  options.Add("--region", region_, "CODE", "Region code (default: from the property store)",
              ValueType::kRegion);
  options.Add("--carrier", carrier_, "CODE", "Carrier code (default: from the property store)",
              ValueType::kCarrier);
}

void DeviceOptions::Apply() {
  file_ = fleet_.Read(data_.Apply());
  // SIM items, which are set later, would add the code of this device.
  if (HasFakeCore()) used_codes_ = FleetOf(ListMapNames());
  if (region_) OverrideProperty(kRegionCode, *region_);
  if (carrier_) OverrideProperty(kCarrierCode, *carrier_);
}

void DeviceOptions::WarnOfCodes(const Recording& recording) const {
  // The code of the device, if it is known.
  const auto find = [&](const std::optional<std::string>& given, const char* option,
                        const char* property) -> std::optional<Code> {
    if (given) return Code{option, *given};
    const auto read = std::ranges::find(recording.properties, property,
                                        &std::pair<std::string, std::string>::first);
    if (read == recording.properties.end()) return std::nullopt;
    return Code{property, read->second};
  };
  Warn(find(region_, "--region", kRegionCode), find(carrier_, "--carrier", kCarrierCode));
}

void DeviceOptions::WarnOfDevice(const Device& device) const {
  const auto& [region, carrier] = device;
  const std::string name = ToText(device);
  Warn(Code{name, region}, Code{name, carrier});
}

void DeviceOptions::Warn(const std::optional<Code>& region,
                         const std::optional<Code>& carrier) const {
  if (!HasFakeCore()) return;
  bool is_any_doubtful = false;
  const auto check = [&](CodeType type, const std::optional<Code>& code) {
    const std::string doubt = code ? DoubtOf(code->code, type, file_, used_codes_) : "";
    if (doubt.empty()) return;
    WarnOnce(code->name + ": " + doubt);
    is_any_doubtful = true;
  };
  check(CodeType::kRegion, region);
  check(CodeType::kCarrier, carrier);
  if (!region || !carrier || is_any_doubtful || file_ == nullptr || !file_->devices) return;
  const auto& devices = *file_->devices;
  if (std::ranges::find(devices, Device(region->code, carrier->code)) != devices.end()) return;
  WarnOnce("no device in " + file_->path + " has region " + DisplayName(region->code) +
           " and carrier " + DisplayName(carrier->code));
}

void SimOption::DeclareOptions(Options& options) {
  options.AddRepeatable("--sim", items_, "KEY=VALUE",
                        "SIM item to set in the fake core; repeatable");
}

void SimOption::Apply() const {
  if (!items_.empty() && !HasFakeCore()) {
    throw Failure("--sim needs the fake core; this core may keep the item for other programs");
  }
  for (const std::string& item : items_) {
    const std::size_t equals = item.find('=');
    if (equals == std::string::npos) throw Failure("--sim: '" + item + "' is not KEY=VALUE");
    android::setSimCadrova(item.substr(0, equals), item.substr(equals + 1));
  }
}

void FleetOptions::DeclareOptions(Options& options) {
  file_.DeclareOptions(options);
  options.Add("--regions", regions_, "CODES",
              "Regions, comma-separated (default: all in the fleet file or the data)",
              ValueType::kRegions);
  options.Add("--carriers", carriers_, "CODES",
              "Carriers, comma-separated (default: all in the fleet file or the data)",
              ValueType::kCarriers);
}

FleetChoice FleetOptions::Choose(const std::vector<std::string>& data_files) {
  FleetChoice choice = {file_.Read(data_files), {}, {}};
  if (regions_) choice.regions = SplitCodes(*regions_);
  if (carriers_) choice.carriers = SplitCodes(*carriers_);
  return choice;
}

Fleet FleetChoice::ToFleet(const std::vector<std::string>& map_names) const {
  const Fleet used = FleetOf(map_names);
  const bool has_devices = file != nullptr && file->devices;
  const auto choose = [&](CodeType type, const std::optional<Codes>& given, const char* option) {
    const bool is_region = type == CodeType::kRegion;
    if (!given) {
      const auto* declared = file == nullptr ? nullptr
                             : is_region     ? &file->regions
                                             : &file->carriers;
      if (declared != nullptr && *declared) return **declared;
      return is_region ? used.regions : used.carriers;
    }
    for (const std::string& code : *given) {
      const std::string doubt = DoubtOf(code, type, file, used);
      if (doubt.empty()) continue;
      const std::string line = std::string(option) + ": " + doubt;
      if (has_devices) throw Failure(line);
      WarnOnce(line);
    }
    return *given;
  };
  Fleet codes = {choose(CodeType::kRegion, regions, "--regions"),
                 choose(CodeType::kCarrier, carriers, "--carriers")};
  if (!has_devices) return codes;
  Fleet fleet = SelectDevices(codes, *file->devices);
  if (!fleet.regions.empty()) return fleet;
  throw Failure("no device in " + file->path +
                " has a region of --regions and a carrier of --carriers");
}

void RefuseCombination(const std::vector<std::pair<std::string, bool>>& options) {
  std::vector<std::string> given;
  for (const auto& [name, is_given] : options) {
    if (is_given) given.push_back(name);
  }
  if (given.size() > 1) throw Failure(Join(given, " and ") + " can't be combined");
}

}  // namespace cadrova::tools
