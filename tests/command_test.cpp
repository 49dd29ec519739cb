// The cadrova command as its users run it. `ctest` does not run the suite FakePropertyStore over a
// real libbase.

#include "commands/command.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "commands/complete.h"
#include "common/text.h"
#include "files.h"
#include "lookup/families.h"
#include "output/table.h"
#include "run.h"
#include "utf8.h"

namespace {

using namespace cadrova::tools;

// The data if a test names no other.
const std::string kData = TemporaryFile("data.toml", "[DEFAULT]" + kItems + "[\"\"]" + kItems + R"(
[DEFAULT.a]
b.c = 1
"b.d" = 2
[EU]
float = 0.5
["COTA_X=1"]
float = 2.0
["COTA_X=1_EU"]
float = 1.0
)");

const std::string kSample = "CADROVA_HOST_DATA=" CADROVA_SOURCES "/host/data/sample.toml";

// `line` contains arguments, separated by "|". The argument "cadrova" is the path of the command.
ProgramResult Cadrova(const std::string& line,
                      const std::string& setting = "CADROVA_HOST_DATA=" + kData,
                      const std::string& out = "") {
  Words words;
  std::istringstream rest("cadrova|" + line + '|');
  for (std::string word; std::getline(rest, word, '|');) {
    words = words + (word == "cadrova" ? Words{CADROVA_COMMAND} : Words{word});
  }
  return RunProgram(words, {setting}, out);
}

// The command for a shell: its path, perhaps after an emulator.
const std::string kShellCommand =
    Join(Words{CADROVA_COMMAND}, " ", [](const std::string& word) { return '\'' + word + '\''; });

struct Case {
  std::string line, out, err = {};
  int status = 0;
};

// `start` is the start of each line.
void ExpectEach(const std::vector<Case>& cases, const std::string& start = "") {
  for (const auto& [line, out, err, status] : cases) {
    SCOPED_TRACE(line);
    Expect(Cadrova(start + line), out, err, status);
  }
}

void ExpectRefusal(const ProgramResult& result, const std::string& what) {
  const auto& [out, err, status] = result;
  EXPECT_NE(err.find(what), std::string::npos) << err;
  EXPECT_EQ(err.find('\n'), err.size() - 1) << err;
  EXPECT_EQ(std::pair(out, status), std::pair(std::string(), 2)) << err;
}

TEST(Get, PrintsOnlyTheValue) {
  const std::string missing = "cadrova: no map contains nope as ";
  const std::vector<Case> cases = {
      // clang-format off
      {"bool|bool", "true\n"}, {"int|int", "-2147483648\n"}, {"float|float", "0.35\n"},
      {"string|string", "a text of 24 characters.\n"}, {"string-array|string-array", "a\n\nc\n"},
      {"int-array|int-array", "2147483647\n0\n1\n2\n3\n4\n"}, {"int-array|none|--json", "[]\n"},
      {"map-array|map-array", "k=123456789\nk=\n=\n"}, {"float|float|--json", "0.35\n"},
      {"string-array|string-array|--json", "[\"a\",\"\",\"c\"]\n"},
      {"map-array|map-array|--json", "[[\"k\",\"123456789\"],[\"k\",\"\"],[\"\",\"\"]]\n"},
      // Keys of dotted keys, and of tables inside a map.
      {"int|a.b.c", "1\n"}, {"int|a.b.d", "2\n"},
      // Missing items, with a default and without.
      {"bool|int|true", "true\n"}, {"bool|nope|false", "false\n"},
      {"int|nope|-7", "-7\n"}, {"int||2147483647", "2147483647\n"},
      {"float|nope|--|-.5", "-0.5\n"}, {"float|nope|16777216", "16777216.0\n"},
      {"float|nope|--|-Inf", "-inf\n"}, {"float|nope|--json|--|-Inf", "\"-inf\"\n"},
      {"float|nope|nan|--format|json", "\"nan\"\n"}, {"float|float|--format|text", "0.35\n"}, {"string|nope|--|--x", "--x\n"},
      {"bool|nope", "false\n", missing + "bool; see cadrova explain\n", 1}, {"int|nope", "0\n", missing + "int; see cadrova explain\n", 1},
      {"float|nope", "0.0\n", missing + "float; see cadrova explain\n", 1}, {"string|nope", "\n", missing + "string; see cadrova explain\n", 1},
      {"string-array|nope", "", missing + "string-array; see cadrova explain\n", 1},
      {"int-array|nope", "", missing + "int-array; see cadrova explain\n", 1}, {"map-array|nope", "", missing + "map-array; see cadrova explain\n", 1},
      // clang-format on
  };
  ExpectEach(cases, "get|default|");
}

TEST(FakePropertyStore, GivesTheCodesThatAreNotOptions) {
  const std::string props =
      "# a device\n\nro.orvel.region=US\nro.orvel.region=EU\npersist.sys.cota.carrier=X=1\n";
  const std::string store = "CADROVA_HOST_PROPS=" + TemporaryFile("props", props);
  const std::array<std::string, 3> cases[] = {
      // clang-format off
      {"", "1.0\n", " exist with the carrier & region : 1.000000 \n"},
      {"|--carrier|", "0.5\n", " exist with the region : 0.500000 \n"},
      {"|--region|", "2.0\n", " exist with the carrier : 2.000000 \n"},
      {"|--region|eu|--carrier|X=1", "2.0\n", " exist with the carrier : 2.000000 \ncadrova: --region: no map uses region eu; did you mean EU?\n"}};
  // clang-format on
  for (const auto& [options, out, line_end] : cases) {
    Expect(Cadrova("get|carrier-region|float|float|--data|" + kData + options, store), out,
           "getCotaRegionCustFloatFeature" + line_end);
  }
}

TEST(FakePropertyStore, IsComparedWithTheMapsOnlyIfItIsRead) {
  const std::string store = "CADROVA_HOST_PROPS=" +
                            TemporaryFile("eu", "ro.orvel.region=eu\npersist.sys.cota.carrier=x=1");
  const std::string lookup = "|float|float|--json|--data|" + kData;
  for (const auto& [family, err] :
       {std::pair("default", ""),
        {"region", "cadrova: ro.orvel.region: no map uses region eu; did you mean EU?\n"}}) {
    EXPECT_EQ(Cadrova(std::string("explain|") + family + lookup, store).err, err);
  }
}

TEST(Get, UsesTheSimDataOfTheOptionsAndTheFileNamedFirst) {
  Expect(Cadrova("get|--sim|k=1|--sim|k=x=y|--sim|l=|sim|string|k|--carrier|X1"), "x=y\n",
         "getSimCustStringFeature exist with the carrier : x=y \n");
  Expect(Cadrova("get|default|int|int|--data|" + TemporaryFile("one.toml", "DEFAULT.int = 1")),
         "1\n", "");
}

TEST(Sample, IsUsedOnlyWithANote) {
  const std::string note =
      "cadrova: no data file is named, so the installed sample is used; name one with --data or "
      "CADROVA_HOST_DATA\n";
  for (const std::string line :
       {"get|default|int|camera.max_zoom", "explain|default|int|camera.max_zoom|--steps", "list",
        "matrix|default|int|camera.max_zoom"}) {
    const ProgramResult result = Cadrova(line, "CADROVA_HOST_DATA=");
    EXPECT_EQ(std::pair(result.err, result.status), std::pair(note, 0)) << line;
    const std::regex folder("/[^ ]*/");
    EXPECT_EQ(std::regex_replace(result.out, folder, ""),
              std::regex_replace(Cadrova(line, kSample).out, folder, ""))
        << line;
  }
  ExpectRefusal(Cadrova("check", "CADROVA_HOST_DATA="),
                "cadrova: no data file is named; name one as FILE or with CADROVA_HOST_DATA\n");
}

// A fleet file in the current folder is not that of standard input.
TEST(StandardInput, IsACustomizationFile) {
  const std::string old = TemporaryFile("old.toml", "DEFAULT.k = 1\n");
  std::filesystem::create_directories(kTemporaryFolder.path + "/here");
  TemporaryFile("here/cadrova.toml", "x\n");
  const struct {
    std::string script, out, err = {};
    int status = 0;
  } cases[] = {
      // clang-format off
      {"echo DEFAULT.k = 1 | \"$0\" get default int k --data -", "1\n"},
      {"echo DEFAULT.k = 2 | \"$0\" diff \"$1\" - --family sim", "int k by sim\n  1 DEFAULT (" + old + ":1) -> 2 DEFAULT (<stdin>:1): \"\" in \"\"\n1 feature changes, on 1 of 1 device\n", "", 1},
      {"echo DEFAULT.k = 2 | \"$0\" diff - \"$1\" --family sim --exit-zero", "int k by sim\n  2 DEFAULT (<stdin>:1) -> 1 DEFAULT (" + old + ":1): \"\" in \"\"\n1 feature changes, on 1 of 1 device\n"},
      {"echo x = 1 | \"$0\" check -", "<stdin>:1:1: error: x is outside every map; put it below a [MAP] line [value]\n", "", 1},
      {"printf 'x = 1\ny = 2\n' | \"$0\" list --data -", "", "<stdin>:1:1: x is outside every map; put it below a [MAP] line; 1 more error\n", 2},
      {"\"$0\" diff - - <\"$1\"", "", "cadrova: OLD and NEW can't both be standard input\n", 2},
      // What is left of an open file, and a closed one.
      {"{ head -c 1 >/dev/null; \"$0\" list --data -; } <\"$1\"", "k  int  <stdin>:1  EFAULT\n"},
      {"\"$0\" list --data - <&-", "", "<stdin>: can't be read: " + Reason(EBADF), 2},
      // clang-format on
  };
  for (const auto& [script, out, err, status] : cases) {
    SCOPED_TRACE(script);
    const std::string command = std::regex_replace(script, std::regex("\"\\$0\""), kShellCommand);
    Expect(RunProgram({"sh", "-c", "cd \"${1%/*}/here\"; " + command, "", old}), out, err, status);
  }
}

// Lookups go on, with a line for each code that may be wrong.
TEST(Fleet, IsComparedWithTheGivenCodes) {
  const std::string folder = kTemporaryFolder.path + "/fleet/", path = folder + "cadrova.toml";
  std::filesystem::create_directories(folder);
  const std::string data =
      TemporaryFile("fleet/data.toml", "[DEFAULT]\nk = 1\n[UK]\n[SIM_AURA]\n[COTA_X1]\n");
  const std::string in = "no device in " + path + " has ";
  const std::string devices = "devices = [['US', 'AURA'], ['UK', 'X1'], ['UK', '']]";
  const std::string matrix = "matrix|default|int|k|--csv|--carriers|";
  const std::string get = "get|default|int|k|--region|";
  const struct {
    std::string fleet, line, err;
    int status = 0;
  } cases[] = {
      // clang-format off
      {"", matrix + "aura,,AURO|--regions|UKK,US,R,uk", "--regions: no map uses region UKK; did you mean UK?\ncadrova: --regions: no map uses region uk; did you mean UK?\ncadrova: --carriers: no map uses carrier aura; did you mean AURA?\ncadrova: --carriers: no map uses carrier AURO; did you mean AURA?"},
      {"", matrix + " AURA ,\tX2|--regions| ", ""},
      {"carriers = ['AURA', 'X2']", matrix + "AURA,X22,X1|--regions|UK", "--carriers: " + in + "carrier X22\ncadrova: --carriers: " + in + "carrier X1"},
      {"regions = ['GB']", matrix + "|--regions|UK", "--regions: " + in + "region UK"},
      {devices, matrix + "AURA|--regions|UK, US", ""},
      {devices, matrix + "AURA,X1|--regions|UK,uS", "--regions: " + in + "region uS; did you mean US?", 2},
      {devices, matrix + "B", "--carriers: " + in + "carrier B", 2},
      {devices, matrix + "AURA|--regions|UK", in + "a region of --regions and a carrier of --carriers", 2},
      {"", get + "UKK|--carrier|AURAA", "--region: no map uses region UKK; did you mean UK?\ncadrova: --carrier: no map uses carrier AURAA; did you mean AURA?"},
      {"", get + "US|--carrier|AUR", ""}, {"", "explain|sim|int|k|--carrier|auraa|--sim|k=1", "--carrier: no map uses carrier auraa; did you mean AURA?"},
      {devices, get + "US|--carrier|AURA", ""}, {devices, get + "UK", ""},
      {devices, get + "US|--carrier|X1", in + "region US and carrier X1"},
      {devices, "explain|default|int|k|--json|--region|US|--carrier|", in + "region US and carrier \"\""},
      {devices, get + "UKK|--carrier|AURA", "--region: " + in + "region UKK; did you mean UK?"},
      {"regions = ['US']\ncarriers = ['']", "explain|default|int|k|--steps|--region|UK|--carrier|B", "--region: " + in + "region UK\ncadrova: --carrier: " + in + "carrier B"},
      {"region = []", get + "UK", path + ":1:1: unknown key region; did you mean regions?", 2},
      // clang-format on
  };
  for (const auto& [fleet, line, err, status] : cases) {
    SCOPED_TRACE(fleet + '\n' + line);
    std::filesystem::remove(path);
    if (!fleet.empty()) TemporaryFile("fleet/cadrova.toml", fleet + '\n');
    const std::string start = err.starts_with(path) ? "" : "cadrova: ";
    const ProgramResult result = Cadrova(line, "CADROVA_HOST_DATA=" + data);
    EXPECT_EQ(std::pair(result.err, result.status),
              std::pair(err.empty() ? "" : start + err + '\n', status));
  }
}

// The table of families has every lookup that the library exports; the other 8 exports are no
// lookups. A trace shows which function was called.
TEST(Lookup, IsThatOfItsFamilyAndKind) {
  const std::string exports = FileContents(CADROVA_SOURCES "/abi/exports.txt");
  int lookups = 0;
  for (const Family& family : Families()) {
    for (const auto kind : {Kind::kBool, Kind::kInt, Kind::kFloat, Kind::kString,
                            Kind::kStringArray, Kind::kIntArray, Kind::kMapArray}) {
      if (!family.Has(kind)) continue;
      const std::string function = family.FunctionName(kind);
      EXPECT_NE(exports.find(function), std::string::npos) << function;
      const ProgramResult traced =
          Cadrova(std::string("trace|--|cadrova|get|") + family.name + '|' + ToString(kind) + "|k");
      EXPECT_NE(traced.err.find(' ' + function + "(\"k\""), std::string::npos) << traced.err;
      ++lookups;
    }
  }
  EXPECT_EQ(std::ranges::count(exports, '\n'), lookups + 8);
}

// Each family is walked by the test of the library, and is in the README and its picture.
TEST(Lookup, IsTestedAndDocumented) {
  const std::string test = FileContents(CADROVA_SOURCES "/tests/library_test.cpp");
  const std::string readme = FileContents(CADROVA_SOURCES "/README.md");
  const std::string picture = FileContents(CADROVA_SOURCES "/docs/chains.svg");
  for (const auto& [name, infix, is_reported, lookups] : Families()) {
    const std::string row = std::string("| `") + name + "` | `get" + infix + "…Feature` |";
    EXPECT_NE(test.find("LOOKUPS(" + std::string(infix) + ')'), std::string::npos) << name;
    EXPECT_NE(readme.find(row), std::string::npos) << row;
    EXPECT_NE(picture.find(">" + std::string(name) + '<'), std::string::npos) << name;
  }
}

TEST(Explain, ShowsALookupAsTextStepsAndJson) {
  const std::string file = TemporaryFile(
      "explained.toml",
      "DEFAULT.ring = 30\nSIM_X1.ring = 1.5\nCOTA_X1.ring = 25\nCOTA_X1_EU.ring = 40\n");
  const std::string four = TemporaryFile("four.toml", "A.strin=1\nB.strin=1\nC.strin=1\nD.strin=1");
  const std::string lookup = "explain|sim|int|ring|7|--carrier|X1|--sim|other=1|--data|" + file;
  std::string text;
  for (const std::string& line : {lookup, lookup + "|--steps", lookup + "|--json",
                                  std::string("explain|default|string-array|nope|--json"),
                                  "explain|default|float|strin|nan|--data|" + four}) {
    const ProgramResult result = Cadrova(line);
    EXPECT_EQ(std::pair(result.err, result.status), std::pair(std::string(), 0)) << line;
    text += result.out;
  }
  text = std::regex_replace(text, std::regex(kTemporaryFolder.path + '/'), "");
  ExpectGolden(text, "explain.txt");
}

// What `explain` and `check` show for common errors of data authors.
TEST(Data, WithAnErrorIsExplainedAndReported) {
  const std::string data = "[DEFAULT]\nring.seconds = 30\n[COTA_X1]\nring.seconds = 25\n";
  const struct {
    std::string added, explained, finding;
    int status = 1;
  } cases[] = {
      // clang-format off
      {"[COTA_EU_X1]\nring.seconds = 40", "not in chain   COTA_EU_X1, similar to COTA_X1_EU\n", "5:2: error: no device consults COTA_EU_X1; did you mean COTA_X1_EU? [unknown-map]\n"},
      {"[cota_x1_eu]\nring.seconds = 40", "not in chain   cota_x1_eu, similar to COTA_X1_EU\n", "5:2: error: no device consults cota_x1_eu; did you mean COTA_X1_EU? [unknown-map]\n"},
      {"['COTA_X1_EU ']\nring.seconds = 40", "not in chain   \"COTA_X1_EU \", similar to COTA_X1_EU\n", "5:2: error: no device consults \"COTA_X1_EU \"; did you mean COTA_X1_EU? [unknown-map]\n"},
      {"[COTA_1X_EU]\nring.seconds = 40\n[A.ring]\nseconds = 1", "not in chain   COTA_1X_EU\n               A\n", "5:2: error: no device consults COTA_1X_EU; did you mean COTA_X1_EU? [unknown-map]\n7:2: error: no device consults A [unknown-map]\n"},
      {"[COTA_X1_EU]\nring.second = 40", "similar keys   ring.second in COTA_X1_EU\n", "6:6: warning: only COTA_X1_EU contains ring.second; did you mean ring.seconds? [misspelt-key]\n", 0},
      {"[COTA_X1_EU]\nRing.Seconds = 40", "similar keys   Ring.Seconds in COTA_X1_EU\n", "6:6: warning: only COTA_X1_EU contains Ring.Seconds; did you mean ring.seconds? [misspelt-key]\n", 0},
      {"[COTA_X1_EU]\nring.secnods = 40\n[EU]\nring.secnods = 40\nrnig.seconds = 1", "similar keys   ring.secnods in COTA_X1_EU and other maps\n               rnig.seconds in EU\n", "6:6: warning: redundant: without ring.secnods here, every lookup on every device returns the same [redundant-value]\n6:6: warning: ring.secnods is not in DEFAULT [not-in-default]\n9:6: warning: only EU contains rnig.seconds; did you mean ring.seconds? [misspelt-key]\n", 0},
      {"[COTA_X1_EU.ring]\nring.seconds = 40", "similar keys   ring.ring.seconds in COTA_X1_EU\n", "6:6: warning: only COTA_X1_EU contains ring.ring.seconds; did you mean ring.seconds? [misspelt-key]\n", 0},
      {"[COTA_X1_EU]\nring.seconds = '40'", "\n  COTA_X1_EU    string, not int         added.toml:6\n", "6:6: error: ring.seconds is a string here, but an int in DEFAULT, line 2 [kind-conflict]\n"},
      {"[COTA_X1_EU]\nring.seconds = 40.0", "\n  COTA_X1_EU    float, not int         added.toml:6\n", "6:6: error: ring.seconds is a float here, but an int in DEFAULT, line 2 [kind-conflict]\n"},
      {"[COTA_X1_EU]\nring.seconds = []", "\n  COTA_X1_EU    string-array, int-array, map-array, not int         added.toml:6\n", "6:6: error: ring.seconds is an empty list here, but an int in DEFAULT, line 2 [kind-conflict]\n"},
      {"[EU]\nrnig.seconds = 2\n[DEFAULT.rnig]\nseconds = 1\n[DEFAULT.rin]\nseconds = 1", "similar keys   rnig.seconds in EU and other maps\n               rin.seconds in DEFAULT\n", "", 0},
      // clang-format on
  };
  for (const auto& [added, explained, finding, status] : cases) {
    SCOPED_TRACE(added);
    const std::string file = TemporaryFile("added.toml", data + added + '\n');
    const ProgramResult result =
        Cadrova("explain|carrier-region|int|ring.seconds|--region|EU|--carrier|X1|--data|" + file);
    EXPECT_TRUE(result.out.starts_with("25, from COTA_X1\n")) << result.out;
    EXPECT_NE(result.out.find(explained), std::string::npos) << result.out;
    EXPECT_EQ(std::pair(result.err, result.status), std::pair(std::string(), 0));
    Expect(Cadrova("check|" + file + "|--regions|,EU|--carriers|,X1"),
           std::regex_replace(finding, std::regex("(^|\n)(?=[0-9])"), "$1" + file + ':'), "",
           status);
  }
}

// Runs the commands of a golden file in a new folder. A line ">> FILE" writes the lines below it,
// up to an empty one, to a file. A line "CORE$ COMMAND" or "$ COMMAND" is a command, over a core of
// the tests or over the fake one; what it prints and its exit status follow.
void ExpectTranscript(const std::string& name) {
  const std::string folder = kTemporaryFolder.path + '/' + name;
  std::filesystem::create_directories(folder);
  std::istringstream golden(FileContents(CADROVA_SOURCES "/tests/golden/" + name));
  std::string text;
  for (std::string line; std::getline(golden, line);) {
    std::smatch match;
    if (std::regex_match(line, match, std::regex(">> (.*)"))) {
      const std::string file = match[1];
      std::string contents;
      text += line + '\n';
      while (std::getline(golden, line) && !line.empty()) contents += line + '\n';
      std::ofstream(folder + '/' + file) << contents;
      text += contents + '\n';
    } else if (std::regex_match(line, match, std::regex("([a-z]*)\\$ (.*)"))) {
      const std::string core = match[1];
      const std::string command =
          std::regex_replace(match[2].str(), std::regex("cadrova (?=[a-z_])"), kShellCommand + ' ');
      const auto [out, err, status] =
          RunProgram({"sh", "-c", "cd \"$0\"; " + command, folder},
                     {core.empty() ? "A=" : "LD_LIBRARY_PATH=" CADROVA_CORES + core});
      text += line + '\n' + out + err + "status " + std::to_string(status) + "\n\n";
    }
  }
  ExpectGolden(std::regex_replace(text, std::regex("(^|\n)[0-9]+ (?=get|lookup)"), "$1PID "), name);
}

// Over cores that are not the fake one, the command prints only what these return.
TEST(OtherCore, IsDescribedAsItIs) { ExpectTranscript("other_cores.txt"); }

TEST(Device, GetsWhatIsShown) { ExpectTranscript("device.txt"); }

TEST(Check, ReportsEachFindingByName) { ExpectTranscript("check.txt"); }

TEST(Check, ComparesLookupsWithTheData) { ExpectTranscript("lookups.txt"); }

TEST(Diff, ShowsWhichDevicesChangeAndHow) { ExpectTranscript("diff.txt"); }

TEST(List, ShowsFeaturesTheirPlacesAndMaps) { ExpectTranscript("list.txt"); }

// Every cell is the result of a lookup on that device alone.
TEST(Matrix, ShowsWhatEachDeviceGets) {
  for (const std::string lookup :
       {"default|bool|calling.volte", "region|float|radio.signal_smoothing",
        "carrier|map-array|apn.list", "carrier-region|string|ui.theme",
        "sim|int|calling.ring_seconds", "sim|bool|nope"}) {
    std::string cells;
    for (const std::string region : {"", "US", "EU"}) {
      for (const std::string carrier : {"X1", ""}) {
        const std::string device = "|--region|" + region + "|--carrier|" + carrier;
        const std::string explained = Cadrova("explain|--json|" + lookup + device, kSample).out;
        const std::regex result(R"re(.*("value":.*),"answered_by":([^,]*),.*\n)re");
        cells += cells.empty() ? "[\n" : ",\n";
        cells += R"({"region":")" + region + R"(","carrier":")" + carrier + "\"," +
                 std::regex_replace(explained, result, "$1,\"map\":$2}");
      }
    }
    const std::string codes = "|--regions|,US,EU,US|--carriers|X1,";
    EXPECT_EQ(Cadrova("matrix|--json|" + lookup + codes, kSample).out, cells + "\n]\n");
  }
  for (const std::string format : {"--csv", "--format|csv", "--format=csv"}) {
    Expect(Cadrova("matrix|region|int|nope|--regions||--carriers||" + format),
           "region,carrier,value,map\n\"\",\"\",0,\n", "cadrova: no map contains nope as int\n", 1);
  }
  const std::string page = TemporaryFile("page.html", "");
  const std::pair<const char*, const char*> pages[] = {
      {"",
       "<section id=\"a.b.c:int\" class=constant><h2><a href=\"#a.b.c:int\">a.b.c</a> "
       "<small>int</small></h2>\n<h3>by carrier-region and sim</h3>\n<div>\n<table>"},
      {"|region|int|int", "int</a> <small>int</small></h2>\n<h3>by region</h3>\n<div>\n<table>"}};
  for (const auto& [feature, part] : pages) {
    ExpectEach({{"matrix|--html|" + page + feature, ""}});
    EXPECT_NE(FileContents(page).find(part), std::string::npos);
  }
}

