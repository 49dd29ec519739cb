// What the cadrova command says of one device.

#include "command.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <regex>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace {

TEST(Command, PrintsTheValueAlone) {
  const std::pair<const char*, const char*> cases[] = {
      // clang-format off
      {"bool|bool", "true\n"}, {"int|int", "-2147483648\n"}, {"float|float", "0.35\n"},
      {"string|string", "a text of 24 characters.\n"}, {"string-array|string-array", "a\n\nc\n"},
      {"int-array|int-array", "2147483647\n0\n1\n2\n3\n4\n"},
      {"map-array|map-array", "k=123456789\nk=\n=\n"}, {"float|float|--json", "0.35\n"},
      {"string-array|string-array|--json", "[\"a\",\"\",\"c\"]\n"},
      {"map-array|map-array|--json", "[[\"k\",\"123456789\"],[\"k\",\"\"],[\"\",\"\"]]\n"},
      // Feature keys of dotted keys, and of tables inside a map.
      {"int|a.b.c", "1\n"}, {"int|a.b.d", "2\n"},
      // Missing items that have a default.
      {"bool|int|true", "true\n"}, {"bool|nope|false", "false\n"},
      {"int|nope|-7", "-7\n"}, {"int||2147483647", "2147483647\n"},
      {"float|nope|--|-.5", "-0.5\n"}, {"float|nope|16777216", "16777216\n"},
      {"float|nope|--|-Inf", "-inf\n"}, {"string|nope|--|--x", "--x\n"},
      // clang-format on
  };
  for (const auto& [question, out] : cases) {
    Expect(Cadrova(std::string("get|default|") + question), out, "");
  }
}

TEST(Command, SaysThatNoMapHoldsAnItem) {
  const std::pair<const char*, const char*> cases[] = {
      {"bool|", "false\n"},  {"int|", "0\n"},    {"float|", "0\n"}, {"string|", "\n"},
      {"string-array|", ""}, {"int-array|", ""}, {"map-array|", ""}};
  for (const auto& [kind, out] : cases) {
    const std::string name = kind;
    Expect(Cadrova("get|default|" + name + "nope"), out,
           "cadrova: no map holds nope as " + name.substr(0, name.size() - 1) +
               "; see cadrova explain\n",
           1);
  }
  Expect(Cadrova("get|default|int-array|none|--json"), "[]\n", "");  // It is held, and empty.
}

// Which function was called is seen from outside.
TEST(Command, AsksTheLookupOfEachFamilyAndKind) {
  const std::vector<std::array<std::string, 3>> kinds = {
      // clang-format off
      {"bool", "Boolean", "true"}, {"int", "Int", "5"}, {"float", "Float", ""},
      {"string", "String", "x"}, {"string-array", "StringArray", "[\"x\"]"},
      {"int-array", "IntArray", "[5]"}, {"map-array", "MapArray", "[[\"x\", \"5\"]]"}};
  // clang-format on
  const std::vector<std::array<std::string, 3>> families = {
      {"default", "getCust", "DEFAULT"},
      {"region", "getRegionCust", ""},
      {"carrier", "getCotaCust", "DEFAULT"},
      {"carrier-region", "getCotaRegionCust", ""},
      {"sim", "getSimCust", "SIM_"}};
  for (const auto& [kind, kind_name, item] : kinds) {
    for (const auto& [family, family_name, map] : families) {
      if (family == "sim" && kind == "float") continue;
      const std::string function = family_name + kind_name + "Feature";
      const std::string question = family + '|' + kind + '|' + kind + "|--sim|" + kind + '=' + item;
      const Outcome traced = Cadrova("trace|--|cadrova|get|" + question);
      EXPECT_NE(traced.err.find(' ' + function + "(\"" + kind + '"'), std::string::npos)
          << traced.err;
      const Outcome explained = Cadrova("explain|--json|" + question);
      EXPECT_TRUE(explained.out.starts_with("{\"function\":\"" + function + "\",\"key\":\"" + kind +
                                            "\",\"kind\":\"" + kind))
          << explained.out;
      EXPECT_NE(explained.out.find("\"answered_by\":\"" + map + '"'), std::string::npos)
          << explained.out;
    }
  }
}

