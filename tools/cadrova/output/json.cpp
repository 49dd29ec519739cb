#include "output/json.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <nlohmann/json.hpp>
#include <utility>

#include "failure.h"
#include "file.h"
#include "lookup/data_source.h"
#include "output/console.h"
#include "utf8.h"

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

// The name of a file need not be UTF-8.
std::string ToUtf8(std::string_view text) {
  std::string utf8;
  while (!text.empty()) {
    const std::size_t size = host::CharacterSize(text);
    utf8 += size == 0 ? "\uFFFD" : text.substr(0, size);
    text.remove_prefix(std::max<std::size_t>(size, 1));
  }
  return utf8;
}

// What is not known is null.
void AddPlace(Json& json, const std::optional<std::string>& file, const host::Place& place) {
  json["file"] = file ? Json(ToUtf8(*file)) : Json();
  json["line"] = place.line == 0 ? Json() : Json(place.line);
  json["column"] = place.column == 0 ? Json() : Json(place.column);
}

// The result, and the place of the item that it comes from.
void AddResult(Json& json, const host::Contents& contents, const Result& result,
               const std::string& key) {
  json["value"] = FromValue(result.value);
  json["map"] = FromOptional(result.map);
  const auto place = result.map ? PlaceOf(contents, *result.map, key) : host::Place();
  AddPlace(json, contents.file, place);
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
  const auto& [query, recording, chain, file, warnings] = explanation;
  Json json = {{"function", query.family->FunctionName(query.kind)},
               {"family", query.family->name},
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
    Json map = {{"map", entry.map},
                {"asked", entry.is_consulted},
                {"holds", kinds},
                {"value", entry.value ? FromValue(*entry.value) : Json()},
                {"exists", file ? Json(entry.exists) : Json()}};
    AddPlace(map, file, entry.place);
    json["maps"].push_back(std::move(map));
  }
  json["warnings"] = warnings;
  return ToLine(json);
}

std::string ToJson(const Feature& feature, const std::string& file) {
  const auto& [key, kind, maps, places] = feature;
  Json json = {{"key", key}, {"kind", ToString(kind)}, {"maps", maps}};
  Json& json_places = json["places"] = Json::array();
  for (std::size_t i = 0; i < maps.size(); ++i) {
    Json place;
    place["map"] = maps[i];
    AddPlace(place, file, places[i]);
    json_places.push_back(std::move(place));
  }
  return ToLine(json);
}

std::string ToJson(const Feature& feature, const DeviceResults& results,
                   const std::vector<Device>& devices, const host::Contents& contents) {
  Json json = {
      {"family", results.family->name}, {"key", feature.key}, {"kind", ToString(feature.kind)}};
  if (devices.size() == 1) {
    AddResult(json, contents, results.by_device[0].result, feature.key);
    return ToLine(json);
  }
  for (std::size_t i = 0; i < devices.size(); ++i) {
    const auto& [region, carrier] = devices[i];
    Json result = {{"region", region}, {"carrier", carrier}};
    AddResult(result, contents, results.by_device[i].result, feature.key);
    json["devices"].push_back(std::move(result));
  }
  return ToLine(json);
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
    Json json;
    AddResult(json, contents, result, feature.key);
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
               {"message", ToUtf8(finding.message)}};
  AddPlace(json, finding.file, finding.place);
  return ToLine(json);
}

}  // namespace cadrova::tools
