// Programs that `cadrova trace` runs: the lines about their lookups, and that the programs behave
// as without it.

#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <map>
#include <regex>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "files.h"
#include "run.h"

namespace {

const Words kSettings = {
    "CADROVA_HOST_DATA=" +
    TemporaryFile("data.toml",
                  "''.ring = 6\nEU.ring = 7\nCOTA_X1.ring = 8\nCOTA_X1_EU.ring = 9\n"
                  "SIM_X1.ring = 10\n[DEFAULT]\nring = 5" +
                      kItems)};

Words Traced(const Words& options, const Words& program) {
  return Words{CADROVA_COMMAND, "trace"} + options + Words{"--"} + program;
}

// The trace with letters instead of numbers: A for the first process ID, B for the next, and T for
// each thread ID.
std::string WithLetters(const std::string& trace) {
  std::string text;
  std::map<std::string, char> letters;
  const std::regex number("(^|\n)([0-9]+)(\\.[0-9]+)?(?= )");
  auto rest = trace.begin();
  for (std::sregex_iterator found(trace.begin(), trace.end(), number), end; found != end; ++found) {
    const auto letter = letters.try_emplace((*found)[2], 'A' + letters.size()).first->second;
    text.append(rest, (*found)[2].first) += letter;
    text += (*found)[3].matched ? ".T" : "";
    rest = (*found)[0].second;
  }
  return text.append(rest, trace.end());
}

TEST(Trace, LogsEachLookupAndDoesNotChangeTheProgram) {
  const std::string another = TemporaryFile("another", "");
  const std::string loaded = R"(A GetProperty("persist.sys.cota.carrier", "") = ""
A sim_get_int_item_exist("SIM_", "ring") = false
A sim_get_int_item_exist("SIM_DEFAULT", "ring") = false
A getCotaRegionCustIntFeature("ring", 4) = 6 from ""; asked COTA__, COTA_, ""
)";
  const struct {
    Words options, program;
    std::string trace;
    int status = 3;
  } cases[] = {
      {{}, {TRACED, "reads-property"}, R"(
A getSimCustIntFeature("ring", 1) = 6 from ""; asked SIM_, SIM_DEFAULT, COTA__, COTA_, ""
A setSimCadrova("k", "v"); handed to SIM_DEFAULT, ""
)"},
      {{}, {TRACED, "forks"}, R"(
A getCustIntFeature("ring", 0) = 5 from DEFAULT; asked DEFAULT
A getCustIntFeature("ring", 1) = 5 from DEFAULT; asked DEFAULT
B getCustIntFeature("missing", 2) = 2, the default; asked DEFAULT
A getCustIntFeature("missing", 3) = 3, the default; asked DEFAULT
)"},
      {{"--steps"},
       {TRACED, "looks-up-each-kind"},
       '\n' + FileContents(CADROVA_SOURCES "/tests/golden/trace_steps.txt")},
      {{"--summary"}, {TRACED, "reads-property"}, R"(
A lookups: 1
lookups  default  key   kind  from maps  last value
      1        0  ring  int   "" 1       6
)"},
      {{"--summary"}, {TRACED, "makes-no-lookup"}, "\n"},
      {{"--summary"}, {TRACED, "forks"}, R"(
A lookups: 1
lookups  default  key      kind  from maps  last value
      1        1  missing  int              2
B lookups: 3
lookups  default  key      kind  from maps  last value
      2        0  ring     int   DEFAULT 2  5
      1        1  missing  int              3
)"},
      // clang-format off
      {{}, {TRACED, "is-killed"}, "\nA getCustIntFeature(\"ring\", 1) = 5 from DEFAULT; asked DEFAULT\n", 128 + SIGTERM},
      {{}, {TRACED, "reopens-standard-error", another}, "\nA getCustIntFeature(\"ring\", 1) = 5 from DEFAULT; asked DEFAULT\n"},
      // clang-format on
      // A lookup resolved with `dlsym` is not named; only its calls are logged.
      {{}, {LOADING}, '\n' + loaded + loaded},
      {{"--summary"}, {LOADING}, R"(
A lookups: 2; calls by lookups without a name: 6
lookups  default  key   kind  from maps  last value
      2        0  ring  int   "" 2       6
)"},
  };
  for (const auto& [options, program, trace, status] : cases) {
    const ProgramResult alone = RunProgram(program, kSettings),
                        traced = RunProgram(Traced(options, program), kSettings);
    EXPECT_EQ('\n' + WithLetters(traced.err), trace);
    EXPECT_EQ(std::pair(traced.out, traced.status), std::pair(alone.out, status));
    EXPECT_EQ(alone.status, status);
  }
  EXPECT_EQ(FileContents(another), "");
}

