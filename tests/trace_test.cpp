// Programs that `cadrova trace` runs: the lines about their lookups, and that the programs behave
// as without it.

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <filesystem>
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

constexpr char kSanitizers[] = CADROVA_SANITIZERS;
const bool kIsPlainBuild = sizeof kSanitizers == 1 && Words{TRACED}.size() == 1;

Words Traced(const Words& options, const Words& program) {
  return Words{CADROVA_COMMAND, "trace"} + options + Words{"--"} + program;
}

void Replace(std::string& text, const std::string& from, const std::string& to) {
  for (std::size_t i = 0; (i = text.find(from, i)) != std::string::npos; i += to.size()) {
    text.replace(i, from.size(), to);
  }
}

// The trace with letters instead of numbers: A for the first process ID, B for the next, and T for
// each thread ID.
std::string WithLetters(const std::string& trace) {
  std::string text;
  std::map<std::string, char> letters;
  const std::regex number("([0-9]+)(\\.[0-9]+)?(?= )");
  std::istringstream lines(trace);
  for (std::string line; std::getline(lines, line); text += lines.eof() ? "" : "\n") {
    std::smatch found;
    if (std::regex_search(line, found, number, std::regex_constants::match_continuous)) {
      text += letters.try_emplace(found[1], 'A' + letters.size()).first->second;
      text += found[2].matched ? ".T" : "";
    }
    text.append(line, found.length(0));
  }
  return text;
}

std::string CannotWrite(const std::string& file, const std::string& reason) {
  return "libcadrova_trace.so: can't write to " + file + ": " + reason +
         "; name another with CADROVA_TRACE\n";
}

// The golden file contains the trace of each program, below its options and arguments: the contents
// of the file in the options, if any, then those of standard error.
TEST(Trace, LogsEachLookupAndDoesNotChangeTheProgram) {
  const std::string another = TemporaryFile("another", ""), file = TemporaryFile("trace", "");
  const std::string library = TRACED_LIBRARY;
  const Words steps = {"--steps"}, summary = {"--summary"}, to_file = {"-o", file};
  const struct {
    Words options, program;
    int status = 3;
  } cases[] = {
      {{}, {TRACED, "sets-the-device"}},
      {{}, {TRACED, "forks"}},
      {{}, {TRACED, "is-killed"}, 128 + SIGTERM},
      {{}, {TRACED, "reopens-standard-error", another}},
      {steps, {TRACED, "looks-up-each-kind"}},
      {steps, {TRACED, "reads-property"}},
      {summary, {TRACED, "reads-property"}},
      {summary, {TRACED_WITH_OWN_CORE, "reads-property"}},
      {summary, {TRACED, "sets-the-device"}},
      {summary, {TRACED, "makes-no-lookup"}},
      {summary, {TRACED, "forks"}},
      {summary, {TRACED, "has-a-long-key"}},
      {to_file, {TRACED, "limits-file-size"}},
      {to_file, {TRACED, "replaces-the-file", kTemporaryFolder.path}},
      // A lookup resolved with `dlsym` is not named; only its calls are logged.
      {{}, {LOADING}},
      {summary, {LOADING}},
      // Libraries that the program loads, without the library or without its core.
      {{}, {LOADING, library + "calls_libbase.so"}},
      {{}, {LOADING, library + "calls_core.so", library + "foreign_core.so"}},
      {{}, {LOADING, library + "calls_foreign_core.so"}},
      {{}, {LOADING, library + "brings_core.so"}},
      {{}, {LOADING, library + "calls_weak.so"}},
      {{}, {TRACED_WITH_OWN_CORE, "reads-property"}},
      {steps, {TRACED_WITH_CORE, "nests-lookups"}},
      {{}, {TRACED_WITH_CORE, "uses-all-descriptors", "0", another}},
      {{}, {TRACED_WITH_CORE, "uses-all-descriptors", "3", another}},
      {to_file, {TRACED_WITH_CORE, "uses-all-descriptors", "3", another}},
      {summary, {TRACED_WITH_CORE, "looks-up-at-exit"}},
      {steps, {CADROVA_COMMAND, "get", "sim", "int", "--carrier=X1", "ring"}, 0},
      // Forces the existence tests of the second lookup to false.
      {{}, {CADROVA_COMMAND, "explain", "sim", "int", "ring", "--region=EU", "--carrier=X1"}, 0},
  };
  const Words few_files = {"sh", "-c", R"(ulimit -n 64; exec "$@")", "sh"};
  std::string traces;
  for (const auto& [options, program, status] : cases) {
    SCOPED_TRACE(testing::PrintToString(program));
    TemporaryFile("trace", options == to_file ? "old contents" : "");
    TemporaryFile("another", "");
    const ProgramResult alone = RunProgram(few_files + program, kSettings),
                        traced = RunProgram(few_files + Traced(options, program), kSettings);
    traces += "==" + (options.empty() ? "" : ' ' + options[0]);
    for (std::size_t i = Words{TRACED}.size(); i < program.size(); ++i) traces += ' ' + program[i];
    traces += '\n' + WithLetters(FileContents(file) + traced.err);
    EXPECT_EQ(std::pair(traced.out, traced.status), std::pair(alone.out, status));
    EXPECT_EQ(alone.status, status);
    EXPECT_EQ(FileContents(another), "");
  }
  Replace(traces, kTemporaryFolder.path, "FOLDER");
  Replace(traces, library, "LIBRARY_");
  Replace(traces, CADROVA_STANDARD_LIBRARY, "STANDARD LIBRARY");
  Replace(traces, Reason(EFBIG, ""), "REASON");
  Replace(traces, std::string(5000, 'z'), "LONG");
  ExpectGolden(traces, "traces.txt");
}

