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
      {"ring.secnods",
       {"ring.sceonds", "ring.seconds"},
       {"ring.seconds", "ring.sceonds"},
       {"ring.seconds"}},
      {"ring",
       {"rnig", "RING", "bring", "tone"},
       {"RING", "bring", "rnig"},
       {"RING", "bring", "rnig"}},
      {"COTA_EU_X1",
       {"COTA_X1_EU", "COTA_EU_X"},
       {"COTA_X1_EU", "COTA_EU_X"},
       {"COTA_X1_EU", "COTA_EU_X"}},
      {"seconds", {"ring.seconds"}, {"ring.seconds"}, {"ring.seconds"}},
      {"ab", {"ac", "a b", "AB"}, {"AB"}, {"AB"}},
      {"band.12", {"band.11", "Band.12"}, {"Band.12", "band.11"}, {"Band.12"}},
      {"...", {"---"}, {}, {}},
      // Two edits in ten bytes are a fifth; in nine they are more.
      {"abcdefghij", {"abcdefgh", "abcdefg"}, {"abcdefgh"}, {}},
      {"abcdefghi", {"abcdefg"}, {}, {}},
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
      "[DEFAULT]\nk = ['é23456789012']\n[COTA_X1_EU]\nk = ['12345678901234']\n";
  const Fleet fleet = {{"", "EU", "JP"}, {"", "N7", "X1"}};
  EXPECT_EQ(Matrix(maps, fleet, "carrier-region", Kind::kStringArray).ToText(),
            R"(        carrier
region  "", N7                    X1
"", JP  ["é23456789012"] DEFAULT  ["é23456789012"] DEFAULT
EU      ["é23456789012"] DEFAULT  (1) COTA_X1_EU

(1)  ["12345678901234"]
)");
  EXPECT_EQ(Matrix(maps, {{"EU"}, {"X1"}}, "region", Kind::kInt).ToText(),
            "        carrier\nregion  X1\nEU      no map\n");
  EXPECT_EQ(Matrix(maps, fleet, "carrier", Kind::kInt).ToText(),
            "              carrier\nregion        every carrier\nevery region  no map\n");
}

TEST(Matrix, PutsColumnsThatVaryFirstAndNamesALargeGroupByItsSize) {
  // The first carriers get the same in all regions, the last one does not.
  std::string maps = "[DEFAULT]\nk = 0\n[COTA_C9_EU]\nk = 99\n";
  for (int i = 1; i <= 9; ++i) {
    maps += "[COTA_C" + std::to_string(i) + "]\nk = " + std::to_string(i) + '\n';
  }
  EXPECT_EQ(Matrix(maps, {{"EU", "JP"}, Codes("C", 1, 17)}, "carrier-region", Kind::kInt).ToText(),
            R"(        carrier
region  C9
EU      99 COTA_C9_EU
JP      9 COTA_C9

              carrier
region        C1         C2         C3         C4         C5         C6         C7         C8
every region  1 COTA_C1  2 COTA_C2  3 COTA_C3  4 COTA_C4  5 COTA_C5  6 COTA_C6  7 COTA_C7  8 COTA_C8

              carrier
region        8 others
every region  0 DEFAULT
)");
}

TEST(Matrix, ListsExceptionsOfSingleDevicesIfTheTableWouldBeTooLarge) {
  std::string maps = "[DEFAULT]\nk = 0\n", exceptions;
  for (int i = 10; i < 40; ++i) {
    const std::string code = std::to_string(i), map = "COTA_C" + code + "_R" + code;
    maps += '[' + map + "]\nk = " + code + '\n';
    exceptions += 'R' + code + "     C" + code + "      " + code + ' ' + map + '\n';
  }
  const Fleet fleet = {Codes("R", 10, 39), Codes("C", 10, 39)};
  EXPECT_EQ(Matrix(maps, fleet, "carrier-region", Kind::kInt).ToText(),
            "              carrier\nregion        every carrier\nevery region  0 DEFAULT\n\n"
            "region  carrier  exception\n" +
                exceptions);
}

// A region code may be the name of a SIM map. The core has separate existence tests for SIM data.
TEST(Matrix, DistinguishesASimMapFromARegionOfTheSameName) {
  const Matrix matrix("", {{"SIM_X1"}, {"X1"}}, "sim", Kind::kInt);
  EXPECT_EQ(Join(matrix.chains.MapNames()),
            "SIM_X1, SIM_DEFAULT, COTA_X1_SIM_X1, COTA_X1, SIM_X1, DEFAULT");
}