// 12 carriers, some with CJK characters, an emoji and a combining mark, as keys have.
const std::string kScreenData = TemporaryFile("screen.toml", R"(
[DEFAULT]
ring = 30
"着信.リング" = "漢字かな交じりの長い文字列です"
"smile😀.key" = ["one", "two words", "three", "four", "five, six", "seven"]
"café" = 1
[EU]
ring = "25"
"着信.リング" = "é́"
[JP]
"smile😀.key" = ["a"]
[COTA_R1]
ring = 1
[COTA_R2]
ring = 2
"café" = 3
[COTA_R10]
ring = 10
[COTA_X1]
ring = 11
["COTA_携帯電話"]
ring = 12
"着信.リング" = "x"
"café" = 3
["COTA_😀"]
ring = 13
"café" = 3
["COTA_é"]
ring = 14
"café" = 3
[COTA_AURA]
ring = 15
"café" = 3
[COTA_BLUE_SKY]
ring = 16
"café" = 3
[COTA_N7]
ring = 17
"smile😀.key" = []
[COTA_N7_US]
ring = 18
[COTA_KITE]
ring = 19
"café" = 3
[COTA_ZED]
ring = 20
"smile😀.key" = ["a", "much longer list of texts", "with more than one line", "and 漢字"]
"café" = 3
[COTA_X1_JP]
ring = 21
)");

