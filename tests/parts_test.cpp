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
#include "commands/complete.h"
#include "commands/shared_options.h"
#include "common/text.h"
#include "failure.h"
#include "files.h"
#include "fleet/findings.h"
#include "fleet/fleet_file.h"
#include "fleet/lookup_log.h"
#include "fleet/passed_over.h"
#include "fleet/suggestions.h"
#include "lookup/data_source.h"
#include "lookup/explanation.h"
#include "lookup/recording.h"
#include "output/capture.h"
#include "output/console.h"
#include "output/csv.h"
#include "output/html_report.h"
#include "output/json.h"
#include "output/map_types.h"
#include "output/progress.h"
#include "output/sarif.h"
#include "output/table.h"
#include "output/text.h"

namespace cadrova::tools {
namespace {

using Names = std::vector<std::string>;

// The results of one feature on every device of `fleet`, over the data in `toml`.
struct Matrix {
  Matrix(const std::string& toml, Fleet devices, const std::string& family, Kind the_kind)
      : fleet(std::move(devices)),
        kind(the_kind),
        chains((Load(toml), FindFamily(family)), fleet),
        results(chains.Collect(kind, "k")) {}

  static void Load(const std::string& toml) {
    EXPECT_EQ(host::LoadText(toml), std::vector<host::Error>());
  }
  std::string ToText() const {
    return tools::ToText(chains, results, FindPassedOver(chains, results, kind, "k"));
  }

