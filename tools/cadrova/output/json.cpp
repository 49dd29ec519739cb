#include "output/json.h"

#include <cmath>
#include <cstdint>
#include <nlohmann/json.hpp>
#include <utility>

#include "failure.h"
#include "file.h"
#include "lookup/data_source.h"
#include "output/console.h"

namespace cadrova::tools {
namespace {

// With 32-bit floats, numbers have as few digits as in plain text. Members are in the order of the
// source.
using Json = nlohmann::basic_json<nlohmann::ordered_map, std::vector, std::string, bool,
                                  std::int64_t, std::uint64_t, float>;

Json FromValue(const Value& value) {
  const auto* number = std::get_if<float>(&value);
  if (number != nullptr && std::isnan(*number)) return "nan";
  if (number != nullptr && std::isinf(*number)) return *number < 0 ? "-inf" : "inf";
  return std::visit([](const auto& contents) { return Json(contents); }, value);
}

Json FromOptional(const auto& optional) { return optional ? Json(*optional) : Json(); }

Json FromResult(const Result& result) {
  return {{"value", FromValue(result.value)}, {"map", FromOptional(result.map)}};
}

// A line or column that is not known is null.
void AddPlace(Json& json, const std::string& file, const host::Place& place) {
  json["file"] = file;
  json["line"] = place.line == 0 ? Json() : Json(place.line);
  json["column"] = place.column == 0 ? Json() : Json(place.column);
}

std::string ToLine(const Json& json) {
  try {
    return host::Printable(json.dump());
  } catch (const Json::exception&) {
    throw Failure("JSON can't contain text that is not UTF-8; use --format text");
  }
}

}  // namespace

std::string ToJson(const Value& value) { return ToLine(FromValue(value)); }

std::string ToJson(const Explanation& explanation) {
  const auto& [query, recording, chain, warnings] = explanation;
  Json json = {{"function", query.family->FunctionName(query.kind)},
               {"key", query.key},
               {"kind", ToString(query.kind)}};
  if (query.kind <= Kind::kString) json["default"] = FromValue(query.default_value);
  json["value"] = FromValue(recording.value);
  const ChainEntry* const source = explanation.source();
  json["answered_by"] = source == nullptr ? Json() : Json(source->map);
  json["line"] = recording.printed.empty() ? Json() : Json(recording.PrintedLine());
  json["properties"] = recording.properties;
  json["maps"] = Json::array();
  for (const ChainEntry& entry : chain) {
    Json kinds = Json::array();
    for (const Kind kind : entry.kinds) kinds.push_back(ToString(kind));
    json["maps"].push_back({{"map", entry.map},
                            {"asked", entry.is_consulted},
                            {"holds", kinds},
                            {"value", entry.value ? FromValue(*entry.value) : Json()}});
  }
  json["warnings"] = warnings;
  return ToLine(json);
}

std::string ToJson(const Feature& feature) {
  const auto& [key, kind, maps] = feature;
  return ToLine({{"key", key}, {"kind", ToString(kind)}, {"maps", maps}});
}

void JsonArrayPrinter::Add(const std::string& json) {
  constexpr std::size_t kBufferSize = 1U << 16U;
  text_ += (std::exchange(is_empty_, false) ? "\n" : ",\n") + json;
  if (text_.size() <= kBufferSize) return;
  Print(text_);
  text_.clear();
}

void JsonArrayPrinter::Finish() { Print(text_ + (is_empty_ ? "]\n" : "\n]\n")); }

void PrintJson(const FleetChains& chains, const Results& results) {
  const auto& [regions, carriers, has_device] = chains.fleet();
  JsonArrayPrinter array;
  for (std::size_t region = 0; region < regions.size(); ++region) {
    for (std::size_t carrier = 0; carrier < carriers.size(); ++carrier) {
      if (!chains.fleet().Has(region, carrier)) continue;
      const Result& result = results.Get(chains.Get(region, carrier));
      array.Add(ToLine({{"region", regions[region]},
                        {"carrier", carriers[carrier]},
                        {"value", FromValue(result.value)},
                        {"map", FromOptional(result.map)}}));
    }
  }
  array.Finish();
}

void AddChange(JsonArrayPrinter& array, const ChangeContext& context, const Change& change) {
  const auto& [feature, family, fleet, before, after] = context;
  const auto from_result = [&](const host::Contents& contents, const Result& result) {
    Json json = FromResult(result);
    const auto place = result.map ? PlaceOf(contents, *result.map, feature.key) : host::Place();
    AddPlace(json, contents.file, place);
    return json;
  };
  for (const auto& [region, carrier] : change.devices) {
    array.Add(ToLine({{"family", family.name},
                      {"kind", ToString(feature.kind)},
                      {"key", feature.key},
                      {"region", fleet.regions[region]},
                      {"carrier", fleet.carriers[carrier]},
                      {"old", from_result(before, *change.before)},
                      {"new", from_result(after, *change.after)}}));
  }
}

std::string ToJson(const Finding& finding) {
  Json json = {{"finding", finding.type->name},
               {"level", finding.is_error ? "error" : "warning"},
               {"message", finding.message}};
  AddPlace(json, finding.file, finding.place);
  // The name of the file need not be UTF-8.
  return host::Printable(json.dump(-1, ' ', false, Json::error_handler_t::replace));
}

}  // namespace cadrova::tools
