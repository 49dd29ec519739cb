#include "output/sarif.h"

#include <filesystem>
#include <nlohmann/json.hpp>
#include <system_error>

#include "common/text.h"
#include "utf8.h"

namespace cadrova::tools {
namespace {

using SarifJson = nlohmann::ordered_json;

const char* Level(bool is_error) { return is_error ? "error" : "warning"; }

// `folder` is the working folder.
std::string ToUri(const std::string& file, const std::filesystem::path& folder) {
  if (file == "<stdin>") return PercentEncoded(file);
  const auto path = (folder / file).lexically_normal();
  const auto relative = path.lexically_relative(folder);
  const bool is_below = !relative.empty() && *relative.begin() != "..";
  return is_below ? PercentEncoded(relative) : "file://" + PercentEncoded(path);
}

SarifJson RuleOf(const FindingType& type) {
  return {{"id", type.name},
          {"shortDescription", {{"text", type.description}}},
          {"defaultConfiguration", {{"level", Level(type.is_error)}}}};
}

SarifJson ResultOf(const Finding& finding, const std::filesystem::path& folder) {
  const auto& [line, column] = finding.place;
  SarifJson place = {{"artifactLocation", {{"uri", ToUri(finding.file, folder)}}}};
  if (line != 0) place["region"]["startLine"] = line;
  if (line != 0 && column != 0) place["region"]["startColumn"] = column;
  SarifJson locations = SarifJson::array();
  locations.push_back({{"physicalLocation", place}});
  return {{"ruleId", finding.type->name},
          {"ruleIndex", finding.type - FindingTypes().data()},
          {"level", Level(finding.is_error)},
          {"message", {{"text", finding.message}}},
          {"locations", locations}};
}

}  // namespace

std::string ToSarif(const std::vector<Finding>& findings) {
  std::error_code error;
  const auto folder = std::filesystem::current_path(error);
  SarifJson rules = SarifJson::array(), results = SarifJson::array();
  for (const FindingType& type : FindingTypes()) rules.push_back(RuleOf(type));
  for (const Finding& finding : findings) results.push_back(ResultOf(finding, folder));
  const SarifJson driver = {{"name", "cadrova"}, {"version", CADROVA_VERSION}, {"rules", rules}};
  SarifJson runs = SarifJson::array();
  runs.push_back(
      {{"tool", {{"driver", driver}}}, {"columnKind", "unicodeCodePoints"}, {"results", results}});
  const SarifJson log = {{"$schema", "https://json.schemastore.org/sarif-2.1.0.json"},
                         {"version", "2.1.0"},
                         {"runs", runs}};
  std::string text;
  host::AppendSafe(text, log.dump(1, ' ', false, SarifJson::error_handler_t::replace), "\n");
  return text + '\n';
}

}  // namespace cadrova::tools