  Fleet fleet;
  Kind kind;
  FleetChains chains;
  Results results;
};

Names Codes(const std::string& prefix, int first, int last) {
  Names codes;
  for (int i = first; i <= last; ++i) codes.push_back(prefix + std::to_string(i));
  return codes;
}

// Codes in their order, each before all that follow.
TEST(Codes, AreInNaturalOrder) {
  const Names codes = {// clang-format off
      "", "\x1F", "0", "00", "01", "1", "2", "10", "18446744073709551616", "18446744073709551617",
      "A", "A-1", "A0", "A00", "A0B", "A01", "A1", "A1B1", "A01B2", "A1B02", "A1B2", "A1B10", "A2",
      "R2", "R10", "R10A", "R_1", "a", "\u00E9"};
  // clang-format on
  for (std::size_t i = 0; i < codes.size(); ++i) {
    for (std::size_t j = 0; j < codes.size(); ++j) {
      EXPECT_EQ(NaturalOrder()(codes[i], codes[j]), i < j) << codes[i] << ' ' << codes[j];
    }
  }
}

TEST(Fleet, IsDerivedFromTheNamesOfMaps) {
  const struct {
    Names maps, regions, carriers;
  } cases[] = {
      {{"DEFAULT", "SIM_DEFAULT"}, {""}, {""}},
      {{"US", "EU", "SIM_X1", "COTA_N7"}, {"", "EU", "US"}, {"", "N7", "X1"}},
      {{"R10", "R2", "SIM_C10", "COTA_C9"}, {"", "R2", "R10"}, {"", "C9", "C10"}},
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
      {"check.disable = ['nope']", "1:18: unknown finding nope; use one of: syntax, value, kind-conflict, sim-float, unknown-map, similar-map, misspelt-key, not-in-default, redundant-value, empty-file, unused-allow, unheld-key, wrong-kind, unused-key"},
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
  EXPECT_EQ(Join(AlignedLines({{"漢é\u0301", "a"}, {"1", "b"}}), "|"), "漢é\u0301  a|1    b");
}

TEST(Text, IsWrappedAtBlanksAndAfterElements) {
  const struct {
    std::string text;
    std::size_t width;
    Names lines;
  } cases[] = {
      // clang-format off
      {"", 5, {""}}, {"a  b", 4, {"a  b"}}, {"  a  b c ", 5, {"  a", "b c"}}, {"a b c", 3, {"a b", "c"}},
      {"abcdef b", 3, {"abcdef", "b"}}, {"a bcdef", 3, {"a", "bcdef"}}, {"a,b,c", 3, {"a,b,c"}},
      {"漢字 é\u0301é", 4, {"漢字", "é\u0301é"}}, {"漢字 漢", 6, {"漢字", "漢"}}, {"漢字 漢", 7, {"漢字 漢"}},
      {"[1,22,333,4]", 6, {"[1,22,", "333,4]"}}, {"[1,22,333,4]", 5, {"[1,", "22,", "333,", "4]"}},
      {R"([["a","b"],["c","d"]])", 12, {R"([["a","b"],)", R"(["c","d"]])"}},
      {R"([["aaa","bbb"],["c","d"]])", 8, {R"([["aaa",)", R"("bbb"],)", R"(["c",)", R"("d"]])"}},
      // Within quotes only if the quoted text does not fit.
      {R"("a b", "c d")", 9, {R"("a b",)", R"("c d")"}}, {R"("a b" "c d")", 4, {R"("a)", R"(b")", R"("c)", R"(d")"}},
      {R"(["a, b","c\" d"])", 10, {R"(["a, b",)", R"("c\" d"])"}}, {R"("a [ b" c,d)", 7, {R"("a [ b")", "c,d"}},
      // clang-format on
  };
  for (const auto& [text, width, lines] : cases) {
    EXPECT_EQ(Wrapped(text, width), lines) << text << ' ' << width;
  }
}

TEST(Table, FitsItsWidth) {
  const std::vector<Row> rows = {{"key", "int", "EU, \"my map\", JP"}, {"漢字.b", "string", "EU"}};
  const std::pair<std::size_t, std::string> cases[] = {
      // clang-format off
      {32, "key     int     EU, \"my map\", JP\n漢字.b  string  EU\n"},
      {31, "key     int     EU, \"my map\",\n                JP\n漢字.b  string  EU\n"},
      {25, "key     int     EU,\n                \"my map\",\n                JP\n漢字.b  string  EU\n"},
      {24, "key     int     EU, \"my\n                map\", JP\n漢字.b  string  EU\n"},
      {21, "key     int     EU,\n                \"my\n                map\",\n                JP\n漢字.b  string  EU\n"},
      // clang-format on
  };
  for (const auto& [width, text] : cases) EXPECT_EQ(Table(rows, width), text) << width;
  // One row that does not fit alone leaves the others aligned.
  EXPECT_EQ(Table({{"a.long.key.of.20.byte", "int", "EU, JP"}, {"b", "string", "EU"}}, 26),
            "a.long.key.of.20.byte  int\n    EU, JP\nb  string  EU\n");
  EXPECT_EQ(Table({{"a.long.key", "int", "EU"}, {"b", "string-array", "COTA_X1, EU"}}, 20),
            "a.long.key  int  EU\nb  string-array\n    COTA_X1, EU\n");
  // If they do not fit together, the first columns are aligned.
  EXPECT_EQ(
      Table({{"a.long.key", "int", "EU", "JP"}, {"b", "string-array", "COTA_X1, EU", ""}}, 30),
      "a.long.key  int           EU\n    JP\nb           string-array\n    COTA_X1, EU\n");
  EXPECT_EQ(Table({{"a.long.key", "a b", "EU"}, {"b", "string-array", "JP"}}, 25),
            "a.long.key  a b\n    EU\nb           string-array\n    JP\n");
  EXPECT_EQ(Table({{"a b c d", "c d"}, {"1 2", "3"}}, 8), "a b  c d\nc d\n1 2  3\n");
}

TEST(Matrix, MergesEqualRowsAndColumnsAndListsLongValuesBelow) {
  const std::string maps =
      "DEFAULT.k = ['é23456789012']\nCOTA_X1_EU.k = ['1234567890123']\n"
      "COTA_X1.k = ['1234567890123']";
  const Fleet fleet = {{"", "EU", "R1", "R2", "R3", "R4", "R5"}, {"", "N7", "X1"}};
  ExpectGolden(Matrix(maps, fleet, "carrier-region", Kind::kStringArray).ToText(),
               "matrix_merged.txt");
  EXPECT_EQ(Matrix(maps, {{"EU"}, {"X1"}}, "region", Kind::kInt).ToText(),
            "        carrier\nregion  X1\nEU      no map !\n\n"
            "!  DEFAULT: string-array, not int\n");
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

// The same as in the explanation of each device, also if only maps of other kinds are tested.
TEST(Matrix, MarksDevicesThatPassOverAValueOfAnotherKind) {
  Matrix::Load(
      "DEFAULT = {k = 1, l = []}\nEU = {k = '2', l = ['a']}\nSIM_DEFAULT.k = 3.0\nSIM_X1.k = []\n"
      "COTA_X1 = {k = true, l = 1}\nCOTA_X1_EU.k = 4\nCOTA_N7_EU.l = [1]\nJP.k = 5");
  const Fleet fleet = {{"", "EU", "JP"}, {"", "X1", "N7"}};
  const auto contents = host::List();
  const auto features = IndexFeatures({&contents});
  std::size_t marked = 0;
  for (std::size_t i = 0; i < features.size(); ++i) {
    const auto& [key, kind, maps, places] = features[i];
    for (const Family& family : Families()) {
      if (!family.Has(kind)) continue;
      const FleetChains chains(family, fleet);
      const Results results = chains.Collect(kind, key);
      const auto others = MapsOfOtherKinds(features, i);
      const auto passed_over = FindPassedOver(chains, results, kind, key, &others);
      EXPECT_EQ(passed_over.size(), FindPassedOver(chains, results, kind, key).size());
      const MatrixLayout layout = LayOut(chains, results, passed_over);
      ASSERT_EQ(layout.tables.size(), 1U);
      const auto& [regions, carriers, rows] = layout.tables[0];
      for (std::size_t row = 0; row < rows.size(); ++row) {
        for (std::size_t column = 0; column < carriers.size(); ++column) {
          const PassedOver* const shown = rows[row][column].passed_over;
          for (const std::size_t region : regions[row].codes) {
            for (const std::size_t carrier : carriers[column].codes) {
              OverrideProperty(kRegionCode, fleet.regions[region]);
              OverrideProperty(kCarrierCode, fleet.carriers[carrier]);
              const Explanation explanation = Explain(MakeQuery(family, kind, key), nullptr);
              std::string expected;
              for (const ChainEntry& entry : explanation.chain) {
                if (entry.is_source) break;
                if (entry.kinds.empty() || !expected.empty()) continue;
                expected = entry.map + ": " +
                           Join(entry.kinds, ", ", [](Kind other) { return ToString(other); }) +
                           ", not " + ToString(kind);
              }
              EXPECT_EQ(shown == nullptr ? "" : shown->map + ": " + shown->kinds, expected)
                  << key << ' ' << ToString(kind) << ' ' << family.name;
              if (!expected.empty()) ++marked;
            }
          }
        }
      }
    }
  }
  EXPECT_GT(marked, 50U);
}

TEST(MapTypes, KeepTheCodesOfTheDevice) {
  OverrideProperty(kRegionCode, "EU");
  EXPECT_EQ(
      Join(MapTypeNames()),
      "SIM_‹carrier›, SIM_DEFAULT, COTA_‹carrier›_‹region›, COTA_‹carrier›, ‹region›, DEFAULT");
  ChooseColor("always");
  EXPECT_EQ(MapColor(FindFamily("region"), 0), MapColor(FindFamily("sim"), 4));
  EXPECT_NE(MapColor(FindFamily("region"), 0), MapColor(FindFamily("sim"), 3));
  EXPECT_EQ(MapColor(FindFamily("region"), 1) + MapColor(FindFamily("sim"), kNoPosition), "");
  ChooseColor("never");
  EXPECT_EQ(MapColor(FindFamily("region"), 0), "");
  ChooseColor("auto");
  Matrix::Load("EU.k = 1");
  EXPECT_EQ(Record(MakeQuery(FindFamily("region"), Kind::kInt, "k")).value, Value(1));
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

// How many random files each test makes: fewer for an emulator.
#ifdef __aarch64__
constexpr int kRuns = 40;
#else
constexpr int kRuns = 200;
#endif

TEST(Changes, AreTheDifferencesOfTwoMatrices) {
  std::minstd_rand random;
  for (int run = 0; run < kRuns / 2; ++run) {
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

// By the families that programs look the key up by, or else by all.
TEST(Findings, OfRedundantValuesCanBeFollowedTogether) {
  std::minstd_rand random;
  std::size_t removed = 0;
  for (int run = 0; run < kRuns; ++run) {
    const RandomData data = MakeRandomData(random);
    SCOPED_TRACE(ToToml(data));
    Matrix::Load(ToToml(data));
    RandomData rest = data;
    auto families = Families();
    LookupLog log;
    if (run >= kRuns / 2) {
      families = families.subspan(static_cast<std::size_t>(run) % families.size(), 1);
      log.lookups = {{families.data(), Kind::kBool, {"k"}, 1}};
    }
    for (const Finding& finding : CheckContents(host::List(), kRandomFleet, false, {&log, 1})) {
      if (finding.type->name != std::string("redundant-value")) continue;
      std::erase_if(rest, [&](const auto& item) { return item.first == finding.map; });
      ++removed;
    }
    for (const Family& family : families) {
      EXPECT_EQ(Join(CsvLines(rest, family.name), "\n"), Join(CsvLines(data, family.name), "\n"));
    }
  }
  EXPECT_GT(removed, std::size_t{kRuns / 2});
}

// What the log contains, or why the text is refused.
std::string ParsedLog(const std::string& trace) {
  const auto show = [](const LoggedString& string) {
    return '"' + string.text + (string.is_cut ? "\"..." : "\"");
  };
  try {
    const LookupLog log = ParseLookupLog(trace, "t");
    std::string text;
    for (const auto& [family, kind, key, line] : log.lookups) {
      text += std::to_string(line) + ' ' + (family == nullptr ? "?" : family->name) + ' ' +
              ToString(kind) + ' ' + show(key) + '\n';
    }
    for (const auto& [key, value, line] : log.sim_items) {
      text += std::to_string(line) + ' ' + show(key) + '=' + show(value) + '\n';
    }
    return text;
  } catch (const Failure& failure) {
    return failure.what();
  }
}

TEST(LookupLog, HasTheKeysOfATrace) {
  const std::pair<std::string, std::string> cases[] = {
      // clang-format off
      {"", ""},
      {"1 getCustIntFeature(\"k\", -1) = 2 from DEFAULT; asked DEFAULT", "1 default int \"k\"\n"},
      {"1.23 getRegionCustBooleanFeature(\"k\", true) = true, the default; asked \"E U\", DEFAULT\n", "1 region bool \"k\"\n"},
      {"1 getCotaCustFloatFeature(\"k\", nan) = 1e+10, from an unknown map; no calls to the core seen\n", "1 carrier float \"k\"\n"},
      {"1 getCotaRegionCustStringFeature(\"k\", \", 3) = \\\"\") = \"; asked\", the default; asked \"\", COTA_A..., \"é\"...\n", "1 carrier-region string \"k\"\n"},
      {"1 getSimCustStringFeature(\"k\") = \"\" from SIM_X1; asked SIM_X1\n", "1 sim string \"k\"\n"},
      {"1 getSimCustStringArrayFeature(\"k\") = [\"]\",\"\\\"\"...] from \"S\"...; asked SIM_X1\n", "1 sim string-array \"k\"\n"},
      {"1 getCustIntArrayFeature(\"k\") = [1,-2,...] from DEFAULT; asked DEFAULT\n", "1 default int-array \"k\"\n"},
      {"1 getCustMapArrayFeature(\"k\") = [[\"a\",\"b\"],[\"c\"...]...] from DEFAULT; asked DEFAULT\n", "1 default map-array \"k\"\n"},
      // Keys are bytes in any form that JSON has.
      {"1 getCustIntArrayFeature(\"\\\"\\\\\\u000a\\u007f\\u0085\\u202eé\xFF\"...) = [] from DEFAULT; asked DEFAULT\n", "1 default int-array \"\"\\\n\x7F\xC2\x85\u202eé\xFF\"...\n"},
      {"1 getCustIntArrayFeature(\"\"...) = [] from DEFAULT; asked DEFAULT\n1 getCustIntArrayFeature(\"\") = [] from DEFAULT; asked DEFAULT\n", "1 default int-array \"\"...\n2 default int-array \"\"\n"},
      // Each lookup is listed once. Its steps and the messages of the trace library are not.
      {"1 getCustIntArrayFeature(\"k\") = [] from DEFAULT; asked DEFAULT\n    get_int_arr_from_map(\"DEFAULT\", \"k\") = []\nlibcadrova_trace.so: message\n2 getCustIntArrayFeature(\"k\") = [1] from DEFAULT; asked DEFAULT\n"
       "2 getCustMapArrayFeature(\"k\") = [] from DEFAULT; asked DEFAULT\n2 getSimCustIntArrayFeature(\"k\") = [] from DEFAULT; asked DEFAULT\n", "1 default int-array \"k\"\n5 default map-array \"k\"\n6 sim int-array \"k\"\n"},
      {"1 GetProperty(\"p\", \"\") = \"v\"\n1 sim_get_str_arr_item_exist(\"M\", \"k\") = false\n1 get_str_item_exist(\"M\", \"k\") = true\n1 get_float_from_map(\"M\", \"k\", 0.5) = 2\n1 get_map_arr_from_map(\"M\", \"k\") = []\n",
       "2 sim string-array \"k\"\n3 ? string \"k\"\n4 ? float \"k\"\n5 ? map-array \"k\"\n"},
      {"1 setSimCadrova(\"a\", \"b\"); handed to SIM_DEFAULT, X1\n1 setSimCadrova(\"a\", \"b\"); no calls to the core seen\n1 setSimCadrova(\"a\"..., \"b\"...); handed to SIM_DEFAULT, X1\n    cxx_sim_set_the_cadrova(\"X1\", \"x\", \"y\")\n1 cxx_sim_set_the_cadrova(\"X1\", \"c\", \"d\")\n",
       "1 \"a\"=\"b\"\n3 \"a\"...=\"b\"...\n5 \"c\"=\"d\"\n"},
      // Only the last line may be incomplete.
      {"1 getCustIntArrayFeature(\"k\") = [] from DEFAULT; asked DEFAULT\n1 getCustIntArrayFeature(\"n", "1 default int-array \"k\"\n"},
      // clang-format on
  };
  for (const auto& [trace, log] : cases) EXPECT_EQ(ParsedLog(trace), log) << trace;
}

TEST(LookupLog, IsRefusedAtTheFirstLineThatNoTraceHas) {
  const std::string good = "1 getCustIntFeature(\"k\", 1) = 2 from DEFAULT; asked DEFAULT";
  ASSERT_EQ(ParsedLog(good), "1 default int \"k\"\n");
  const auto expect_refusal = [&](const std::string& line) {
    EXPECT_EQ(ParsedLog(good + '\n' + line + '\n' + good),
              "t:2: not a line of a trace; write the trace with cadrova trace -o FILE");
  };
  // Each beginning of a line, except that its last name may be shorter.
  for (std::size_t size = 0; size < good.size() - 6; ++size) expect_refusal(good.substr(0, size));
  for (const char* line : {
           // clang-format off
        " ", "\r", "x", "getCustIntFeature(\"k\", 1) = 2 from DEFAULT; asked DEFAULT",
        "1. getCustIntFeature(\"k\", 1) = 2 from DEFAULT; asked DEFAULT", "1  getCustIntFeature(\"k\", 1) = 2 from DEFAULT; asked DEFAULT",
        "1 getCustIntFeatures(\"k\", 1) = 2 from DEFAULT; asked DEFAULT", "1 getSimCustFloatFeature(\"k\", 1) = 2 from DEFAULT; asked DEFAULT",
        "1 getCustIntFeature(\"k\") = 2 from DEFAULT; asked DEFAULT", "1 getCustIntArrayFeature(\"k\", []) = [] from DEFAULT; asked DEFAULT",
        "1 getCustIntFeature(\"\\n\", 1) = 2 from DEFAULT; asked DEFAULT", "1 getCustIntFeature(\"\\u00g1\", 1) = 2 from DEFAULT; asked DEFAULT", "1 getCustIntFeature(\"\\u00",
        "1 getCustIntFeature(\"k\", 1) = 2 from DEFAULT; asked DEFAULT, ", "1 getCustIntFeature(\"k\", 1) = 2 from DEFAULT; asked DEFAULT EU", "1 getCustIntFeature(\"k\", 1) = 2 from DEFAULT; asked ",
        "1 getCustIntFeature(\"k\", 1) = 2, the default; no calls to the core seen.", "1 getCustIntFeature(\"k\", 1) = 2; asked DEFAULT",
        "1 getCustIntArrayFeature(\"k\") = [1,2 from DEFAULT; asked DEFAULT", "1 getCustIntArrayFeature(\"k\") = 1,2 from DEFAULT; asked DEFAULT",
        "1 setSimCadrova(\"a\", \"b\") = 1; handed to X1", "1 setSimCadrova(\"a\", \"b\"); asked X1", "1 cxx_sim_set_the_cadrova(\"X1\", \"a\")", "1 get_int_item_exist(\"M\", \"k\")", "1 get_int_item_exist(\"M\") = true",
        "    getCustIntFeature(\"k\", 1) = 2 from DEFAULT; asked DEFAULT", "   get_int_item_exist(\"M\", \"k\") = true", "    1 get_int_item_exist(\"M\", \"k\") = true", "lookups  default  key  kind  from maps  last value"
           // clang-format on
       }) {
    expect_refusal(line);
  }
  EXPECT_EQ(ParsedLog("1 getCustIntFeature(\"k"),
            "t:1: not a line of a trace; write the trace with cadrova trace -o FILE");
  EXPECT_EQ(ParsedLog(good + "\n1.2 lookups: 3\n"),
            "t:2: a summary does not contain the lookups; trace without --summary");
}

// The golden file of the traces has every form.
TEST(LookupLog, IsReadFromEachTrace) {
  std::istringstream traces(FileContents(CADROVA_SOURCES "/tests/golden/traces.txt"));
  std::string trace;
  bool is_summary = false;
  std::size_t lookups = 0;
  for (std::string line; std::getline(traces, line);) {
    if (line.starts_with("==")) {
      is_summary = line.find("--summary") != std::string::npos;
    } else if (!is_summary && line.find("exist with the carrier") == std::string::npos) {
      trace += std::regex_replace(line, std::regex("^[AB](\\.T)? "), "4711 ") + '\n';
      if (line.find("Feature(") != std::string::npos) ++lookups;
    }
  }
  EXPECT_NO_THROW(ParseLookupLog(trace, "traces.txt")) << ParsedLog(trace);
  EXPECT_GT(lookups, 20U);
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
  for (const auto& [key, kind, maps, places] : IndexFeatures({&contents})) {
    report.BeginFeature(key, kind);
    for (const std::string family : {"carrier-region", "sim"}) {
      const FleetChains chains(FindFamily(family), fleet);
      report.Add(chains.family(), LayOut(chains, chains.Collect(kind, key, &maps)));
    }
  }
  // A browser runs the script in another check.
  std::string html = report.ToHtml();
  for (const std::string element : {"style", "script"}) {
    const std::size_t begin = html.find('<' + element + '>'), end = html.find("</" + element + '>');
    ASSERT_LT(begin, end);
    html.erase(begin, end - begin);
  }
  ExpectGolden(html, "report.html");
}

// Items that are set are not in the file.
TEST(Features, HaveThePlacesOfItemsInTheFile) {
  Matrix::Load("[B]\nk = 1\n[A]\nk = 2\n");
  host::Set("C", "k", 3);
  host::Set("C", "l", 4);
  const auto contents = host::List();
  const auto features = IndexFeatures({&contents});
  EXPECT_EQ(ToText(features, "f"), "k  int  f:2  A, B, C\nl  int       C\n");
  EXPECT_EQ(ToJson(features[0], "f"), R"({"key":"k","kind":"int","maps":["A","B","C"],"places":[)"
                                      R"({"map":"A","file":"f","line":4,"column":1},)"
                                      R"({"map":"B","file":"f","line":2,"column":1},)"
                                      R"({"map":"C","file":"f","line":null,"column":null}]})");
}

TEST(Completion, OffersTheRegionOfADeviceAndThenTheCarrier) {
  // Other tests write a fleet file beside their data.
  std::filesystem::create_directory(kTemporaryFolder.path + "/devices");
  const std::string data =
      TemporaryFile("devices/devices.toml", "[EU]\n[ES]\n[US]\n[COTA_X1]\n[SIM_N7]\n");
  const std::pair<std::string, Names> cases[] = {{"", {"/", "ES/", "EU/", "US/"}},
                                                 {"E", {"ES/", "EU/"}},
                                                 {"EU/", {"EU/N7", "EU/X1"}},
                                                 {"/X", {"/X1"}},
                                                 {"X", {}}};
  for (const auto& [typed, candidates] : cases) {
    EXPECT_EQ(Candidates({"", typed, ValueType::kDeviceOrKey, {{ValueType::kDataFile, data}}}),
              candidates)
        << typed;
  }
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
