// The cadrova command as its users run it: arguments in; standard output, standard error and exit
// status out.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <sstream>
#include <string>
#include <vector>

#include "files.h"

namespace {

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

struct Outcome {
  std::string out, err;
  int status;
};

// `line` has a bar between words; `setting` is one of the environment, as NAME=value.
Outcome Cadrova(const std::string& line, const std::string& setting = "CADROVA_HOST_DATA=" + kData,
                const std::string& out = TemporaryFile("out", "")) {
  const std::string err = TemporaryFile("err", "");
  std::vector<std::string> words = {"env", "-u", "CADROVA_HOST_PROPS", setting, CADROVA_COMMAND};
  std::istringstream rest(line + '|');
  for (std::string word; std::getline(rest, word, '|');) words.push_back(word);
  std::vector<char*> arguments;
  for (std::string& word : words) arguments.push_back(word.data());
  arguments.push_back(nullptr);
  const pid_t child = fork();
  if (child == 0) {
    const bool redirected = dup2(open(out.c_str(), O_WRONLY), STDOUT_FILENO) >= 0 &&
                            dup2(open(err.c_str(), O_WRONLY), STDERR_FILENO) >= 0;
    if (redirected) execvp("env", arguments.data());
    _exit(126);
  }
  int status = -1;
  EXPECT_EQ(waitpid(child, &status, 0), child);
  return {out == "/dev/full" ? "" : Contents(out), Contents(err),
          WIFEXITED(status) ? WEXITSTATUS(status) : -1};
}

void Expect(const Outcome& outcome, const std::string& out, const std::string& err) {
  EXPECT_EQ(outcome.out, out);
  EXPECT_EQ(outcome.err, err);
  EXPECT_EQ(outcome.status, 0) << err;
}

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
      // Missing items: the default, or what stands in for one.
      {"bool|nope", "false\n"}, {"bool|int|true", "true\n"}, {"bool|nope|false", "false\n"},
      {"int|nope", "0\n"}, {"int|nope|-7", "-7\n"}, {"int||2147483647", "2147483647\n"},
      {"float|nope", "0\n"}, {"float|nope|-.5", "-0.5\n"}, {"float|nope|16777216", "16777216\n"},
      {"float|nope|-Inf", "-inf\n"}, {"string|nope", "\n"}, {"string|nope|--|--x", "--x\n"},
      {"string-array|int-array", ""}, {"int-array|nope", ""}, {"map-array|nope", ""},
      {"int-array|none|--json", "[]\n"},
      // clang-format on
  };
  for (const auto& [question, out] : cases) {
    Expect(Cadrova(std::string("get|default|") + question), out, "");
  }
}

TEST(Command, AsksTheLookupOfEachFamilyAndKind) {
  const std::vector<std::array<std::string, 3>> kinds = {
      // clang-format off
      {"bool", "Boolean", "true"}, {"int", "Int", "5"}, {"float", "Float", ""},
      {"string", "String", "x"}, {"string-array", "StringArray", "[\"x\"]"},
      {"int-array", "IntArray", "[5]"}, {"map-array", "MapArray", "[[\"x\", \"5\"]]"}};
  // clang-format on
  const std::vector<std::array<std::string, 3>> families = {
      {"region", "getRegionCust", "Feature exist with the region "},
      {"carrier", "getCotaCust", "Feature do not exist with the carrier "},
      {"carrier-region", "getCotaRegionCust", "Feature exist with the region "},
      {"sim", "getSimCust", "Feature exist with the carrier "}};
  for (const auto& [kind, kind_name, item] : kinds) {
    for (const auto& [family, family_name, words] : families) {
      if (family == "sim" && kind == "float") continue;
      std::string line = family_name + kind_name + words;
      if (line.starts_with("getCotaRegionCustMap")) line.replace(17, 3, "String");  // Another's.
      const Outcome outcome =
          Cadrova("get|" + family + '|' + kind + '|' + kind + "|--sim|" + kind + '=' + item);
      EXPECT_TRUE(outcome.err.starts_with(line)) << line << outcome.err;
    }
  }
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
    std::string line, what, setting = "A=", out_file = TemporaryFile("out", "");
  } cases[] = {
      // clang-format off
      {"nope", "A subcommand is required"},
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
      {int_k + "|1|-2", "'-2' was not expected; see cadrova get --help\n"},
      {int_k + "|--jsn", "'--jsn' was not expected"},
      {"get|default|float|k|inf|--json", "JSON has no inf\n"},
      {"get|default|float|k|nan|--json", "JSON has no nan\n"},
      {"get|default|string|k|\xE9|--json",
       "the value is not UTF-8, which JSON can't carry; ask without --json\n"},
      {"get|sim|float|k", "the sim family has no float: SIM data holds none; ask carrier-region\n"},
      {"get|sim|string|k|x",
       "the sim family takes no default for a string: a missing one is empty\n"},
      {"get|sim|int|k|--sim|x", "--sim 'x' is no KEY=VALUE\n"},
      {int_k + "|--data|/tmp", "/tmp: can't be read: Is a directory\n"},
      {int_k + "|--data|/proc/self/mem", "/proc/self/mem: can't be read: Input/output error\n"},
      {int_k + "|--data|" + huge, huge + ": can't be read: it is larger than 1 GiB\n"},
      {int_k + "|--data|" + mistaken, mistaken + ":2:5: a date"},
      {int_k + "|--data|" + not_utf8, not_utf8 + ":2:5: "},
      {int_k, "cadrova: can't write the value to standard output\n", "A=", "/dev/full"},
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

TEST(Command, HelpsAsTheReadmeShows) {
  for (const std::string line : {"--help", "get|--help"}) {
    const auto [out, err, status] = Cadrova(line);
    const std::string help = "--help\n" + out.substr(0, out.find_last_not_of('\n') + 1) + "\n```";
    EXPECT_NE(Contents(CADROVA_README).find(help), std::string::npos) << help;
  }
  Expect(Cadrova("--version"), CADROVA_VERSION "\n", "");
}

}  // namespace
