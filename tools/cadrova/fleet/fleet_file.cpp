#include "fleet/fleet_file.h"

#include <algorithm>
#include <filesystem>
#include <set>
#include <utility>
#include <variant>

#include "common/text.h"
#include "core/for_command.h"
#include "failure.h"
#include "fleet/findings.h"
#include "fleet/suggestions.h"
#include "lookup/data_source.h"

namespace cadrova::tools {
namespace {

using host::TomlNode;
using Names = std::vector<std::string>;

constexpr char kName[] = "cadrova.toml";

// Of equal elements, only the first remains.
template <class Element>
std::vector<Element> Unique(std::vector<Element> list) {
  std::set<Element> seen;
  std::erase_if(list, [&](const Element& element) { return !seen.insert(element).second; });
  return list;
}

class Reader {
 public:
  explicit Reader(const std::string& path) { file_.path = path; }

  FleetFile Read(const TomlNode& document) {
    host::Place devices;
    for (const auto& [name, node] :
         Members(document, "", {"regions", "carriers", "devices", "check"})) {
      if (name == "regions") file_.regions = Codes(node, name);
      if (name == "carriers") file_.carriers = Codes(node, name);
      if (name == "devices") {
        file_.devices = Devices(node);
        devices = node.place;
      }
      if (name == "check") ReadCheck(node);
    }
    if (!file_.devices) return std::move(file_);
    if (file_.regions || file_.carriers) {
      Refuse(devices, "devices gives all regions and carriers; remove regions and carriers");
    }
    Names regions, carriers;
    for (const auto& [region, carrier] : *file_.devices) {
      regions.push_back(region);
      carriers.push_back(carrier);
    }
    file_.regions = Unique(std::move(regions));
    file_.carriers = Unique(std::move(carriers));
    return std::move(file_);
  }

 private:
  [[noreturn]] void Refuse(host::Place place, const std::string& reason) const {
    throw Failure(host::Error{file_.path, place, reason, {}});
  }

  [[noreturn]] void RefuseName(host::Place place, const std::string& what, const std::string& name,
                               const Names& names) const {
    const auto suggestions = Suggest(name, names);
    Refuse(place, "unknown " + what + ' ' + DisplayName(name) +
                      (suggestions.empty() ? "; use one of: " + Join(names)
                                           : "; did you mean " + suggestions[0].name + '?'));
  }

  // The content of the node, which must be a `Type`.
  template <class Type>
  const Type& Get(const TomlNode& node, const std::string& name, const std::string& wanted) const {
    if (const auto* content = std::get_if<Type>(&node.value)) return *content;
    Refuse(node.place, name + " must be " + wanted);
  }

  // The members of a table, all of which must have one of these names.
  const TomlNode::Table& Members(const TomlNode& node, const std::string& name,
                                 const Names& names) const {
    const auto& table = Get<TomlNode::Table>(node, name, "a table of " + Join(names));
    for (const auto& [member, value] : table) {
      if (std::ranges::find(names, member) == names.end()) {
        RefuseName(value.place, "key", member, names);
      }
    }
    return table;
  }

  // The elements of an array.
  const TomlNode::Array& Elements(const TomlNode& node, const std::string& name,
                                  const std::string& wanted) const {
    return Get<TomlNode::Array>(node, name, "an array of " + wanted);
  }

  Names Codes(const TomlNode& node, const std::string& name) const {
    Names codes;
    for (const TomlNode& code : Elements(node, name, "strings")) {
      codes.push_back(Get<std::string>(code, "a code in " + name, "a string"));
    }
    if (codes.empty()) {
      Refuse(node.place, name + " is empty; remove it, or write \"\" for the unset code");
    }
    return Unique(std::move(codes));
  }

  std::vector<Device> Devices(const TomlNode& node) const {
    constexpr char kPair[] = "a pair [\"region\", \"carrier\"]";
    std::vector<Device> devices;
    for (const TomlNode& device : Elements(node, "devices", "pairs [\"region\", \"carrier\"]")) {
      const auto& pair = Get<TomlNode::Array>(device, "a device", kPair);
      if (pair.size() != 2) Refuse(device.place, std::string("a device must be ") + kPair);
      devices.emplace_back(Get<std::string>(pair[0], "a region", "a string"),
                           Get<std::string>(pair[1], "a carrier", "a string"));
    }
    if (devices.empty()) Refuse(node.place, "devices is empty; remove it, or add pairs");
    return Unique(std::move(devices));
  }

  void ReadCheck(const TomlNode& check) {
    for (const auto& [name, node] : Members(check, "check", {"strict", "disable", "allow"})) {
      if (name == "strict") file_.is_strict = Get<bool>(node, name, "true or false");
      if (name == "disable") {
        for (const TomlNode& finding : Elements(node, name, "names of findings")) {
          file_.disabled.push_back({FindingName(finding, "disabled"), finding.place});
        }
      }
      if (name == "allow") {
        for (const TomlNode& allowance : Elements(node, name, "tables of finding, map, key")) {
          file_.allowed.push_back(ReadAllowance(allowance));
        }
      }
    }
  }

  FleetFile::Allowance ReadAllowance(const TomlNode& node) const {
    FleetFile::Allowance allowance;
    allowance.place = node.place;
    for (const auto& [name, value] :
         Members(node, "an element of allow", {"finding", "map", "key"})) {
      if (name == "finding") {
        allowance.finding = FindingName(value, "allowed");
      } else {
        (name == "map" ? allowance.map : allowance.key) =
            Get<std::string>(value, name, "a string, which is a shell pattern");
      }
    }
    if (allowance.finding.empty()) {
      Refuse(node.place, "finding is missing; write { finding = \"…\", map = \"…\", key = \"…\" }");
    }
    return allowance;
  }

  std::string FindingName(const TomlNode& node, const std::string& done) const {
    const auto& name = Get<std::string>(node, "finding", "a string, the name of a finding");
    if (name == "syntax" || name == "value") {
      Refuse(node.place, name + " can't be " + done + ": a file with such an error can't be used");
    }
    Names names;
    for (const FindingType& type : FindingTypes()) names.emplace_back(type.name);
    if (std::ranges::find(names, name) == names.end()) {
      RefuseName(node.place, "finding", name, names);
    }
    return name;
  }

  FleetFile file_;
};

}  // namespace

FleetFile ReadFleetFile(const std::string& path) {
  return Reader(path).Read(ReadToml(path, "fleet file"));
}

std::optional<std::string> FindFleetFile(const std::string& data_file) {
  const std::filesystem::path data(data_file), path = data.parent_path() / kName;
  if (data_file == "-" || data.filename() == kName) return std::nullopt;
  // A file that is there but can't be examined or read is an error when it is read.
  std::error_code error;
  const auto type = std::filesystem::symlink_status(path, error).type();
  if (type == std::filesystem::file_type::not_found) return std::nullopt;
  return path.string();
}

}  // namespace cadrova::tools