TEST(Command, ExplainsWhichMistakeWasMade) {
  const std::string data = "[DEFAULT]\nring.seconds = 30\n[COTA_X1]\nring.seconds = 25\n";
  const std::pair<std::string, std::string> mistakes[] = {
      // clang-format off
      {"[COTA_EU_X1]\nring.seconds = 40", "not asked    COTA_EU_X1, almost COTA_X1_EU\n"},
      {"[cota_x1_eu]\nring.seconds = 40", "not asked    cota_x1_eu, almost COTA_X1_EU\n"},
      {"['COTA_X1_EU ']\nring.seconds = 40", "not asked    \"COTA_X1_EU \", almost COTA_X1_EU\n"},
      {"[COTA_1X_EU]\nring.seconds = 40\n[A.ring]\nseconds = 1",
       "not asked    COTA_1X_EU\n             A\n"},
      {"[COTA_X1_EU]\nring.second = 40", "similar      ring.second in COTA_X1_EU\n"},
      {"[COTA_X1_EU]\nRing.Seconds = 40", "similar      Ring.Seconds in COTA_X1_EU\n"},
      {"[COTA_X1_EU]\nring.secnods = 40\n[A]\nring.secnods = 40\n[B]\nrnig.seconds = 1",
       "similar      ring.secnods in COTA_X1_EU and elsewhere\n             rnig.seconds in B\n"},
      {"[COTA_X1_EU.ring]\nring.seconds = 40", "similar      ring.ring.seconds in COTA_X1_EU\n"},
      {"[COTA_X1_EU]\nring.seconds = '40'", "\n  COTA_X1_EU    string, not int\n"},
      {"[COTA_X1_EU]\nring.seconds = 40.0", "\n  COTA_X1_EU    float, not int\n"},
      {"[COTA_X1_EU]\nring.seconds = []", "\n  COTA_X1_EU    string-array, int-array, map-array, not int\n"},
      // clang-format on
  };
  for (const auto& [mistake, words] : mistakes) {
    const std::string file = TemporaryFile("mistake.toml", data + mistake);
    const Outcome outcome =
        Cadrova("explain|carrier-region|int|ring.seconds|--region|EU|--carrier|X1|--data|" + file);
    EXPECT_TRUE(outcome.out.starts_with("25, from COTA_X1\n")) << outcome.out;
    EXPECT_NE(outcome.out.find(words), std::string::npos) << outcome.out;
    EXPECT_EQ(std::pair(outcome.err, outcome.status), std::pair(std::string(), 0));
  }
}