// Without the carriage returns of the terminal, and with visible colors.
std::string Shown(const std::string& line, const std::string& setting) {
  const std::string text =
      ShownOnTerminal([&](const std::string& terminal) { Cadrova(line, setting, terminal); });
  return std::regex_replace(std::regex_replace(text, std::regex("\r"), ""),
                            std::regex("\x1B\\[([0-9;]*)m"), "<$1>");
}

// The golden file has screens of all widths; no line is wider.
TEST(Screen, FitsTheTerminal) {
  const std::string lookups = "|--color|always|--data|" + kScreenData;
  std::string text;
  for (const std::size_t width : {50U, 80U, 200U}) {
    const std::string columns = "COLUMNS=" + std::to_string(width);
    for (const std::string line :
         {"list", "matrix|carrier-region|int|ring", "matrix|sim|string-array|smile😀.key",
          "matrix|region|string|着信.リング", "help|trace", "help|matrix", "help"}) {
      const std::string shown = Shown(line + (line.starts_with("help") ? "" : lookups), columns);
      // Other help texts change more often.
      const bool is_golden = !line.starts_with("help") || line == "help|trace";
      if (is_golden) text += columns + "$ cadrova " + line + '\n' + shown + '\n';
      std::istringstream lines(std::regex_replace(shown, std::regex("<[0-9;]*>"), ""));
      for (std::string shown_line; std::getline(lines, shown_line);) {
        EXPECT_LE(DisplayWidth(shown_line), width) << shown_line;
      }
    }
  }
  ExpectGolden(text, "screens.txt");
}

