// The parts of the cadrova command as functions, over the fake core.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <string>
#include <utility>
#include <vector>

#include "cadrova/host.h"
#include "common/table.h"
#include "common/text.h"
#include "files.h"
#include "fleet/findings.h"
#include "fleet/suggestions.h"
#include "lookup/data_source.h"
#include "output/capture.h"
#include "output/csv.h"
#include "output/html_report.h"
#include "output/json.h"
#include "output/progress.h"
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
  HtmlReport report("", matrix.fleet);
  report.BeginFeature("k", Kind::kInt);
  report.Add(matrix.chains.family(), LayOut(matrix.chains, matrix.results));
  for (const std::string part :
       {"map\">\n<li class=p2>", "<td class=none><small>no map</small></tr>\n",
        "exceptions\n<span class=p2><b>R10, C10</b> 10 <small>COTA_C10_R10</small></span>\n"}) {
    EXPECT_NE(report.ToHtml().find(part), std::string::npos) << part;
  }
}

// A region code may be the name of a SIM map. The core has separate existence tests for SIM data.
TEST(Matrix, DistinguishesASimMapFromARegionOfTheSameName) {
  const Matrix matrix("", {{"SIM_X1"}, {"X1"}}, "sim", Kind::kInt);
  EXPECT_EQ(Join(matrix.chains.MapNames()),
            "SIM_X1, SIM_DEFAULT, COTA_X1_SIM_X1, COTA_X1, SIM_X1, DEFAULT");
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

// The same map has different positions in the chains of two devices.
TEST(HtmlReport, IsEqualToTheGoldenFile) {
  Matrix::Load("DEFAULT = {k = 30, name = 'a \"b\" <c>&'}\nCOTA_X1.k = 25\nSIM_X1.k = 15");
  const Fleet fleet = {{"", "COTA_X1"}, {"", "X1"}};
  HtmlReport report("<text>", fleet);
  for (const auto& [key, kind, maps] : IndexFeatures(host::List())) {
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
