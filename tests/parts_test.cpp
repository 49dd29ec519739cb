// The parts of the cadrova command as functions, over the fake core.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <random>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "cadrova/host.h"
#include "commands/shared_options.h"
#include "common/table.h"
#include "common/text.h"
#include "failure.h"
#include "files.h"
#include "fleet/findings.h"
#include "fleet/fleet_file.h"
#include "fleet/suggestions.h"
#include "lookup/data_source.h"
#include "output/capture.h"
#include "output/csv.h"
#include "output/html_report.h"
#include "output/json.h"
#include "output/progress.h"
#include "output/sarif.h"
#include "output/text.h"

namespace cadrova::tools {
namespace {

using Names = std::vector<std::string>;

// The results of one feature on every device of `fleet`, over the data in `toml`.
struct Matrix {
  Matrix(const std::string& toml, Fleet devices, const std::string& family, Kind kind)
      : fleet(std::move(devices)),
        chains((Load(toml), FindFamily(family)), fleet),
        results(chains.Collect(kind, "k")) {}

  static void Load(const std::string& toml) {
    EXPECT_EQ(host::LoadText(toml), std::vector<host::Error>());
  }
  std::string ToText() const { return tools::ToText(LayOut(chains, results), fleet); }

  Fleet fleet;
  FleetChains chains;
  Results results;
};

Names Codes(const std::string& prefix, int first, int last) {
  Names codes;
  for (int i = first; i <= last; ++i) codes.push_back(prefix + std::to_string(i));
  return codes;
}

TEST(Fleet, IsDerivedFromTheNamesOfMaps) {
  const struct {
    Names maps, regions, carriers;
  } cases[] = {
      {{"DEFAULT", "SIM_DEFAULT"}, {""}, {""}},
      {{"US", "EU", "SIM_X1", "COTA_N7"}, {"", "EU", "US"}, {"", "N7", "X1"}},
      {{"EU", "COTA_A_B_EU"}, {"", "EU"}, {"", "A_B"}},     // the region is known
      {{"COTA_X1_JP", "COTA_X1"}, {"", "JP"}, {"", "X1"}},  // the carrier is known
      {{"COTA_A_B"}, {""}, {"", "A_B"}},                    // region and carrier are unknown
      {{"COTA_X1_EU_EU", "EU", "EU_EU"}, {"", "EU", "EU_EU"}, {"", "X1"}},
  };
  for (const auto& [maps, regions, carriers] : cases) {
    const Fleet fleet = FleetOf(maps);
    EXPECT_EQ(std::pair(fleet.regions, fleet.carriers), std::pair(regions, carriers)) << Join(maps);
  }
}

// The maps of each family give these codes, and no map is taken for a region.
TEST(Fleet, OfTheMapsThatADeviceConsultsHasOnlyItsCodes) {
  const Fleet device = {{"R"}, {"C"}};
  for (const Family& family : Families()) {
    Names maps = FleetChains(family, device).MapNames();
    maps.insert(maps.end(), {"R", "SIM_C"});
    const Fleet fleet = FleetOf(maps);
    EXPECT_EQ(std::pair(fleet.regions, fleet.carriers), std::pair(Names{"", "R"}, Names{"", "C"}))
        << family.name;
  }
}

TEST(Codes, AreSimilarOnlyIfAlmostEqual) {
  const struct {
    std::string code, other;
    bool is_similar = true;
  } cases[] = {
      // clang-format off
      {"eu", "EU"}, {"UKK", "UK"}, {"UK", "UUK"}, {"AURA", "AUTRA"}, {"aurra", "AURA"}, {"KTIE", "KITE"}, {"BLUE", "BLUR"}, {"SKY_BLUE", "SKY_BLEU"}, {"AB_CD", "AB-CD"}, {"AB_CD", "ABCD"},
      {"EU", "EU", false}, {"UK", "US", false}, {"UKKK", "UK", false}, {"X1", "X11", false}, {"X1", "X2", false}, {"KIT", "KITE", false},
      {"AURA1", "AURA2", false}, {"AURA", "AURA2", false}, {"AURA2", "AURA22", false}, {"", "A", false},
      {"X_11A", "X_11B", false}, {"GALAXY_A", "GALAXY_B", false}, {"BLUE_SKY", "BLUR_SKI", false},
      // clang-format on
  };
  for (const auto& [code, other, is_similar] : cases) {
    EXPECT_EQ(IsSimilarCode(code, other), is_similar) << code << ' ' << other;
    EXPECT_EQ(IsSimilarCode(other, code), is_similar) << other << ' ' << code;
  }
}

// Codes, and for each region, a digit per carrier: whether there is such a device.
std::string ToText(const Fleet& fleet) {
  std::string text = Join(fleet.regions, ",") + '/' + Join(fleet.carriers, ",");
  for (std::size_t region = 0; region < fleet.regions.size(); ++region) {
    text += '/';
    for (std::size_t i = 0; i < fleet.carriers.size(); ++i)
      text += fleet.Has(region, i) ? '1' : '0';
  }
  return text;
}

TEST(FleetFile, DeclaresDevicesOfWhichOptionsSelect) {
  using Codes = std::optional<Names>;
  const std::string devices =
      "devices = [['UK', 'B'], ['UK', ''], ['KR', 'B'], ['UK', 'B'], ['JP', 'C']]";
  const struct {
    std::string toml;
    Codes regions, carriers;
    std::string fleet;
    bool are_declared = true;
  } cases[] = {
      {"", {}, {}, ",EU/,A/11/11", false},
      {"regions = ['UK', '', 'KR', 'UK']", {}, {}, "UK,,KR/,A/11/11/11", false},
      {"carriers = ['B']", {}, {}, ",EU/B/1/1", false},
      {"carriers = ['B']", Names{"X", "EU"}, {}, "X,EU/B/1/1"},
      {"carriers = ['C', 'B']\nregions = ['UK']", {}, Names{"B"}, "UK/B/1"},
      {"", Names{"EU"}, Names{"A"}, "EU/A/1"},
      {devices, {}, {}, "UK,KR,JP/B,,C/110/100/001"},
      {devices, Names{"JP", "UK"}, {}, "JP,UK/B,,C/001/110"},
      {devices, {}, Names{"C", ""}, "UK,JP/C,/01/10"},
  };
  for (const auto& [toml, regions, carriers, fleet, are_declared] : cases) {
    const FleetFile file = ReadFleetFile(TemporaryFile("cadrova.toml", toml));
    const FleetChoice choice = {&file, regions, carriers};
    EXPECT_EQ(ToText(choice.ToFleet({"DEFAULT", "EU", "COTA_A"})), fleet) << toml;
    EXPECT_EQ(choice.are_codes_declared(), are_declared) << toml;
  }
}

TEST(FleetFile, SaysWhatCheckReports) {
  const FleetFile file = ReadFleetFile(
      TemporaryFile("cadrova.toml",
                    "[check]\nstrict = true\ndisable = ['not-in-default',\n  'empty-file']\n"
                    "[[check.allow]]\nfinding = 'redundant-value'\nmap = 'A*'\n"
                    "[[check.allow]]\nfinding = 'sim-float'\nkey = ''\n"));
  EXPECT_TRUE(file.is_strict);
  std::string text;
  for (const auto& [finding, place] : file.disabled) {
    text += finding + ' ' + std::to_string(place.line) + ':' + std::to_string(place.column) + '\n';
  }
  for (const auto& [finding, map, key, place] : file.allowed) {
    text += finding + ' ' + map.value_or("-") + ' ' + key.value_or("-") + ' ' +
            std::to_string(place.line) + '\n';
  }
  EXPECT_EQ(text,
            "not-in-default 3:12\nempty-file 4:3\n"
            "redundant-value A* - 5\nsim-float -  8\n");
}

TEST(FleetFile, IsRefusedWithThePlaceOfTheError) {
  const std::pair<std::string, std::string> cases[] = {
      // clang-format off
      {"regions = [1]\ncarriers = ['A'", "2:16: "},  // a syntax error, whatever its text
      {"\nregion = ['EU']", "2:1: unknown key region; did you mean regions?"},
      {"[chek]", "1:2: unknown key chek; did you mean check?"},
      {"'a b' = 1", "1:1: unknown key \"a b\"; use one of: regions, carriers, devices, check"},
      {"regions = 'EU'", "1:1: regions must be an array of strings"},
      {"carriers = ['A',\n 1]", "2:2: a code in carriers must be a string"},
      {"regions = []", "1:1: regions is empty; remove it, or write \"\" for the unset code"},
      {"devices = []", "1:1: devices is empty; remove it, or add pairs"},
      {"devices = {}", "1:1: devices must be an array of pairs [\"region\", \"carrier\"]"},
      {"devices = [['EU', 'A'], 'EU']", "1:25: a device must be a pair [\"region\", \"carrier\"]"},
      {"devices = [['EU']]", "1:12: a device must be a pair [\"region\", \"carrier\"]"},
      {"devices = [['EU', 1]]", "1:19: a carrier must be a string"},
      {"regions = ['EU']\ndevices = [['EU', 'A']]", "2:1: devices gives all regions and carriers; remove regions and carriers"},
      {"check = 1.5", "1:1: check must be a table of strict, disable, allow"},
      {"[check]\nstrict = 'yes'", "2:1: strict must be true or false"},
      {"check.disabled = []", "1:7: unknown key disabled; did you mean disable?"},
      {"check.disable = true", "1:7: disable must be an array of names of findings"},
      {"check.disable = ['sim-flaot']", "1:18: unknown finding sim-flaot; did you mean sim-float?"},
      {"check.disable = ['nope']", "1:18: unknown finding nope; use one of: syntax, value, kind-conflict, sim-float, unknown-map, similar-map, misspelt-key, not-in-default, redundant-value, empty-file, unused-allow"},
      {"check.disable = ['syntax']", "1:18: syntax can't be disabled: a file with such an error can't be used"},
      {"[check]\nallow = [{ map = 'A', finding = 'value' }]", "2:23: value can't be allowed: a file with such an error can't be used"},
      {"[check]\nallow = [{ map = 'A' }]", "2:10: finding is missing; write { finding = \"…\", map = \"…\", key = \"…\" }"},
      {"[check]\nallow = ['sim-float']", "2:10: an element of allow must be a table of finding, map, key"},
      {"[check]\nallow = [{ finding = 'sim-float', keys = 'a' }]", "2:35: unknown key keys; did you mean key?"},
      {"[check]\nallow = [{ finding = 'sim-float', key = 1 }]", "2:35: key must be a string, which is a shell pattern"},
      // clang-format on
  };
  for (const auto& [toml, reason] : cases) {
    const std::string file = TemporaryFile("cadrova.toml", toml);
    std::string what;
    try {
      ReadFleetFile(file);
    } catch (const Failure& failure) {
      what = failure.what();
    }
    if (reason.ends_with(' ')) what.resize(std::min(what.size(), file.size() + 1 + reason.size()));
    EXPECT_EQ(what, file + ':' + reason) << toml;
  }
}

// Only in the folder of the data, as it was named.
TEST(FleetFile, IsBesideTheData) {
  const std::string folder = kTemporaryFolder.path + "/beside", file = folder + "/cadrova.toml";
  std::filesystem::create_directories(folder + "/below");
  EXPECT_EQ(FindFleetFile(folder + "/data.toml"), std::nullopt);
  std::filesystem::create_symlink("nowhere", file);  // there, but can't be read
  EXPECT_EQ(FindFleetFile(folder + "/data.toml"), file);
  EXPECT_EQ(FindFleetFile(folder + "/below/data.toml"), std::nullopt);
  EXPECT_EQ(FindFleetFile(file), std::nullopt);
  std::filesystem::current_path(folder);
  EXPECT_EQ(FindFleetFile("data.toml"), "cadrova.toml");
  EXPECT_EQ(FindFleetFile("-"), std::nullopt);
  std::filesystem::current_path("/");
}

TEST(Suggestions, AreSimilarNamesWithTheBestFirst) {
  const struct {
    std::string name;
    Names candidates, suggested;  // by Suggest
    Names indexed;                // by SuggestionIndex
  } cases[] = {
      // clang-format off
      {"ring.secnods", {"ring.sceonds", "ring.seconds"}, {"ring.seconds", "ring.sceonds"}, {"ring.seconds"}},
      {"ring", {"rnig", "RING", "bring", "tone"}, {"RING", "bring", "rnig"}, {"RING", "bring", "rnig"}},
      {"COTA_EU_X1", {"COTA_X1_EU", "COTA_EU_X"}, {"COTA_X1_EU", "COTA_EU_X"}, {"COTA_X1_EU", "COTA_EU_X"}},
      {"seconds", {"ring.seconds"}, {"ring.seconds"}, {"ring.seconds"}},
      {"ab", {"ac", "a b", "AB"}, {"AB"}, {"AB"}}, {"abc", {"abd"}, {"abd"}, {"abd"}},
      {"band.12", {"band.11", "Band.12"}, {"Band.12", "band.11"}, {"Band.12"}}, {"...", {"---"}, {}, {}},
      // Two edits in ten bytes are a fifth; in nine they are more.
      {"abcdefghij", {"abcdefgh", "abcdefg"}, {"abcdefgh"}, {}}, {"abcdefghi", {"abcdefg"}, {}, {}},
      // clang-format on
  };
  const auto names = [](const std::vector<Suggestion>& suggestions) {
    return Join(suggestions, ", ", &Suggestion::name);
  };
  for (const auto& [name, candidates, suggested, indexed] : cases) {
    EXPECT_EQ(names(Suggest(name, candidates)), Join(suggested)) << name;
    EXPECT_EQ(names(SuggestionIndex(candidates).Suggest(name)), Join(indexed)) << name;
  }
}

TEST(Table, CountsCharactersAndNotBytes) {
  EXPECT_EQ(Table({{"é", "10", "x"}, {"name", "9", "yy"}, {"", "", ""}}),
            "é     10  x\nname  9   yy\n\n");
  EXPECT_EQ(Join(AlignedLines({{"1", "a"}, {"10", "b"}}, 1), "|"), " 1  a|10  b");
}

TEST(Matrix, MergesEqualRowsAndColumnsAndListsLongValuesBelow) {
  const std::string maps =
      "DEFAULT.k = ['é23456789012']\nCOTA_X1_EU.k = ['1234567890123']\n"
      "COTA_X1.k = ['1234567890123']";
  const Fleet fleet = {{"", "EU", "R1", "R2", "R3", "R4", "R5"}, {"", "N7", "X1"}};
  ExpectGolden(Matrix(maps, fleet, "carrier-region", Kind::kStringArray).ToText(),
               "matrix_merged.txt");
  EXPECT_EQ(Matrix(maps, {{"EU"}, {"X1"}}, "region", Kind::kInt).ToText(),
            "        carrier\nregion  X1\nEU      no map\n");
}

TEST(Matrix, PutsColumnsThatVaryFirstAndNamesALargeGroupByItsSize) {
  // Most carriers get the same in all regions.
  std::string maps = "[DEFAULT]\nk = 0\n[COTA_C9_EU]\nk = 99\n[COTA_C4_EU]\nk = 44\n";
  for (const std::string i : {"1", "2", "3", "4", "5", "6", "7", "8", "9", "10"}) {
    maps += "[COTA_C" + i + "]\nk = " + i + '\n';
  }
  ExpectGolden(
      Matrix(maps, {{"EU", "JP"}, Codes("C", 1, 17)}, "carrier-region", Kind::kInt).ToText(),
      "matrix_groups.txt");
}

TEST(Matrix, ListsExceptionsOfSingleDevicesIfTheTableWouldBeTooLarge) {
  std::string maps, exceptions;
  for (const std::string& code : Codes("", 10, 39)) {
    const std::string map = "COTA_C" + code + "_R" + code;
    maps += '[' + map + "]\nk = " + code + '\n';
    exceptions += 'R' + code + "     C" + code + "      " + code + ' ' + map + '\n';
  }
  const Matrix matrix(maps, {Codes("R", 10, 39), Codes("C", 10, 39)}, "carrier-region", Kind::kInt);
  EXPECT_EQ(matrix.ToText(),
            "              carrier\nregion        every carrier\nevery region  no map\n\n"
            "region  carrier  exception\n" +
                exceptions);
  HtmlReport report({""}, matrix.fleet);
  report.BeginFeature("k", Kind::kInt);
  report.Add(matrix.chains.family(), LayOut(matrix.chains, matrix.results));
  for (const std::string part :
       {"map\"><ul>\n<li class=p2>", "<td class=none><small>no map</small></tr>\n",
        "devices: <b>30</b></summary>\n<pre class=p2>R10, C10: 10 COTA_C10_R10\n"}) {
    EXPECT_NE(report.ToHtml().find(part), std::string::npos) << part;
  }
}

// A region code may be the name of a SIM map. The core has separate existence tests for SIM data.
TEST(Matrix, DistinguishesASimMapFromARegionOfTheSameName) {
  const Matrix matrix("", {{"SIM_X1"}, {"X1"}}, "sim", Kind::kInt);
  EXPECT_EQ(Join(matrix.chains.MapNames()),
            "SIM_X1, SIM_DEFAULT, COTA_X1_SIM_X1, COTA_X1, SIM_X1, DEFAULT");
}

// Random data of one key, by map.
using RandomData = std::vector<std::pair<std::string, std::string>>;
RandomData MakeRandomData(std::minstd_rand& random) {
  RandomData data;
  for (const char* map : {"DEFAULT", "EU", "JP", "COTA_A", "COTA_B", "COTA_A_EU", "COTA_A_JP",
                          "COTA_B_EU", "SIM_DEFAULT", "SIM_A", "SIM_B", "COTA_A_COTA_A"}) {
    constexpr const char* kValues[] = {"[1]", "[2]", "[]"};
    if (random() % 3 > 0) data.emplace_back(map, kValues[random() % 8 / 3]);
  }
  return data;
}

std::string ToToml(const RandomData& data) {
  return Join(data, "",
              [](const auto& item) { return '[' + item.first + "]\nk = " + item.second + '\n'; });
}

// The region COTA_A has the map of the carrier A. The first device may have a map of its own, while
// its codes have none. One device does not exist.
const Fleet kRandomFleet = {
    {"EU", "JP", "COTA_A", ""},
    {"A", "B", ""},
    {true, true, true, true, false, true, true, true, true, true, true, true}};

// The lines of the CSV, with the name of the map replaced if there is one.
std::vector<std::string> CsvLines(const RandomData& data, const std::string& family) {
  const Matrix matrix(ToToml(data), kRandomFleet, family, Kind::kIntArray);
  const std::string csv = ToCsv(matrix.chains, matrix.results);
  std::istringstream text(std::regex_replace(csv, std::regex(",\"\\w+\"\n"), ",map\n"));
  std::vector<std::string> lines;
  for (std::string line; std::getline(text, line);) lines.push_back(line);
  return lines;
}

TEST(Changes, AreTheDifferencesOfTwoMatrices) {
  std::minstd_rand random;
  for (int run = 0; run < 100; ++run) {
    const RandomData old_data = MakeRandomData(random), new_data = MakeRandomData(random);
    SCOPED_TRACE(ToToml(old_data) + "->\n" + ToToml(new_data));
    Names maps;
    for (const auto* data : {&old_data, &new_data}) {
      for (const auto& [map, value] : *data) maps.push_back(map);
    }
    for (const Family& family : Families()) {
      const auto old_lines = CsvLines(old_data, family.name);
      const FleetChains chains(family, kRandomFleet, &maps);
      const auto new_lines = CsvLines(new_data, family.name);
      Matrix::Load(ToToml(old_data));
      const Results old_results = chains.Collect(Kind::kIntArray, "k", &maps);
      Matrix::Load(ToToml(new_data));
      const Results new_results = chains.Collect(Kind::kIntArray, "k", &maps);
      std::set<std::string> changed, expected;
      for (const Change& change : FindChanges(chains, old_results, new_results)) {
        for (const auto& [region, carrier] : change.devices) {
          changed.insert('"' + kRandomFleet.regions[region] + "\",\"" +
                         kRandomFleet.carriers[carrier] + '"');
        }
      }
      for (std::size_t i = 0; i < old_lines.size(); ++i) {
        const std::string& line = old_lines[i];
        if (line != new_lines[i])
          expected.insert(line.substr(0, line.find(',', line.find(',') + 1)));
      }
      EXPECT_EQ(Join(changed), Join(expected)) << family.name;
    }
  }
}

TEST(Findings, OfRedundantValuesCanBeFollowedTogether) {
  std::minstd_rand random;
  std::size_t removed = 0;
  for (int run = 0; run < 100; ++run) {
    const RandomData data = MakeRandomData(random);
    SCOPED_TRACE(ToToml(data));
    Matrix::Load(ToToml(data));
    RandomData rest = data;
    for (const Finding& finding : CheckContents(host::List(), kRandomFleet, false)) {
      if (finding.type->name != std::string("redundant-value")) continue;
      std::erase_if(rest, [&](const auto& item) { return item.first == finding.map; });
      ++removed;
    }
    for (const Family& family : Families()) {
      EXPECT_EQ(Join(CsvLines(rest, family.name), "\n"), Join(CsvLines(data, family.name), "\n"));
    }
  }
  EXPECT_GT(removed, 100U);
}

TEST(Csv, QuotesTextsListsAndMaps) {
  const std::string header = "region,carrier,value,map\n\"a\"\"b\",\"\",";
  const struct {
    std::string toml;
    Kind kind;
    std::string fields;
  } cases[] = {// clang-format off
      {"DEFAULT.k = 'a \"b\"'", Kind::kString, "\"a \"\"b\"\"\",\"DEFAULT\"\n"}, {"", Kind::kInt, "0,\n"},
      {"DEFAULT.k = ['a']", Kind::kStringArray, "\"[\"\"a\"\"]\",\"DEFAULT\"\n"}, {"DEFAULT.k = -inf", Kind::kFloat, "-inf,\"DEFAULT\"\n"}};
  // clang-format on
  for (const auto& [toml, kind, fields] : cases) {
    const Matrix matrix(toml, {{"a\"b"}, {""}}, "region", kind);
    EXPECT_EQ(ToCsv(matrix.chains, matrix.results), header + fields);
  }
}

TEST(Json, HasAllElementsOfALongArrayAndFloatsThatAreNoNumbers) {
  std::string elements;
  const std::string printed = CaptureStdout([&] {
    JsonArrayPrinter array;
    for (const std::string& element : Codes("", 1, 20'000)) {
      array.Add(element);
      elements += (elements.empty() ? "[\n" : ",\n") + element;
    }
    array.Finish();
  });
  EXPECT_EQ(printed, elements + "\n]\n");
  const Matrix matrix("DEFAULT.k = -inf\nEU.k = nan\nJP.k = inf", {{"", "EU", "JP"}, {""}},
                      "region", Kind::kFloat);
  EXPECT_EQ(CaptureStdout([&] { PrintJson(matrix.chains, matrix.results); }), R"([
{"region":"","carrier":"","value":"-inf","map":"DEFAULT"},
{"region":"EU","carrier":"","value":"nan","map":"EU"},
{"region":"JP","carrier":"","value":"inf","map":"JP"}
]
)");
}

// Without its indentation.
std::string Sarif(const std::vector<Finding>& findings) {
  std::string text;
  for (const char byte : ToSarif(findings)) {
    if (byte != '\n') text += byte;
    while (text.ends_with("  ")) text.pop_back();
  }
  return text;
}

TEST(Sarif, HasTheRuleTheLevelAndThePlaceOfEachFinding) {
  std::string rules;
  for (const auto& [name, is_error, description] : FindingTypes()) {
    rules += (rules.empty() ? R"({ "id": ")" : R"(, { "id": ")") + std::string(name) +
             R"(", "shortDescription": { "text": ")" + description +
             R"(" }, "defaultConfiguration": { "level": ")" + (is_error ? "error" : "warning") +
             R"(" } })";
  }
  const std::string start =
      R"({ "$schema": "https://json.schemastore.org/sarif-2.1.0.json", "version": "2.1.0", "runs": [ { "tool": { "driver": { "name": "cadrova", "version": ")" CADROVA_VERSION
      R"(", "rules": [ )" +
      rules + R"( ] } }, "columnKind": "unicodeCodePoints", "results": [)";
  EXPECT_EQ(Sarif({}), start + "] } ]}");
  const auto result = [](int type, const std::string& level, const std::string& message,
                         const std::string& place) {
    return R"( { "ruleId": ")" + std::string(FindingTypes()[type].name) + R"(", "ruleIndex": )" +
           std::to_string(type) + R"(, "level": ")" + level + R"(", "message": { "text": ")" +
           message +
           R"(" }, "locations": [ { "physicalLocation": { "artifactLocation": { "uri": )" + place +
           " } } ] }";
  };
  const FindingType* const types = FindingTypes().data();
  EXPECT_EQ(Sarif({{&types[0], true, "a.toml", {3, 5}, "a \"b\" \xE9", "", ""},
                   {&types[1], false, "a.toml", {3, 0}, "m", "", ""},
                   {&types[1], true, "a.toml", {0, 0}, "m", "", ""}}),
            start +
                result(0, "error", "a \\\"b\\\" \uFFFD",
                       R"("a.toml" }, "region": { "startLine": 3, "startColumn": 5 })") +
                ',' + result(1, "warning", "m", R"("a.toml" }, "region": { "startLine": 3 })") +
                ',' + result(1, "error", "m", R"("a.toml" })") + " ] } ]}");
}

TEST(Sarif, NamesFilesByTheirUris) {
  std::filesystem::current_path(kTemporaryFolder.path);
  const std::string folder = std::filesystem::current_path();
  const std::pair<std::string, std::string> cases[] = {
      {"./a/../b.toml", "b.toml"},
      {folder + "/b//c.toml", "b/c.toml"},
      {"/b c.toml", "file:///b%20c.toml"},
      {folder + "x/b.toml", "file://" + folder + "x/b.toml"},
      {"../b.toml", "file://" + std::filesystem::path(folder).parent_path().string() + "/b.toml"},
      {"..b", "..b"},
      {"é\xE9%~a:b?#.toml", "%C3%A9%E9%25~a%3Ab%3F%23.toml"},
      {"<stdin>", "%3Cstdin%3E"},
  };
  for (const auto& [file, uri] : cases) {
    const std::string sarif = Sarif({{FindingTypes().data(), true, file, {}, "", "", ""}});
    EXPECT_NE(sarif.find(R"("uri": ")" + uri + '"'), std::string::npos) << file << sarif;
  }
}

// The same map has different positions in the chains of two devices.
TEST(HtmlReport, IsEqualToTheGoldenFile) {
  Matrix::Load(
      "DEFAULT = {k = 30, name = 'a \"b\" <c>&', 'k <%' = ['a\"', ''], pairs = [['a', 'b'], ['', "
      "'']]}\n"
      "COTA_X1 = {k = 25, 'k <%' = []}\nSIM_X1.k = 15");
  Fleet fleet = {{"", "COTA_X1"}, Codes("C", 1, 5)};
  fleet.carriers.insert(fleet.carriers.end(), {"", "X1", "unset"});
  HtmlReport report({"/folder/<text>", 1'234'567'890, "a & b"}, fleet);
  const auto contents = host::List();
  for (const auto& [key, kind, maps] : IndexFeatures({&contents})) {
    report.BeginFeature(key, kind);
    for (const std::string family : {"carrier-region", "sim"}) {
      const FleetChains chains(FindFamily(family), fleet);
      report.Add(chains.family(), LayOut(chains, chains.Collect(kind, key, &maps)));
    }
  }
  ExpectGolden(report.ToHtml(), "report.html");
}

TEST(Progress, IsShownOnATerminalWhenWorkHasTakenHalfASecond) {
  const auto work = [](const std::string& standard_error) {
    dup2(open(standard_error.c_str(), O_WRONLY | O_NOCTTY), STDERR_FILENO);
    Progress progress("working");
    progress.Show(1, 4);
    usleep(510'000);
    progress.Show(2, 4);
    progress.Show(3, 4);
  };
  const std::string file = TemporaryFile("not a terminal", "");
  const std::string shown = ShownOnTerminal([&](const std::string& terminal) {
    const pid_t child = fork();
    if (child == 0) {
      work(file);
      work(terminal);
      _exit(0);
    }
    waitpid(child, nullptr, 0);
  });
  EXPECT_EQ(shown, "\rcadrova: working: 50 %\x1B[K\r\x1B[K");
  EXPECT_EQ(FileContents(file), "");
}

}  // namespace
}  // namespace cadrova::tools