// Characters that may change what a terminal shows, and similar ones that do not.
const std::string kUnsafe = "\x1B[2J\x7F\xC2\x9B\u061C\u200F\u202E\u2066";
const std::string kEscapes = "\\u001b[2J\\u007f\\u009b\\u061c\\u200f\\u202e\\u2066";

// The first unsafe character of `text` except these, as a number, or 0.
int FindUnsafe(std::string_view text, std::string_view expected = "\n") {
  while (!text.empty()) {
    const auto [code, size] = cadrova::host::FirstCharacter(text);
    if (cadrova::host::IsUnsafe(code) && expected.find(text[0]) == std::string_view::npos) {
      return static_cast<int>(code);
    }
    text.remove_prefix(size);
  }
  return 0;
}

TEST(UnsafeCharacter, IsEscaped) {
  const std::string name = "x" + kUnsafe, lone = name + "\x9B";
  const std::string quoted = "\"x" + kEscapes + '"';  // in TOML
  const auto item = [&](const std::string& value) { return quoted + " = " + value + '\n'; };
  const std::string file = TemporaryFile(
      name + ".toml", "[DEFAULT]\n" + item(quoted) + "list = [" + quoted + "]\n[" + quoted + "]\n" +
                          item("1") + "[COTA_X1]\n" + item("'X1'") + "list = []\n");
  const std::string bad = TemporaryFile(lone + ".toml", "[DEFAULT]\n" + item("1979-01-01"));
  const std::string old = TemporaryFile("old.toml", "[DEFAULT]\nlist = ['a']\n");
  const std::string data = "|--data|" + file, use = '|' + name + data;
  const std::string device = "|--region|" + name + "|--carrier|" + lone;
  const std::string sim = "|sim|string|" + lone + "|--sim|" + lone + '=' + lone + device + data;
  const Words lines = {// clang-format off
      "list" + data, "list|--json" + data, "list|" + lone + data, "list|--data|" + bad,
      "check|" + file, "check|--json|" + file, "check|" + bad, "check|--json|" + bad,
      "check|--format|sarif|--regions||--carriers|X1|" + file,
      "diff|" + old + '|' + file, "diff|--json|" + old + '|' + file, "diff|--format|markdown|" + old + '|' + file,
      "matrix|region|string|--regions|," + name + use, "matrix|region|string|--carriers|" + lone + use,
      "matrix|region|string|--json" + use, "matrix|--html|-" + data, "matrix|--html|" + lone + "/x" + data,
      "explain|region|string|--json" + use, "explain|sim|string" + use + device,
      "explain" + sim, "explain|--steps" + sim,
      "get|region|int|k|" + lone, "get|default|int|" + lone + data, "help|" + lone, lone,
      "trace|-o|/nowhere/" + lone + "|true", "trace|" + lone,
      "trace|--summary|--|cadrova|explain" + sim, "trace|--steps|--|cadrova|explain" + sim};
  // clang-format on
  for (const std::string& line : lines) {
    const ProgramResult result = Cadrova(line);
    EXPECT_EQ(FindUnsafe(result.out), 0) << line << '\n' << result.out;
    EXPECT_EQ(FindUnsafe(result.err), 0) << line << '\n' << result.err;
    EXPECT_NE((result.out + result.err).find("\\u202e"), std::string::npos) << line;
  }
}

