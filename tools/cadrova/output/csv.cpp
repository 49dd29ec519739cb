#include "output/csv.h"

#include <algorithm>
#include <unordered_map>

#include "common/json_text.h"

namespace cadrova::tools {
namespace {

std::string Quoted(const std::string& text) {
  std::string quoted = "\"";
  for (const char byte : text) quoted += byte == '"' ? "\"\"" : std::string(1, byte);
  return quoted + '"';
}

std::string ValueField(const Value& value) {
  if (const auto* string = std::get_if<std::string>(&value)) return Quoted(*string);
  const std::string text = ToJsonText(value);
  return text[0] == '[' ? Quoted(text) : text;
}

std::string Ending(const Result& result) {
  return ',' + ValueField(result.value) + ',' + (result.map ? Quoted(*result.map) : "") + '\n';
}

}  // namespace

std::string ToCsv(const FleetChains& chains, const Results& results) {
  const Fleet& fleet = chains.fleet();
  std::unordered_map<const Result*, std::string> endings;  // of the lines of all devices
  std::vector<std::string> carriers(fleet.carriers.size());
  std::ranges::transform(fleet.carriers, carriers.begin(), Quoted);
  std::string lines = "region,carrier,value,map\n";
  for (std::size_t region = 0; region < fleet.regions.size(); ++region) {
    const std::string begin = Quoted(fleet.regions[region]) + ',';
    for (std::size_t carrier = 0; carrier < carriers.size(); ++carrier) {
      if (!fleet.Has(region, carrier)) continue;
      const Result& result = results.Get(chains.Get(region, carrier));
      std::string& ending = endings[&result];
      if (ending.empty()) ending = Ending(result);
      lines.append(begin).append(carriers[carrier]).append(ending);
    }
  }
  return lines;
}

}  // namespace cadrova::tools
