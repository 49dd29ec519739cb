// cadrova: asks the library one question and prints its answer.

#include "cadrova/cadrova.h"

#include <unistd.h>

#include <CLI/CLI.hpp>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <tuple>
#include <utility>
#include <variant>
#include <vector>

#include "cadrova/host.h"
#include "property_overrides.h"

// There where the core is the stand-in one, which reads a file.
namespace cadrova::host {
[[gnu::weak]] std::optional<Mistake> AnswerFromFile(const std::string& path);
}

namespace {

using StringArray = std::vector<std::string>;
using IntArray = std::vector<int>;
using MapArray = std::vector<std::pair<std::string, std::string>>;
using Value = std::variant<bool, int, float, std::string, StringArray, IntArray, MapArray>;

[[noreturn]] void Stop(const std::string& line) {
  std::fprintf(stderr, "%s\n", line.c_str());
  std::exit(2);
}

[[noreturn]] void Fail(const std::string& message) { Stop("cadrova: " + message); }

// A kind is known by the value that stands in where no default is given.
const std::vector<std::pair<std::string, Value>> kKinds = {
    {"bool", false},
    {"int", 0},
    {"float", 0.0F},
    {"string", std::string()},
    {"string-array", StringArray()},
    {"int-array", IntArray()},
    {"map-array", MapArray()},
};

template <class T>
using ScalarLookup = T (*)(std::string key, T default_value);
template <class T>
using ListLookup = T (*)(std::string key);

struct Family {
  std::string name;
  std::tuple<ScalarLookup<bool>, ScalarLookup<int>, ScalarLookup<float>, ScalarLookup<std::string>,
             ListLookup<StringArray>, ListLookup<IntArray>, ListLookup<MapArray>>
      lookups;
};

const std::vector<Family> kFamilies = {
    {"default",
     {android::getCustBooleanFeature, android::getCustIntFeature, android::getCustFloatFeature,
      android::getCustStringFeature, android::getCustStringArrayFeature,
      android::getCustIntArrayFeature, android::getCustMapArrayFeature}},
    {"region",
     {android::getRegionCustBooleanFeature, android::getRegionCustIntFeature,
      android::getRegionCustFloatFeature, android::getRegionCustStringFeature,
      android::getRegionCustStringArrayFeature, android::getRegionCustIntArrayFeature,
      android::getRegionCustMapArrayFeature}},
    {"carrier",
     {android::getCotaCustBooleanFeature, android::getCotaCustIntFeature,
      android::getCotaCustFloatFeature, android::getCotaCustStringFeature,
      android::getCotaCustStringArrayFeature, android::getCotaCustIntArrayFeature,
      android::getCotaCustMapArrayFeature}},
    {"carrier-region",
     {android::getCotaRegionCustBooleanFeature, android::getCotaRegionCustIntFeature,
      android::getCotaRegionCustFloatFeature, android::getCotaRegionCustStringFeature,
      android::getCotaRegionCustStringArrayFeature, android::getCotaRegionCustIntArrayFeature,
      android::getCotaRegionCustMapArrayFeature}},
    {"sim",
     {android::getSimCustBooleanFeature, android::getSimCustIntFeature, nullptr,
      [](std::string key, std::string) { return android::getSimCustStringFeature(key); },
      android::getSimCustStringArrayFeature, android::getSimCustIntArrayFeature,
      android::getSimCustMapArrayFeature}},
};

// Whether the family leaves out a kind, or a kind's default, and why.
void RefuseWhatTheFamilyLacks(const Family& family, const Value& zero, bool has_default) {
  if (family.name != "sim") return;
  if (std::holds_alternative<float>(zero)) {
    Fail("the sim family has no float: SIM data holds none; ask carrier-region");
  }
  if (std::holds_alternative<std::string>(zero) && has_default) {
    Fail("the sim family takes no default for a string: a missing one is empty");
  }
}

template <class T>
constexpr bool kIsList = !std::is_arithmetic_v<T> && !std::is_same_v<T, std::string>;

// Names are listed in the order of their table.
template <class Table>
auto FindByName(const Table& table, const std::string& what, const std::string& name) {
  std::string names;
  for (auto entry = table.begin(); entry != table.end(); ++entry) {
    const auto& [entry_name, content] = *entry;
    if (entry_name == name) return entry;
    names += (names.empty() ? "" : ", ") + entry_name;
  }
  Fail("'" + name + "' is no " + what + "; use one of: " + names);
}

// `text` as a default of the kind of `zero`.
Value ParseDefault(const std::string& text, const Value& zero) {
  const auto refuse = [&](const std::string& why) { Fail("default '" + text + "' " + why); };
  const char* const end = text.data() + text.size();
  if (std::holds_alternative<bool>(zero)) {
    if (text != "true" && text != "false") refuse("is no bool; use true or false");
    return text == "true";
  }
  if (std::holds_alternative<int>(zero)) {
    int value = 0;
    const auto [rest, error] = std::from_chars(text.data(), end, value);
    if (error == std::errc::result_out_of_range) refuse("is out of the range of a 32-bit int");
    if (error != std::errc() || rest != end) refuse("is no int; use decimal digits");
    return value;
  }
  if (std::holds_alternative<float>(zero)) {
    char* rest = nullptr;
    const float value = std::strtof(text.c_str(), &rest);
    const bool starts_well = !text.empty() && !std::isspace(static_cast<unsigned char>(text[0]));
    if (!starts_well || rest != end) refuse("is no float; write it like 0.5 or 1e3");
    if (std::isinf(value) && text.find_first_of("iI") == std::string::npos) {
      refuse("is out of the range of a 32-bit float");
    }
    return value;
  }
  if (std::holds_alternative<std::string>(zero)) return text;
  refuse("is refused: list kinds have none, a missing list is empty");
  return zero;
}

// Standard output belongs to the value, so what the library prints goes to standard error.
template <class Question>
auto WithDiagnosticsOnStandardError(Question question) {
  const int standard_output = dup(STDOUT_FILENO);
  dup2(STDERR_FILENO, STDOUT_FILENO);
  auto answer = question();
  std::fflush(stdout);
  dup2(standard_output, STDOUT_FILENO);
  close(standard_output);
  return answer;
}

Value Ask(const Family& family, const std::string& key, const Value& default_value) {
  return std::visit(
      [&]<class T>(const T& given) -> Value {
        if constexpr (kIsList<T>) {
          return std::get<ListLookup<T>>(family.lookups)(key);
        } else {
          return std::get<ScalarLookup<T>>(family.lookups)(key, given);
        }
      },
      default_value);
}

std::string ToText(bool value) { return value ? "true" : "false"; }
std::string ToText(const std::string& value) { return value; }
std::string ToText(const std::pair<std::string, std::string>& value) {
  return value.first + '=' + value.second;
}
// Decimal; a float in the shortest form that reads back to the same float.
template <class Number>
  requires std::is_arithmetic_v<Number>
std::string ToText(Number value) {
  char buffer[32];
  return {buffer, std::to_chars(buffer, std::end(buffer), value).ptr};
}

// A list has one element a line.
std::string ToLines(const Value& value) {
  return std::visit(
      []<class T>(const T& answer) {
        if constexpr (kIsList<T>) {
          std::string lines;
          for (const auto& element : answer) lines += ToText(element) + '\n';
          return lines;
        } else {
          return ToText(answer) + '\n';
        }
      },
      value);
}

std::string ToJson(const Value& value) {
  // Floats stay 32 bits wide, and so as short as in plain text.
  using Json = nlohmann::basic_json<std::map, std::vector, std::string, bool, std::int64_t,
                                    std::uint64_t, float>;
  const auto* number = std::get_if<float>(&value);
  if (number != nullptr && !std::isfinite(*number)) Fail("JSON has no " + ToText(*number));
  try {
    return std::visit([](const auto& answer) { return Json(answer).dump(); }, value) + '\n';
  } catch (const Json::exception&) {
    Fail("the value is not UTF-8, which JSON can't carry; ask without --json");
  }
}

}  // namespace