// On a pipe, they are data.
TEST(UnsafeCharacter, OfDataIsEscapedOnlyOnATerminal) {
  const std::string value = kUnsafe + "\t1\n2";
  const std::string csv = "region,carrier,value,map\n\"\",\"" + kUnsafe + "\",0,\n";
  const std::string line = "getSimCustStringFeature exist with the carrier : ";
  const std::string get = "get|sim|string|k|--carrier|X|--sim|k=" + value;
  const std::string matrix = "matrix|region|int|k|--csv|--regions||--carriers|" + kUnsafe;
  Expect(Cadrova(get), value + '\n', line + value + " \n");
  Expect(Cadrova(matrix), csv, "cadrova: no map contains k as int\n", 1);
  const auto escaped = [](const std::string& text) {
    std::string result = text;
    result.replace(result.find(kUnsafe), kUnsafe.size(), kEscapes);
    return result;
  };
  EXPECT_EQ(Shown(get, "A="), escaped(value) + '\n');
  EXPECT_EQ(Shown(matrix, "A="), escaped(csv));
  const std::string shown = ShownOnTerminal([&](const std::string& terminal) {
    RunProgram({"sh", "-c", "\"$@\" 2>&1 >/dev/null", "", CADROVA_COMMAND, "get", "sim", "string",
                "k", "--carrier", "X", "--sim", "k=" + value},
               {"CADROVA_HOST_DATA=" + kData}, terminal);
  });
  EXPECT_EQ(std::regex_replace(shown, std::regex("\r"), ""), line + escaped(value) + " \n");
}

TEST(Explain, IsColoredOnlyOnATerminal) {
  for (const std::string setting : {"A=", "NO_COLOR=", "NO_COLOR=1"}) {
    const std::string shown = ShownOnTerminal([&](const std::string& terminal) {
      Cadrova("explain|default|int|int|--data|" + kData, setting, terminal);
    });
    EXPECT_EQ(shown.find("\x1B[1m> DEFAULT") != std::string::npos, setting != "NO_COLOR=1")
        << shown;
  }
}