TEST(Trace, ShowsTheCodesThatTheProgramSets) {
  ProgramResult traced = RunProgram(Traced({}, {TRACED, "sets-the-device"}), kSettings);
  traced.err = WithLetters(traced.err);
  Expect(traced,
         "getRegionCustIntFeature exist with the region : 7 \n"
         "getCotaCustIntFeature exist with the carrier : 8 \n"
         "getCotaRegionCustIntFeature exist with the carrier & region : 9 \n"
         "getSimCustIntFeature exist with the carrier : 10 \n"
         "getCotaRegionCustIntFeature exist with the carrier : 8 \n",
         R"(A getCustIntFeature("ring", 1) = 5 from DEFAULT; asked DEFAULT
A getRegionCustIntFeature("ring", 1) = 7 from EU; asked EU
A getCotaCustIntFeature("ring", 1) = 8 from COTA_X1; asked COTA_X1
A getCotaRegionCustIntFeature("ring", 1) = 9 from COTA_X1_EU; asked COTA_X1_EU
A getSimCustIntFeature("ring", 1) = 10 from SIM_X1; asked SIM_X1
A getCotaRegionCustIntFeature("ring", 1) = 8 from COTA_X1; asked COTA_X1_, COTA_X1
)",
         3);
}

TEST(Trace, WritesEachLineOfEachThreadInOnePiece) {
  const std::string file = TemporaryFile("trace", "old content");
  Expect(RunProgram(Traced({"-o", file}, {TRACED, "has-threads"}), kSettings), "", "", 3);
  std::map<std::string, int> lines;
  std::istringstream rest(WithLetters(FileContents(file)));
  for (std::string line; std::getline(rest, line);) ++lines[line];
  EXPECT_EQ(lines.size(), 2000U);
  for (int i = 0; i < 2000; ++i) {
    const std::string call = "A.T getCustIntFeature(\"ring\", " + std::to_string(i) + ')';
    ASSERT_EQ(lines[call + " = 5 from DEFAULT; asked DEFAULT"], 8) << call;
  }
}

// The program may change its folder, and run others.
TEST(Trace, GivesTheProgramOnlyItsOwnSettings) {
  const Words settings = {"--chdir=" + kTemporaryFolder.path, "LD_PRELOAD=libdl.so.2",
                          "CADROVA_TRACE=/nowhere/x", "CADROVA_TRACE_SHOW=summary"};
  const Words program = {TRACED, "runs-another-elsewhere", TRACED, "forks"};
  const ProgramResult result =
      RunProgram(Traced({"-o", "relative"}, program), settings + kSettings);
  EXPECT_TRUE(result.out.ends_with(":libdl.so.2,\n")) << result.out;
  EXPECT_EQ(std::ranges::count(FileContents(kTemporaryFolder.path + "/relative"), '\n'), 4);
  const ProgramResult direct = RunProgram(Traced({}, program), settings + kSettings);
  EXPECT_EQ(direct.err.find("/nowhere"), std::string::npos) << direct.err;
}

// The scripts run the traced program as "$@".
TEST(Trace, DoesNotDisturbTheProgramIfItCannotWrite) {
  const std::string file = TemporaryFile("trace", ""), status = TemporaryFile("status", "");
  const std::string error = "libcadrova_trace.so: can't write to ",
                    advice = "; name another with CADROVA_TRACE\n";
  const struct {
    std::string what, script, to, err;
  } cases[] = {
      // clang-format off
      {"has-threads", R"({ "$@"; echo $? >"$0"; } | true)", "/dev/stdout", ""},
      {"has-threads", R"("$@"; echo $? >"$0")", "/dev/full", error + "/dev/full: " + Reason(ENOSPC, advice)},
      {"has-a-long-line", R"((ulimit -f 1200; "$@"); echo $? >"$0")", file, error + file + ": " + Reason(EFBIG, advice)},
      // clang-format on
  };
  for (const auto& [what, script, to, err] : cases) {
    const Words program = Traced({"-o", to}, {TRACED, what});
    Expect(RunProgram(Words{"sh", "-c", script, status} + program, kSettings), "", err);
    EXPECT_EQ(FileContents(status), "3\n");
  }
  const Words piped = Traced({"-o", file + ".pipe"}, {TRACED, "forks"});
  const std::string script =
      R"(ulimit -n 64; mkfifo "$0"; "$@" & while read -r line; do echo; done <"$0")";
  Expect(RunProgram(Words{"timeout", "20", "sh", "-c", script, file + ".pipe"} + piped, kSettings),
         "\n\n\n\n", "");
}

TEST(Trace, ReportsAProgramThatCannotRun) {
  const std::string text = TemporaryFile("not executable", ""), error = "cadrova: can't run '";
  Expect(RunProgram(Traced({}, {"./nowhere"})), "", error + "./nowhere': " + Reason(ENOENT), 127);
  Expect(RunProgram(Traced({}, {text})), "", error + text + "': " + Reason(EACCES), 126);
}

}  // namespace
