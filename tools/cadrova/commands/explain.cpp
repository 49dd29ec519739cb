// cadrova explain: why the library answers what it answers. It asks the library, listening, and the
// core about each map of the whole chain, and so knows nothing of any family.

#include <algorithm>
#include <memory>
#include <optional>
#include <utility>

#include "commands/commands.h"
#include "commands/options.h"
#include "common/json_text.h"
#include "common/table.h"
#include "file.h"
#include "fleet/suggestions.h"
#include "lookup/data_source.h"
#include "lookup/kind.h"
#include "lookup/recording.h"
#include "output/console.h"
#include "output/json.h"

using namespace cadrova::tools;

namespace {

// A map of the chain, and what it holds under the key.
struct Place {
  std::string map;
  bool is_asked = false;
  bool answers = false;
  std::vector<std::string> kinds;
  std::optional<Value> value;  // where it holds one of the kind that is asked for
};

// Each kind in turn, as `use` gets a value of it.
template <std::size_t... indices>
void ForEachKind(auto use, std::index_sequence<indices...>) {
  (use(std::variant_alternative_t<indices, Value>()), ...);
}

Place Look(const Chain::Map& map, const Question& question) {
  Place place;
  place.map = map.name;
  ForEachKind(
      [&]<class Kind>(const Kind& kind) {
        if (!Holds(TestOf(kind, map.is_sim), map.name, question.key)) return;
        place.kinds.emplace_back(kKindNames[Value(kind).index()]);
        if (const Kind* given = std::get_if<Kind>(&question.default_value)) {
          if constexpr (kIsList<Kind>) {
            place.value = android::cadrova_cpp::KindTraits<Kind>::read(map.name, question.key);
          } else {
            place.value = android::cadrova_cpp::KindTraits<Kind>::read(map.name, question.key, *given);
          }
        }
      },
      std::make_index_sequence<std::variant_size_v<Value>>());
  return place;
}

std::vector<Place> LookAtAll(const Question& question, const Chain& asked) {
  std::vector<Place> places;
  const auto chain = HearWholeChain(question.ask).chain.maps();
  for (const Chain::Map& map : chain) {
    Place& place = places.emplace_back(Look(map, question));
    place.is_asked = places.size() <= asked.maps().size();
    place.answers = places.size() == asked.maps().size() && asked.answered_by() != nullptr;
  }
  return places;
}

std::string Joined(const std::vector<std::string>& names) {
  std::string text;
  for (const std::string& name : names) text += (text.empty() ? "" : ", ") + name;
  return text;
}

std::string Outcome(const Question& question, const Hearing& heard) {
  const std::string value = ToText(heard.value);
  if (const auto* map = heard.chain.answered_by()) return value + ", from " + Named(map->name);
  return value + ", the default: no map holds " + Named(question.key) + " as " + question.kind();
}

std::string HeldKinds(const Place& place, const Question& question) {
  if (place.kinds.empty()) return "-";
  return Joined(place.kinds) + (place.value ? "" : std::string(", not ") + question.kind());
}

std::string Table(const Question& question, const std::vector<Place>& places) {
  std::vector<Row> rows = {{"map         ", "holds  ", "value"}};
  for (const Place& place : places) {
    rows.push_back(
        {Named(place.map), HeldKinds(place, question), place.value ? ToText(*place.value) : ""});
  }
  const auto lines = Aligned(rows);
  std::string table = "  " + lines[0] + '\n';
  for (std::size_t i = 0; i < places.size(); ++i) {
    const std::string& line = lines[i + 1];
    const bool is_other = !places[i].kinds.empty() && !places[i].value;
    table += places[i].answers ? Coloured("> " + line, kGreen)
             : is_other        ? Coloured("  " + line, kYellow)
                               : "  " + line;
    table += '\n';
  }
  return table;
}

// Facts of one sort, one a line.
std::string Facts(std::string sort, const std::vector<std::string>& facts) {
  std::string lines;
  for (const std::string& fact : facts) {
    sort.resize(12, ' ');
    lines += std::exchange(sort, "") + ' ' + cadrova::host::Printable(fact) + '\n';
  }
  return lines;
}

// The first few.
std::vector<std::string> First(std::vector<std::string> facts) {
  constexpr std::size_t kMost = 3;
  if (facts.size() > kMost) {
    const std::string rest = "and " + std::to_string(facts.size() - kMost) + " more";
    facts.resize(kMost);
    facts.push_back(rest);
  }
  return facts;
}

// What only the stand-in core can tell.
std::string FactsOfTheFile(const Question& question, const std::vector<Place>& places) {
  if (!CanList()) return "";
  const auto inventory = List();
  std::vector<std::string> maps(places.size());
  std::ranges::transform(places, maps.begin(), &Place::map);
  return Facts("data", {inventory.file}) +
         Facts("not asked", First(Elsewhere(inventory.items, maps, question.key))) +
         Facts("similar", First(Similar(inventory.items, maps, question.key)));
}

std::string AsText(const Question& question, const Hearing& heard) {
  const auto places = LookAtAll(question, heard.chain);
  std::vector<std::string> properties, lines;
  for (const auto& [name, value] : heard.properties) {
    const std::string text = name + (value.empty() ? " is unset" : " = " + Named(value));
    if (std::ranges::find(properties, text) == properties.end()) properties.push_back(text);
  }
  if (!heard.printed.empty()) lines = {heard.printed.substr(0, heard.printed.size() - 1)};
  return Coloured(Outcome(question, heard), kBold) + "\n\n" + Table(question, places) + '\n' +
         Facts("properties", properties) + Facts("line", lines) + FactsOfTheFile(question, places);
}

Json AsJson(const Question& question, const Hearing& heard) {
  Json json = {{"function", question.function}, {"key", question.key}, {"kind", question.kind()}};
  std::visit(
      [&]<class Kind>(const Kind&) {
        if (!kIsList<Kind>) json["default"] = ToJson(question.default_value);
      },
      question.default_value);
  json["value"] = ToJson(heard.value);
  const auto* map = heard.chain.answered_by();
  json["answered_by"] = map == nullptr ? Json() : Json(map->name);
  json["line"] =
      heard.printed.empty() ? Json() : Json(heard.printed.substr(0, heard.printed.size() - 1));
  json["properties"] = heard.properties;
  json["maps"] = Json::array();
  for (const Place& place : LookAtAll(question, heard.chain)) {
    json["maps"].push_back({{"map", place.map},
                            {"asked", place.is_asked},
                            {"holds", place.kinds},
                            {"value", place.value ? ToJson(*place.value) : Json()}});
  }
  return json;
}

std::string AsSteps(const Hearing& heard) {
  std::string lines;
  for (const std::string& step : heard.steps) lines += step + '\n';
  return lines;
}

}  // namespace

void AddExplain(CLI::App& app) {
  CLI::App& explain = *app.add_subcommand("explain", "Say why a feature has its value");
  const auto arguments = std::make_shared<QuestionArguments>(explain);
  const auto steps = std::make_shared<bool>(false), json = std::make_shared<bool>(false);
  explain.add_flag("--json", *json, "Print one JSON object");
  explain.add_flag("--steps", *steps, "Print what was asked, in order");
  explain.footer("As: cadrova explain sim int calling.ring_seconds --region EU --carrier X1\n");
  explain.callback([=] {
    if (*json && *steps) Fail("--json and --steps exclude each other");
    const Question question = arguments->Take();
    const Hearing heard = Hear(question.ask);
    Print(*steps  ? AsSteps(heard)
          : *json ? ToLine(AsJson(question, heard))
                  : AsText(question, heard));
  });
}
