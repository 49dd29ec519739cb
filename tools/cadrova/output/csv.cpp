#include "output/csv.h"

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

}  // namespace

std::string ToCsv(const FleetChains& chains, const Results& results) {
  const auto& [regions, carriers] = chains.fleet();
  std::string lines = "region,carrier,value,map\n";
  for (std::size_t region = 0; region < regions.size(); ++region) {
    for (std::size_t carrier = 0; carrier < carriers.size(); ++carrier) {
      const Result& result = results.Get(chains.Get(region, carrier));
      lines += Quoted(regions[region]) + ',' + Quoted(carriers[carrier]) + ',' +
               ValueField(result.value) + ',' + (result.map ? Quoted(*result.map) : "") + '\n';
    }
  }
  return lines;
}

}  // namespace cadrova::tools