// No file that is opened may take the number of a closed stream.
TEST(Command, WorksWithClosedStandardStreams) {
  const std::string get = "\"$@\" get region int int", file = TemporaryFile("file", "");
  const std::string script = get + " 2>&1 >&-; echo $?; " + get +
                             " 2>&- <&-; echo $?; \"$@\" trace -o " + file +
                             " ./nowhere >&- 2>&-; echo $?";
  Expect(RunProgram({"sh", "-c", script, "", CADROVA_COMMAND}, {"CADROVA_HOST_DATA=" + kData}),
         "getRegionCustIntFeature exist with the region : -2147483648 \n"
         "cadrova: can't write to standard output: " +
             Reason(EBADF) + "2\n-2147483648\n0\n127\n",
         "");
  EXPECT_EQ(FileContents(file), "");
}

TEST(Command, RefusesWithOneLineThatSaysWhy) {
  const std::string bad = TemporaryFile("bad.toml", "[DEFAULT]\nx = 2026-11-24\n");
  const std::string not_utf8 = TemporaryFile("latin.toml", "[DEFAULT]\nx = \"\xE9\"\n");
  const std::string huge = TemporaryFile("huge", "");
  std::filesystem::resize_file(huge, (1U << 30) + 1);
  const std::string int_k = "get|default|int|k", region_k = "get|region|int|k";
  const struct {
    std::string line, what, setting = kSample;
    const char* out_file = "";
  } cases[] = {
      // clang-format off
      {"nope", "cadrova: unknown command 'nope'; use one of: explain, device, get, list, matrix, diff, check, trace, help\n"},
      {"", "cadrova: unknown command ''"}, {"help|nope", "unknown command 'nope'"},
      {"--nope", "--nope; put arguments that start with \"-\" after \"--\"; see cadrova --help\n"},
      {"get|default|int", "KEY is required; see cadrova get --help\n"},
      {"get|defalt|int|k", "unknown family 'defalt'; use one of: default, region, carrier, carrier-region, sim\n"},
      {"get|sim|integer|k", "unknown kind 'integer'; use one of: bool, int, float, string, string-array, int-array, map-array\n"},
      {int_k + "|12abc", "default '12abc' is not an int; use decimal digits\n"},
      {int_k + "|", "default '' is not an int"},
      {int_k + "|3000000000", "default '3000000000' is out of the range of a 32-bit int\n"},
      {"get|default|bool|k|1", "default '1' is not a bool; use true or false\n"},
      {"get|default|float|k|1x", "default '1x' is not a float; write it like 0.5 or 1e3\n"},
      {"get|default|float|k| 1", "default ' 1' is not a float"},
      {"get|default|float|k|", "default '' is not a float"},
      {"get|default|float|k|1e39", "default '1e39' is out of the range of a 32-bit float\n"},
      {"get|sim|int-array|k|x", "default 'x' is refused: list kinds take no default; a missing list is empty\n"},
      {int_k + "|1|-2", "not expected: -2; put arguments that start with \"-\" after \"--\"; see cadrova get --help\n"},
      {int_k + "|--jsn", "not expected: --jsn"}, {int_k + "|a\nb", "default 'a\\u000ab' is not an int"},
      {region_k + "|--region|--carrier|X1", "--region: a value is missing before '--carrier'; see"},
      {"get|sim|int|k|1|--sim|a=b|z=y", "not expected: z=y; see cadrova get --help\n"},
      {"matrix|region|int|k|--region|EU", "cadrova: not expected: --region EU; put arguments"},
      {region_k + "|--region", "cadrova: --region needs a value; see cadrova get --help\n"},
      {region_k + "|--region|A|--region|B", "cadrova: --region is given more than once; see"},
      {int_k + "|--json=2", "cadrova: --json takes no value; see"},
      {"explain|sim|int|k|--json|--steps", "--json and --steps can't be combined\n"},
      {"matrix", "cadrova: give FAMILY, KIND and KEY; or none of them, with --html\n"},
      {"matrix|region|int|--html|page", "cadrova: give FAMILY, KIND and KEY"},
      {"matrix|region|int|k|--json|--csv", "--json and --csv can't be combined\n"},
      {"matrix|region|int|k|--csv|--html|page", "--csv and --html can't be combined\n"},
      {"matrix|region|int|k|--format|csv|--html|page", "--format and --html can't be combined\n"},
      {"matrix|region|int|k|--revision|1", "cadrova: --revision needs --html; "},
      {"matrix|region|int|k|--format|xml", "cadrova: --format: unknown format 'xml'; use one of: text, json, csv\n"},
      {"explain|sim|int|k|--format|text|--steps", "--format and --steps can't be combined\n"},
      {"list|--format|csv", "--format: unknown format 'csv'; use one of: text, json\n"},
      {int_k + "|--json|--format|json", "--format and --json can't be combined\n"},
      {int_k + "|1|--format|", "unknown format ''; use one of: text, json\n"},
      {"matrix|region|int|k|--html|/nowhere/page", "cadrova: --html /nowhere/page: " + Reason(ENOENT)},
      {"matrix|region|int|k|--html|/tmp", "cadrova: --html /tmp: " + Reason(EISDIR)},
      {"matrix|region|int|k|--html|/dev/full", "cadrova: --html /dev/full: " + Reason(ENOSPC)},
      {"check|/nowhere", "/nowhere: can't be read: " + Reason(ENOENT)},
      {"diff|/nowhere|" + kData, "/nowhere: can't be read: " + Reason(ENOENT)},
      {"trace|--steps", "PROGRAM is required; see cadrova trace --help\n"},
      {"trace|--steps|--summary|--|true", "--steps and --summary can't be combined\n"},
      {"trace|-o|/nowhere/x|true", "cadrova: -o /nowhere/x: " + Reason(ENOENT)},
      {"get|default|string|k|\xE9|--json", "JSON can't contain text that is not UTF-8; use --format text\n"},
      {"get|sim|float|k", "the sim family has no float lookup; use carrier-region\n"},
      {"get|sim|string|k|x", "the sim family takes no default for a string; a missing one is empty\n"},
      {"get|sim|int|k|--sim|x", "--sim: 'x' is not KEY=VALUE\n"},
      {int_k + "|--data|", "cadrova: the name of the customization file is empty\n"},
      {int_k + "|--data|a\nb", "a\\u000ab: can't be read: " + Reason(ENOENT)},
      {int_k + "|--data|/tmp", "/tmp: can't be read: " + Reason(EISDIR)},
      {int_k + "|--data|/proc/self/mem", "/proc/self/mem: can't be read: " + Reason(EIO)},
      {int_k + "|--data|" + huge, huge + ": can't be read: it is larger than 1 GiB\n"},
      {int_k + "|--data|" + bad, bad + ":2:5: a date"},
      {int_k + "|--data|" + not_utf8, not_utf8 + ":2:6: not UTF-8 text"},
      {int_k + "|1", "cadrova: can't write to standard output: " + Reason(ENOSPC), kSample, "/dev/full"},
      {"--version", "can't write to standard output", kSample, "/dev/full"},
      {"get|--help", "can't write to standard output", kSample, "/dev/full"},
      // clang-format on
  };
  for (const auto& [line, what, setting, out_file] : cases) {
    ExpectRefusal(Cadrova(line, setting, out_file), what);
  }
}