TEST(Command, ExplainsALookupAsTextStepsAndJson) {
  const std::string question = "explain|sim|int|ring|7|--carrier|X1|--sim|other=1|--data|" +
                               TemporaryFile("explained.toml", R"(
[DEFAULT]
ring = 30
[SIM_X1]
ring = 1.5
[COTA_X1]
ring = 25
[COTA_X1_EU]
ring = 40
)");
  Expect(Cadrova(question),
         R"(25, from COTA_X1

  map           holds           value
  SIM_X1        float, not int
  SIM_DEFAULT   -
  COTA_X1_      -
> COTA_X1       int             25
  ""            -
  DEFAULT       int             30

properties   persist.sys.cota.carrier = X1
             ro.orvel.region is unset
line         getCotaRegionCustIntFeature exist with the carrier : 25 
data         )" +
             kTemporaryFolder.path + R"(/explained.toml
not asked    COTA_X1_EU
)",
         "");
  Expect(Cadrova(question + "|--steps"), R"(GetProperty("persist.sys.cota.carrier", "") = "X1"
sim_get_int_item_exist("SIM_X1", "ring") = false
sim_get_int_item_exist("SIM_DEFAULT", "ring") = false
GetProperty("ro.orvel.region", "") = ""
GetProperty("persist.sys.cota.carrier", "") = "X1"
get_int_item_exist("COTA_X1_", "ring") = false
get_int_item_exist("COTA_X1", "ring") = true
get_int_from_map("COTA_X1", "ring", 7) = 25
get_int_from_map("COTA_X1", "ring", 7) = 25
)",
         "");
  Expect(
      Cadrova(question + "|--json"),
      "{\"function\":\"getSimCustIntFeature\",\"key\":\"ring\",\"kind\":\"int\",\"default\":7,"
      "\"value\":25,\"answered_by\":\"COTA_X1\","
      R"("line":"getCotaRegionCustIntFeature exist with the carrier : 25 ","properties":[["persist.sys.cota.carrier","X1"],["ro.orvel.region",""],["persist.sys.cota.carrier","X1"]],"maps":[{"map":"SIM_X1","asked":true,"holds":["float"],"value":null},{"map":"SIM_DEFAULT","asked":true,"holds":[],"value":null},{"map":"COTA_X1_","asked":true,"holds":[],"value":null},{"map":"COTA_X1","asked":true,"holds":["int"],"value":25},{"map":"","asked":false,"holds":[],"value":null},{"map":"DEFAULT","asked":false,"holds":["int"],"value":30}]}
)",
      "");
  Expect(
      Cadrova("explain|default|string-array|nope|--json"),
      R"({"function":"getCustStringArrayFeature","key":"nope","kind":"string-array","value":[],"answered_by":null,"line":null,"properties":[],"maps":[{"map":"DEFAULT","asked":true,"holds":[],"value":null}]}
)",
      "");
  const Outcome nowhere = Cadrova("explain|region|string|strin|d");
  EXPECT_TRUE(nowhere.out.starts_with("\"d\", the default: no map holds strin as string\n"))
      << nowhere.out;
}

TEST(Command, IsColouredOnATerminalOnly) {
  const int terminal = posix_openpt(O_RDWR | O_NOCTTY);
  ASSERT_EQ(grantpt(terminal) + unlockpt(terminal), 0);
  const std::string name = ptsname(terminal);
  for (const std::string setting : {"A=", "NO_COLOR=", "NO_COLOR=1"}) {
    Cadrova("explain|default|int|camera.max_zoom", setting, name);
    std::string screen(4096, '\0');
    screen.resize(static_cast<std::size_t>(
        std::max<ssize_t>(read(terminal, screen.data(), screen.size()), 0)));
    EXPECT_EQ(screen.find("\x1B[32m> DEFAULT") != std::string::npos, setting != "NO_COLOR=1")
        << screen;
  }
  close(terminal);
}

TEST(Command, AnswersForTheCodesOfTheStoreOrThoseGivenFromTheFileNamedFirst) {
  const std::string store =
      "CADROVA_HOST_PROPS=" + TemporaryFile("props",
                                            "# a device\n\nro.orvel.region=US\n"
                                            "ro.orvel.region=EU\npersist.sys.cota.carrier=X=1\n");
  const std::vector<std::array<std::string, 3>> cases = {
      {"", "1\n", " exist with the carrier & region : 1.000000 \n"},
      {"|--carrier|", "0.5\n", " exist with the region : 0.500000 \n"},
      {"|--region|", "2\n", " exist with the carrier : 2.000000 \n"},
      {"|--region|eu|--carrier|X=1", "2\n", " exist with the carrier : 2.000000 \n"}};
  for (const auto& [options, out, line_end] : cases) {
    Expect(Cadrova("get|carrier-region|float|float|--data|" + kData + options, store), out,
           "getCotaRegionCustFloatFeature" + line_end);
  }
  Expect(Cadrova("get|--sim|k=1|--sim|k=x=y|--sim|l=|sim|string|k|--carrier|X1"), "x=y\n",
         "getSimCustStringFeature exist with the carrier : x=y \n");
  const std::string one = TemporaryFile("one.toml", "[DEFAULT]\nint = 1\n");
  Expect(Cadrova("get|default|int|int|--data|" + one), "1\n", "");
  Expect(Cadrova("get|default|int|camera.max_zoom", "CADROVA_HOST_DATA="), "8\n", "");
}