TEST(Trace, DoesNotChangeProgramsWithoutLookups) {
  // The emulator and the sanitizers can't preload the trace library into the system's programs.
  if (!kIsPlainBuild) GTEST_SKIP();
  const Words programs[] = {
      {"python3", "-c", "import sys; print(sys.maxsize); sys.exit('no')"},
      // 32 is the trace library if its path contains a blank.
      {"env", "-u", "LD_PRELOAD", "sh", "-c", "ls /proc/self/fd | grep -v 32"},
      {"git", "--version"},
      {"make", "-v"}};
  for (const Words& program : programs) {
    const ProgramResult alone = RunProgram(program), traced = RunProgram(Traced({}, program));
    if (alone.status != 127) Expect(traced, alone.out, alone.err, alone.status);
  }
}

// Runs scripts that write the program's status as the last line. The characters that make values
// long are removed before the lines are compared.
TEST(Trace, WritesEachLineInOnePiece) {
  const std::string file = TemporaryFile("trace", "");
  const std::string to_file = R"({ "$@"; echo $?; } >"$0" 2>&1)",
                    to_pipe = R"({ "$@"; echo $?; } 2>&1 | cat >"$0")",
                    ring = R"(getCustIntFeature("ring", #) = 5 from DEFAULT; asked DEFAULT)";
  const struct {
    std::string script;
    Words program;
    int lines, times;
    std::string line;  // # is the number of the line
  } cases[] = {
      // clang-format off
      {to_file, {TRACED, "has-threads"}, 500, 16, "A.T " + ring},
      {to_pipe, {TRACED, "has-threads"}, 500, 16, "A.T " + ring},
      {to_pipe, {TRACED, "has-threads", "8"}, 100, 8, R"(A.T getCustIntFeature("ring"..., #) = #, the default; asked DEFAULT)"},
      {to_pipe, {TRACED, "has-a-long-line"}, 1, 1, R"(A getCustStringFeature("missing", ""...) = ""..., the default; asked DEFAULT)"},
      {to_file, {TRACED_WITH_CORE, "jumps"}, 1000, 1, "A " + ring},
      {to_file, {TRACED_WITH_CORE, "throws"}, 1000, 1, "A " + ring},
      {to_file, {TRACED_WITH_CORE, "exits-threads"}, 1000, 1, "A.T " + ring},
      // clang-format on
  };
  for (const auto& [script, program, count, times, line] : cases) {
    // With the thread sanitizer, each function has something to do when the stack is unwound.
    if (program.back() == "exits-threads" && kSanitizers == std::string("thread")) continue;
    SCOPED_TRACE(testing::PrintToString(program));
    EXPECT_EQ(RunProgram(program, kSettings).status, 3);
    RunProgram(Words{"sh", "-c", script, file} + Traced({}, program), kSettings);
    std::string trace = FileContents(file);
    std::istringstream whole_lines(trace);
    for (std::string whole; std::getline(whole_lines, whole);) EXPECT_LT(whole.size(), 4096U);
    std::erase(trace, 'z');
    for (const char* character : {"\\u0001", "é"}) Replace(trace, character, "");
    std::istringstream rest(WithLetters(trace));
    std::map<std::string, int> lines, expected = {{"3", 1}};
    for (std::string found; std::getline(rest, found);) ++lines[found];
    for (int i = 0; i < count; ++i)
      expected[std::regex_replace(line, std::regex("#"), std::to_string(i))] = times;
    EXPECT_TRUE(lines == expected) << lines.size() << " different lines:\n" << trace.substr(0, 500);
  }
}