// Runs `script` in an empty folder, with the command as "$@".
ProgramResult RunInEmptyFolder(const std::string& script) {
  const std::string folder = kTemporaryFolder.path + "/folder";
  std::filesystem::remove_all(folder);
  std::filesystem::create_directory(folder);
  return RunProgram(Words{"sh", "-c", "cd \"$0\"; " + script, folder, CADROVA_COMMAND},
                    {"CADROVA_HOST_DATA=" + kData});
}

TEST(Output, ReplacesNoInput) {
  const std::string files =
      "echo DEFAULT.k=1 >d; echo a=b >p; echo text >t; ln d hard; ln -s d soft\n"
      "export CADROVA_HOST_DATA=d CADROVA_HOST_PROPS=p; \"$@\" ";
  const std::pair<std::string, std::string> cases[] = {
      // clang-format off
      {"matrix --html d", "cadrova: --html d: this would overwrite the input d; name another file\n"},
      {"matrix --data hard --html ./d", "--html ./d: this would overwrite the input hard;"},
      {"matrix --data soft --html hard", "--html hard: this would overwrite the input soft;"},
      {"matrix region int k --html soft", "--html soft: this would overwrite the input d;"},
      {"matrix --data /dev/stdin --html d <d", "--html d: this would overwrite the input /dev/stdin;"},
      {"matrix --html - >>d", "--html /dev/stdout: this would overwrite the input d;"},
      {"matrix --html /proc/self/fd/7 7<>d", "--html /proc/self/fd/7: this would overwrite the input d;"},
      {"matrix --data - --html d <d", "--html d: this would overwrite the input /dev/stdin;"},
      {"matrix --data - --html - <d >>d", "--html /dev/stdout: this would overwrite the input /dev/stdin;"},
      {"trace -o t -- cat --x=./t", "-o t: this would overwrite the input ./t;"},
      {"trace -o t cat <t", "-o t: this would overwrite the input /dev/stdin;"},
      {"matrix --html p", "--html p: this would overwrite the input p;"},
      {"trace -o hard true", "cadrova: -o hard: this would overwrite the input d;"},
      {"trace -o p true", "-o p: this would overwrite the input p;"},
      {"trace -o t cat ./t", "-o t: this would overwrite the input ./t;"},
      {"trace -o ./t ./t", "-o ./t: this would overwrite the input ./t;"},
      // clang-format on
  };
  for (const auto& [line, what] : cases) {
    SCOPED_TRACE(line);
    ExpectRefusal(RunInEmptyFolder(files + line), what);
    Expect(
        RunProgram({"sh", "-c", "cd \"$0\"; cat d p t; ls -A", kTemporaryFolder.path + "/folder"}),
        "DEFAULT.k=1\na=b\ntext\nd\nhard\np\nsoft\nt\n", "");
  }
}

TEST(Matrix, SaysInTheReportWhichDataItShows) {
  const std::string data = "echo DEFAULT.k=1 >d; touch -d @1234567890 d; ",
                    report = "\"$@\" matrix --data d --html - --revision '<1'",
                    source = " | grep -F '<b>d</b>'";
  const std::string revision = " UTC</time>, revision <b>&lt;1</b>\n",
                    start = "<p class=\"about\"><b>d</b>, changed <time datetime=";
  Expect(RunInEmptyFolder(data + "unset SOURCE_DATE_EPOCH; " + report + source),
         start + "2009-02-13T23:31:30Z>2009-02-13 23:31:30" + revision, "");
  Expect(RunInEmptyFolder(data + "SOURCE_DATE_EPOCH=86400 " + report + source),
         start + "1970-01-02T00:00:00Z>1970-01-02 00:00:00" + revision, "");
  for (const std::string epoch : {"x", "-1", "1.5", "253402300800"}) {
    ExpectRefusal(RunInEmptyFolder(data + "SOURCE_DATE_EPOCH=" + epoch + ' ' + report),
                  "cadrova: SOURCE_DATE_EPOCH is " + epoch + "; it must be a number of seconds");
  }
}

TEST(Output, IsWrittenToEveryKindOfFile) {
  const std::vector<Case> cases = {
      // clang-format off
      {R"(ln -s new link; "$@" matrix --html link; head -n 1 new; ls -AF)", "<!doctype html>\nlink@\nnew\n"},
      {R"(echo old >a; ln a b; ln -s ../folder/a c; "$@" matrix --html c; head -n 1 a b; ls -AF)",
       "==> a <==\n<!doctype html>\n\n==> b <==\nold\na\nb\nc@\n"},
      {R"(umask 27; echo >a; chmod 604 a; for i in a b; do "$@" matrix --html $i; stat -c %a $i; done)", "604\n640\n"},
      {R"(echo old >a; ulimit -f 1; "$@" matrix --html a; echo $?; cat a; ls -A)", "2\nold\na\n", "cadrova: --html a: " + Reason(EFBIG)},
      {R"(mkfifo a; grep -c doctype a & "$@" matrix --html a; wait; ls -AF)", "1\na|\n"},
      {R"({ "$@" matrix --html -; echo doctype; "$@" matrix --html /dev/stdout; } >a; grep -c doctype a; ls -A)", "3\na\n"},
      {R"({ echo doctype >&7; "$@" matrix --html /dev/fd/7; } 7>a; grep -c doctype a; ls -A)", "2\na\n"},
      // clang-format on
  };
  for (const auto& [script, out, err, status] : cases) {
    const bool has_limit = script.find("ulimit") != std::string::npos;
    if (has_limit && std::string(CADROVA_SANITIZERS) == "thread")
      continue;  // It needs large files.
    SCOPED_TRACE(script);
    Expect(RunInEmptyFolder(script), out, err, status);
  }
}