TEST(Command, RefusesWithOneLineThatSaysWhy) {
  const std::string mistaken = TemporaryFile("bad.toml", "[DEFAULT]\nx = 2026-11-24\n");
  const std::string not_utf8 = TemporaryFile("latin.toml", "[DEFAULT]\nx = \"\xE9\"\n");
  const std::string huge = TemporaryFile("huge", "");
  std::filesystem::resize_file(huge, (1U << 30) + 1);
  const std::string int_k = "get|default|int|k", region_k = "get|region|int|k";
  const std::string store = "CADROVA_HOST_PROPS=";
  const struct {
    std::string line, what, setting = "A=";
    const char* out_file = "";
  } cases[] = {
      // clang-format off
      {"nope", "cadrova: 'nope' is no command; use one of: explain, get, list, matrix, diff, check, trace, help\n"},
      {"", "cadrova: '' is no command"}, {"help|nope", "'nope' is no command"},
      {"--nope", "--nope; what is no option stands behind --; see cadrova --help\n"},
      {"get|default|int", "KEY is required; see cadrova get --help\n"},
      {"get|defalt|int|k",
       "'defalt' is no family; use one of: default, region, carrier, carrier-region, sim\n"},
      {"get|sim|integer|k",
       "use one of: bool, int, float, string, string-array, int-array, map-array\n"},
      {int_k + "|12abc", "default '12abc' is no int; use decimal digits\n"},
      {int_k + "|", "default '' is no int"},
      {int_k + "|3000000000", "default '3000000000' is out of the range of a 32-bit int\n"},
      {"get|default|bool|k|1", "default '1' is no bool; use true or false\n"},
      {"get|default|float|k|1x", "default '1x' is no float; write it like 0.5 or 1e3\n"},
      {"get|default|float|k| 1", "default ' 1' is no float"},
      {"get|default|float|k|", "default '' is no float"},
      {"get|default|float|k|1e39", "default '1e39' is out of the range of a 32-bit float\n"},
      {"get|sim|int-array|k|x", "'x' is refused: list kinds have none, a missing list is empty\n"},
      {int_k + "|1|-2", "not expected: -2; what is no option stands behind --; see cadrova get --help\n"},
      {int_k + "|--jsn", "not expected: --jsn"}, {int_k + "|a\nb", "default 'a?b' is no int"},
      {"get|default|string|-k|fallback", "not expected: -k"},
      {region_k + "|--region|--carrier|X1", "--region: '--carrier' is an option; see"},
      {"get|sim|int|k|1|--sim|a=b|z=y", "not expected: z=y"},
      {"explain|sim|int|k|--json|--steps", "--json and --steps exclude each other\n"},
      {"trace|--steps", "PROGRAM is required; see cadrova trace --help\n"},
      {"trace|--steps|--summary|--|true", "--steps and --summary exclude each other\n"},
      {"trace|-o|/nowhere/x|true", "cadrova: -o /nowhere/x: No such file or directory\n"},
      {"get|default|float|k|inf|--json", "JSON has no inf; ask without --json\n"},
      {"get|default|float|k|nan|--json", "JSON has no nan; ask without --json\n"},
      {"get|default|string|k|\xE9|--json",
       "JSON can't carry what is not UTF-8; ask without --json\n"},
      {"get|sim|float|k", "the sim family has no float: SIM data holds none; ask carrier-region\n"},
      {"get|sim|string|k|x",
       "the sim family takes no default for a string: a missing one is empty\n"},
      {"get|sim|int|k|--sim|x", "--sim 'x' is no KEY=VALUE\n"},
      {int_k + "|--data|", "cadrova: '' names no file\n"},
      {int_k + "|--data|a\nb", "a?b: can't be read: No such file or directory\n"},
      {int_k + "|--data|/tmp", "/tmp: can't be read: Is a directory\n"},
      {int_k + "|--data|/proc/self/mem", "/proc/self/mem: can't be read: Input/output error\n"},
      {int_k + "|--data|" + huge, huge + ": can't be read: it is larger than 1 GiB\n"},
      {int_k + "|--data|" + mistaken, mistaken + ":2:5: a date"},
      {int_k + "|--data|" + not_utf8, not_utf8 + ":2:5: "},
      {int_k + "|1", "cadrova: can't write to standard output: No space left on device\n", "A=", "/dev/full"},
      {"--version", "can't write to standard output", "A=", "/dev/full"},
      {"get|--help", "can't write to standard output", "A=", "/dev/full"},
      {region_k, "/tmp: can't be read: Is a directory; name another with CADROVA_HOST_PROPS\n",
       store + "/tmp"},
      // clang-format on
  };
  const auto expect_refusal = [](const Outcome& outcome, const std::string& what) {
    const auto& [out, err, status] = outcome;
    EXPECT_NE(err.find(what), std::string::npos) << err;
    EXPECT_EQ(err.find('\n'), err.size() - 1) << err;
    EXPECT_EQ(std::pair(out, status), std::pair(std::string(), 2)) << err;
  };
  for (const auto& [line, what, setting, out_file] : cases) {
    expect_refusal(Cadrova(line, setting, out_file), what);
  }
  for (const std::string line :
       {"no equals sign", "=b", "a b=c", "[a]: [b", "[a]=b", "[]: [b]", "a=b\rc=d", "a\x7F=b"}) {
    const std::string file = TemporaryFile("properties", "a=b\n" + line + "\n");
    std::string quoted = line;
    std::ranges::replace_if(quoted, [](char byte) { return byte == '\r' || byte == '\x7F'; }, '?');
    expect_refusal(Cadrova(region_k, store + file),
                   file + ":2: not a key=value line: " + quoted + '\n');
  }
}