// The program may change its folder, and run others.
TEST(Trace, GivesTheProgramOnlyItsOwnSettings) {
  const Words settings = {"--chdir=" + kTemporaryFolder.path, "LD_PRELOAD=libdl.so.2",
                          "CADROVA_TRACE=/nowhere/x", "CADROVA_TRACE_SHOW=summary",
                          "CADROVA_TRACE_DESCRIPTOR=1"};
  const Words program = {TRACED, "runs-another-elsewhere", TRACED, "forks"};
  const ProgramResult result =
      RunProgram(Traced({"-o", "relative"}, program), settings + kSettings);
  EXPECT_TRUE(result.out.ends_with(":libdl.so.2,\n")) << result.out;
  EXPECT_EQ(std::ranges::count(FileContents(kTemporaryFolder.path + "/relative"), '\n'), 5);
  const ProgramResult direct = RunProgram(Traced({}, program), settings + kSettings);
  EXPECT_EQ(direct.err.find("/nowhere"), std::string::npos) << direct.err;
}

// The scripts run the traced program as "$@", and write its status to the file "$0".
TEST(Trace, DoesNotDisturbTheProgramIfItCannotWrite) {
  const std::string file = TemporaryFile("trace\x1B", ""), status = TemporaryFile("status", "");
  const struct {
    Words program;
    std::string script, to, err;
  } cases[] = {
      // clang-format off
      {{TRACED, "has-threads"}, R"({ "$@"; echo $? >"$0"; } | true)", "/dev/stdout", ""},
      {{TRACED, "has-threads"}, R"("$@"; echo $? >"$0")", "/dev/full", CannotWrite("/dev/full", Reason(ENOSPC, ""))},
      {{TRACED, "has-threads", "8"}, R"((ulimit -f 1200; "$@"); echo $? >"$0")", file, CannotWrite(kTemporaryFolder.path + "/trace\\u001b", Reason(EFBIG, ""))},
      // For a program whose output is captured, /dev/stdout is another file.
      {(kIsPlainBuild ? Words{"sh", "-c", R"sh(test -z "$("$0" "$@")" && exit 3)sh"} : Words()) + Words{TRACED, "forks"},
       R"({ "$@"; echo $? >"$0"; } | grep -c . >&2)", "/dev/stdout", "4\n"},
      // The sanitizers need memory, and the emulator ignores the limit.
      {{TRACED_WITH_CORE, kIsPlainBuild ? "runs-out-of-memory" : "jumps"}, R"("$@"; echo $? >"$0")", "/dev/null",
       kIsPlainBuild ? "libcadrova_trace.so: out of memory; a line is missing\n" : ""},
      {{TRACED, "forks"}, R"(ulimit -n 64; mkfifo "$0.1"; { timeout 20 "$@"; echo $? >"$0"; } & timeout 20 grep -c . "$0.1" >&2; wait)", status + ".1", "4\n"},
      // The reader reads one line, and leaves before the program runs another.
      {Words{TRACED, "runs-another-without-files", status, file} + Words{TRACED, "forks"},
       R"(mkfifo "$0.2"; { read -r line; rm "$0"; } <"$0.2" & timeout 20 "$@"; echo $? >"$0")", status + ".2", ""},
      // clang-format on
  };
  for (const auto& [program, script, to, err] : cases) {
    TemporaryFile("status", "");
    TemporaryFile("trace\x1B", "");
    const Words all = Words{"sh", "-c", script, status} + Traced({"-o", to}, program);
    Expect(RunProgram(all, kSettings), "", err);
    EXPECT_EQ(FileContents(status), "3\n");
  }
  EXPECT_EQ(FileContents(file), "");
}

TEST(Trace, ReportsAProgramThatCannotRun) {
  const std::string text = TemporaryFile("not executable", ""), error = "cadrova: can't run '";
  Expect(RunProgram(Traced({}, {"./nowhere"})), "", error + "./nowhere': " + Reason(ENOENT), 127);
  Expect(RunProgram(Traced({}, {text})), "", error + text + "': " + Reason(EACCES), 126);
}

// In an image, the command is in system/bin and the libraries are in system/lib64.
TEST(Trace, FindsItsLibraryBesideTheLibrary) {
  Words command = {CADROVA_COMMAND};
  const auto build = std::filesystem::path(command.back()).parent_path().parent_path();
  const std::string image = kTemporaryFolder.path + "/system";
  std::filesystem::create_directories(image + "/bin");
  std::filesystem::copy(std::exchange(command.back(), image + "/bin/cadrova"), image + "/bin");
  std::filesystem::copy(build / "lib", image + "/lib64");
  const auto traced =
      RunProgram(command + Words{"trace", "--"} + command + Words{"get", "default", "int", "ring"},
                 kSettings + Words{"LD_LIBRARY_PATH=" + image + "/lib64"});
  Expect({"", WithLetters(traced.err), traced.status}, "",
         "A getCustIntFeature(\"ring\", 0) = 5 from DEFAULT; asked DEFAULT\n");
}

}  // namespace