TEST(FakePropertyStore, RefusesABadFileWithOneLineThatSaysWhy) {
  const std::string region_k = "get|region|int|k|--data|" + kData, store = "CADROVA_HOST_PROPS=";
  ExpectRefusal(
      Cadrova(region_k, store + "/tmp"),
      "/tmp: can't be read: " + Reason(EISDIR, "; name another file with CADROVA_HOST_PROPS\n"));
  for (const std::string line :
       {"no equals sign", "=b", "a b=c", "[a]: [b", "[a]=b", "[]: [b]", "a=b\rc=d", "a\x7F=b"}) {
    const std::string file = TemporaryFile("properties", "a=b\n" + line + "\n");
    const std::string quoted = std::regex_replace(
        std::regex_replace(line, std::regex("\r"), "\\u000d"), std::regex("\x7F"), "\\u007f");
    ExpectRefusal(Cadrova(region_k, store + file),
                  file + ":2: not a key=value line: " + quoted + '\n');
  }
}

TEST(Command, HasAFileOfItsName) {
  std::set<std::string> names = {"command_line", "commands", "complete", "format_option",
                                 "shared_options"},
                        files;
  for (const CommandInfo& command : Commands()) names.insert(command.name);
  for (const auto& file :
       std::filesystem::directory_iterator(CADROVA_SOURCES "/tools/cadrova/commands")) {
    if (file.path().extension() == ".cpp") files.insert(file.path().stem());
  }
  EXPECT_EQ(names, files) << "commands.cpp lists each command";
}

// Each option that takes a value of a type in capital letters has completions.
void ExpectCompletionOfEachOption(const std::string& command, const std::string& help) {
  const std::regex option("\n  (-[a-z-]+) ([A-Z=]+) ");
  for (std::sregex_iterator match(help.begin(), help.end(), option), end; match != end; ++match) {
    const std::string name = (*match)[1], type = (*match)[2];
    const IncompleteWord word = ParseIncomplete({command, name, ""});
    const bool is_file = type == "FILE", is_free = type == "KEY=VALUE" || type == "TEXT";
    EXPECT_EQ(word.completion == Completion(ValueType::kFile) ||
                  word.completion == Completion(ValueType::kDataFile),
              is_file)
        << command << name;
    EXPECT_EQ(Candidates(word).empty(), is_file || is_free) << command << name;
  }
}

// The manual page and the completions mention exactly the options, commands, families and kinds of
// the help texts.
TEST(Help, AgreesWithTheManualAndTheCompletions) {
  std::string names = KindNames() + ", " + FamilyNames(), helps = Cadrova("--help").out;
  const auto mentions = [](const std::string& text, const std::string& words) {
    const std::regex mention("(^|[^a-z-])(" + words + ")(?![a-z-])");
    std::set<std::string> found;
    for (std::sregex_iterator word(text.begin(), text.end(), mention), end; word != end; ++word) {
      found.insert((*word)[2]);
    }
    return Join(found);
  };
  for (const CommandInfo& command : Commands()) {
    const std::string name = command.name;
    names += ", " + name;
    const ProgramResult help = Cadrova(name + "|--help");
    Expect(Cadrova("help|" + name), help.out, "");
    EXPECT_EQ(help.out.find("\n\n\n"), std::string::npos);
    EXPECT_FALSE(help.out.ends_with("\n\n"));
    helps += help.out;
    const std::string options = "--?[a-z][a-z-]*";
    const std::string listed = help.out.substr(help.out.find("\nOptions:"));
    EXPECT_EQ(mentions(Cadrova("__complete|" + name + "|-").out, options),
              mentions(std::regex_replace(listed, std::regex("  +[A-Z][a-z].*"), ""), options));
    ExpectCompletionOfEachOption(name, help.out);
    std::smatch formats;
    if (std::regex_search(help.out, formats, std::regex("Output format: ([a-z, ]+) \\("))) {
      Expect(Cadrova("__complete|" + name + "|--format|"),
             std::regex_replace(formats[1].str(), std::regex(", "), "\n") + "\n:words\n", "");
    }
  }
  Expect(Cadrova("help"), Cadrova("--help").out, "");
  Expect(Cadrova("--version"), CADROVA_VERSION "\n", "");
  const std::string words = "--[a-z]+|" + std::regex_replace(names, std::regex(", "), "|");
  const std::string manual = std::regex_replace(
      FileContents(CADROVA_SOURCES "/tools/cadrova/share/cadrova.1"), std::regex("\\\\-"), "-");
  EXPECT_EQ(mentions(manual, words), mentions(helps, words));
}

TEST(Completion, OffersWhatMayFollow) { ExpectTranscript("complete.txt"); }

// What bash inserts, one per line, after the options that it is told to complete with.
TEST(Completion, IsQuotedInBash) {
  const std::string data = TemporaryFile("quoted.toml", R"(
DEFAULT = {'a b' = 1, "it's" = 1, 'x:y' = 1, 'x:z w' = 1, 'k=v' = 1, 'pa(r' = 1}
['A B']
[EU]
)");
  const struct {
    std::string words;  // as bash splits them, with "|" between them; a blank is one of the line
    std::string completed;
  } cases[] = {
      // clang-format off
      {"li", "list"}, {"list| |a", "a\\ b"}, {"list| |a\\ ", "a\\ b"}, {"list| |\"a", "-o filenames\na b"},
      {"list| |it", "it\\'s"}, {"list| |'it", "-o filenames\nit's"}, {"list| |x|:", "y\nz\\ w"}, {"list| |x|:|z", "z\\ w"},
      {"list| |k|=", "v"}, {"list| |pa", "pa\\(r"}, {"list| |--format|=|j", "json"}, {"list| |--map|=", "A\\ B\nDEFAULT\nEU"},
      {"matrix| |--regions| |EU,", "EU,A\\ B"}, {"list| |nope", ""}, {"check| |x", "-o default"}, {"check| |--fleet|=|x", "-o default"},
      {"diff| |<(git| |show| |HEAD:a)| |b", "-o default"}, {"trace| |ls| |", "-o default"}, {"trace| |env-not-there", "-o default -o filenames"},
      // clang-format on
  };
  const std::string script = "cadrova() { " + kShellCommand + R"( "$@"; }
compopt() { echo "$@"; }
. "$0"
IFS='|'
for word in cadrova ' ' $1; do
  COMP_LINE+=$word
  [[ $word == ' ' ]] || COMP_WORDS+=("$word")
done
[[ $COMP_LINE != *' ' || $word == *'\\ ' ]] || COMP_WORDS+=('')
COMP_CWORD=$((${#COMP_WORDS[@]} - 1))
_cadrova cadrova
printf '%s\n' "${COMPREPLY[@]}")";
  for (const auto& [words, completed] : cases) {
    SCOPED_TRACE(words);
    const std::string completion = CADROVA_SOURCES "/tools/cadrova/share/completion.bash";
    const Words bash = {"bash", "-c", script, completion, words};
    const ProgramResult result = RunProgram(bash, {"CADROVA_HOST_DATA=" + data});
    EXPECT_EQ(result.out.substr(0, result.out.find_last_not_of('\n') + 1), completed);
    EXPECT_EQ(result.err, "");
  }
}

}  // namespace