// The words in `text` that name a command or a long option.
std::set<std::string> CommandsAndOptions(const std::string& text) {
  std::set<std::string> words;
  const std::regex word(
      "(^|[^a-z-])(--[a-z]+|explain|get|list|matrix|diff|check|trace|help)(?![a-z-])");
  for (std::sregex_iterator found(text.begin(), text.end(), word), end; found != end; ++found) {
    words.insert((*found)[2]);
  }
  return words;
}

TEST(Command, HelpsAsTheReadmeTheManualAndTheShellsDo) {
  const std::string sources = CADROVA_SOURCES, readme = Contents(sources + "/README.md");
  std::string all;
  for (const std::string command :
       {"", "explain", "get", "list", "matrix", "diff", "check", "trace", "help"}) {
    const auto [out, err, status] = Cadrova(command.empty() ? "--help" : command + "|--help");
    if (command != "help") {
      const std::string help = "--help\n" + out.substr(0, out.find_last_not_of('\n') + 1) + "\n```";
      EXPECT_NE(readme.find(help), std::string::npos) << help;
    }
    Expect(Cadrova(command.empty() ? "help" : "help|" + command), out, "");
    all += out;
  }
  for (const std::string file : {"cadrova.1", "completion.bash", "_cadrova"}) {
    const std::string text = Contents(sources + "/tools/cadrova/share/" + file);
    const std::string plain = std::regex_replace(text, std::regex("\\\\-"), "-");
    EXPECT_EQ(CommandsAndOptions(plain), CommandsAndOptions(all)) << file;
  }
  const Outcome explained = Cadrova("explain|sim|int|calling.ring_seconds|--region|EU|--carrier|X1",
                                    "CADROVA_HOST_DATA=");
  const std::regex place("\ndata         .*/share");
  const std::string first = std::regex_replace(explained.out, place, "\ndata         [...]/share");
  const std::string grid = Cadrova("matrix|carrier-region|int|calling.ring_seconds", "A=").out;
  for (const std::string& shown : {first, grid}) {
    EXPECT_NE(readme.find(shown), std::string::npos) << shown;
  }
  Expect(Cadrova("--version"), CADROVA_VERSION "\n", "");
}

}  // namespace