TEST(Csv, QuotesTextsListsAndMaps) {
  const Fleet fleet = {{"a\"b"}, {""}};
  const std::string header = "region,carrier,value,map\n\"a\"\"b\",\"\",";
  const struct {
    std::string toml;
    Kind kind;
    std::string fields;
  } cases[] = {{"[DEFAULT]\nk = 'a \"b\"'", Kind::kString, "\"a \"\"b\"\"\",\"DEFAULT\"\n"},
               {"[DEFAULT]\nk = ['a']", Kind::kStringArray, "\"[\"\"a\"\"]\",\"DEFAULT\"\n"},
               {"[DEFAULT]\nk = -inf", Kind::kFloat, "-inf,\"DEFAULT\"\n"},
               {"", Kind::kInt, "0,\n"}};
  for (const auto& [toml, kind, fields] : cases) {
    const Matrix matrix(toml, fleet, "region", kind);
    EXPECT_EQ(ToCsv(matrix.chains, matrix.results), header + fields);
  }
}

TEST(Json, HasAllElementsOfALongArrayAndFloatsThatAreNoNumbers) {
  JsonArrayPrinter array;
  std::string expected = "[";
  const std::string printed = CaptureStdout([&] {
    for (int i = 0; i < 10'000; ++i) {
      const std::string element = ToJson(Value("element " + std::to_string(i)));
      array.Add(element);
      expected += (i == 0 ? "\n" : ",\n") + element;
    }
    array.Finish();
  });
  EXPECT_EQ(printed, expected + "\n]\n");
  EXPECT_EQ(CaptureStdout([] { JsonArrayPrinter().Finish(); }), "[]\n");
  const Matrix matrix("[DEFAULT]\nk = -inf\n[EU]\nk = nan\n[JP]\nk = inf\n",
                      {{"", "EU", "JP"}, {""}}, "region", Kind::kFloat);
  EXPECT_EQ(CaptureStdout([&] { PrintJson(matrix.chains, matrix.results); }), R"([
{"region":"","carrier":"","value":"-inf","map":"DEFAULT"},
{"region":"EU","carrier":"","value":"nan","map":"EU"},
{"region":"JP","carrier":"","value":"inf","map":"JP"}
]
)");
}

// The same map has different positions in the chains of two devices.
TEST(HtmlReport, IsEqualToTheGoldenFile) {
  Matrix::Load(R"([DEFAULT]
k = 30
name = 'a "b" <c>&'
[COTA_X1]
k = 25
[SIM_X1]
k = 15
)");
  const Fleet fleet = {{"", "COTA_X1"}, {"", "X1"}};
  HtmlReport report("<text>", fleet);
  for (const auto& [key, kind, maps] : IndexFeatures(host::List())) {
    report.BeginFeature(key, kind);
    for (const std::string family : {"carrier-region", "sim"}) {
      const FleetChains chains(FindFamily(family), fleet);
      report.Add(chains.family(), LayOut(chains, chains.Collect(kind, key, &maps)));
    }
  }
  const std::string golden = CADROVA_SOURCES "/tests/golden/report.html";
  if (std::getenv("CADROVA_UPDATE_GOLDEN") != nullptr) std::ofstream(golden) << report.ToHtml();
  EXPECT_EQ(report.ToHtml(), FileContents(golden)) << "if it is right, set CADROVA_UPDATE_GOLDEN=1";
}

TEST(Progress, IsShownOnATerminalWhenWorkHasTakenHalfASecond) {
  const int terminal = posix_openpt(O_RDWR | O_NOCTTY);
  ASSERT_EQ(grantpt(terminal) + unlockpt(terminal), 0);
  const pid_t child = fork();
  if (child == 0) {
    dup2(open(ptsname(terminal), O_RDWR | O_NOCTTY), STDERR_FILENO);
    {
      Progress progress("working");
      progress.Show(1, 4);
      usleep(510'000);
      progress.Show(2, 4);
      progress.Show(3, 4);
    }
    _exit(0);
  }
  waitpid(child, nullptr, 0);
  EXPECT_EQ(ReadAll(terminal), "\rcadrova: working: 50 %\x1B[K\r\x1B[K");
}

}  // namespace
}  // namespace cadrova::tools