int main(int argc, char** argv) {
  CLI::App app("Asks how this device unit is customized.", "cadrova");
  app.require_subcommand(1);
  app.set_version_flag("--version", CADROVA_VERSION);
  CLI::App& get = *app.add_subcommand("get", "Print the value of one feature");
  std::string family_name;
  std::string kind_name;
  std::string key;
  std::string default_text;
  std::string data;
  std::string region;
  std::string carrier;
  std::vector<std::string> sim_items;
  bool json = false;
  get.add_option("FAMILY", family_name,
                 "Which maps to ask: default, region, carrier, carrier-region or sim")
      ->required()
      ->type_name("");
  get.add_option("KIND", kind_name,
                 "bool, int, float, string, string-array, int-array or map-array")
      ->required()
      ->type_name("");
  get.add_option("KEY", key, "The feature key")->required()->type_name("");
  const CLI::Option* default_option =
      get.add_option("DEFAULT", default_text, "For a missing item; left out: false, 0, 0 or empty")
          ->type_name("");
  const CLI::Option* data_option =
      get.add_option("--data", data, "The customization file of the stand-in core")
          ->type_name("FILE");
  const CLI::Option* region_option =
      get.add_option("--region", region, "The region code; left out, what the property store holds")
          ->type_name("CODE");
  const CLI::Option* carrier_option =
      get.add_option("--carrier", carrier,
                     "The carrier code; left out, what the property store holds")
          ->type_name("CODE");
  get.add_option("--sim", sim_items, "Handed over for the SIM first; may be repeated")
      ->type_name("KEY=VALUE")
      ->expected(1)
      ->allow_extra_args(false)  // What follows is not for the SIM.
      ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
  get.add_flag("--json", json, "Print the value as one JSON value");
  get.footer("As: cadrova get carrier-region int calling.ring_seconds --region EU --carrier X1\n");
  get.allow_extras();
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    if (error.get_exit_code() == 0) return app.exit(error);
    Fail(std::string(error.what()) + "; see cadrova get --help");
  }

  // A default such as -0.5 or -inf looks like an option to the parser, but we have none of one
  // dash; behind -- it may be anything.
  std::vector<std::string> extras = get.remaining();
  const bool options_ended = std::erase(extras, "--") != 0;
  bool has_default = static_cast<bool>(*default_option);
  if (!has_default && !extras.empty() && (options_ended || !extras[0].starts_with("--"))) {
    default_text = extras[0];
    has_default = true;
    extras.erase(extras.begin());
  }
  if (!extras.empty()) Fail("'" + extras[0] + "' was not expected; see cadrova get --help");

  const Family& family = *FindByName(kFamilies, "family", family_name);
  const Value& zero = FindByName(kKinds, "kind", kind_name)->second;
  RefuseWhatTheFamilyLacks(family, zero, has_default);
  const Value default_value = has_default ? ParseDefault(default_text, zero) : zero;
  if (*data_option) {
    if (cadrova::host::AnswerFromFile == nullptr) {
      Fail("--data: this parser core reads no file of ours");
    }
    if (const auto mistake = cadrova::host::AnswerFromFile(data)) Stop(ToString(*mistake));
  }
  if (*region_option) OverrideProperty("ro.orvel.region", region);
  if (*carrier_option) OverrideProperty("persist.sys.cota.carrier", carrier);
  for (const std::string& item : sim_items) {
    const std::size_t equals = item.find('=');
    if (equals == std::string::npos) Fail("--sim '" + item + "' is no KEY=VALUE");
    android::setSimCadrova(item.substr(0, equals), item.substr(equals + 1));
  }

  const Value value =
      WithDiagnosticsOnStandardError([&] { return Ask(family, key, default_value); });
  const std::string output = json ? ToJson(value) : ToLines(value);
  std::fwrite(output.data(), 1, output.size(), stdout);
  if (std::fflush(stdout) != 0) Fail("can't write the value to standard output");
}
