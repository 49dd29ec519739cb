// The fake core and the property store, through the interfaces that they implement and the test
// kit. `ctest` runs either the suite FakePropertyStore or the suite RealLibbase.

#include "cadrova/host.h"

#include <android-base/properties.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <limits>
#include <set>
#include <sstream>
#include <thread>

#include "cadrova/cadrova.h"
#include "core/for_command.h"
#include "existence_tests.h"
#include "file.h"
#include "files.h"
#include "parser_core.h"

namespace {

using namespace android;
using namespace cadrova::host;
using base::GetProperty;
using ExistenceTest = cadrova_core_bool(const std::string&, const std::string&);

const std::vector<Error> kNoErrors;
const std::string kData =
    TemporaryFile("data.toml", "[DEFAULT]" + kItems + "[SIM_X1]" + kItems + "[SIMX]" + kItems);

// Each test starts in the state of a new process, with this default file.
class FakeCore : public testing::Test {
 protected:
  void SetUp() override {
    setenv("CADROVA_HOST_DATA", kData.c_str(), 1);
    unsetenv("CADROVA_HOST_PROPS");
    Reset();
  }
};
using FakePropertyStore = FakeCore;
using RealLibbase = FakeCore;
using Kit = FakeCore;

std::string Repeated(const std::string& text, int times) {
  return times == 0 ? "" : text + Repeated(text, times - 1);
}

TEST_F(FakeCore, StopsAfterPendingOutputIfTheDefaultFileHasAnError) {
  const std::pair<std::string, std::string> cases[] = {
      {"/nowhere",
       ": can't be read: " + Reason(ENOENT, "; name another file with CADROVA_HOST_DATA")},
      {TemporaryFile("bad", "x = 1\ny = 2\n"),
       ":1:1: x is outside every map; put it below a .MAP. line; 1 more error"}};
  for (const auto& [file, error] : cases) {
    const auto look_up = [&] {
      dup2(STDERR_FILENO, STDOUT_FILENO);
      std::printf("before ");
      setenv("CADROVA_HOST_DATA", file.c_str(), 1);
      getRegionCustIntFeature("k", 0);
    };
    EXPECT_EXIT(look_up(), testing::ExitedWithCode(2), "^before " + file + error + "\n$");
  }
}

// A SIM item and the codes.
std::string DeviceState() {
  return getStringFromRust("SIM_X1", "string", "") + GetProperty("ro.orvel.region", "-") +
         GetProperty("persist.sys.cota.carrier", "+");
}

TEST_F(Kit, ChangesAndClearsOnePartOfTheDeviceAtATime) {
  EXPECT_EQ(LoadFile(TemporaryFile("x.toml", "SIM_X1.string = 'x'")), kNoErrors);
  EXPECT_EQ(DeviceState(), "x-+");
  SetDevice("EU", "X1");
  cxx_sim_set_the_cadrova("X1", "string", "y");
  EXPECT_EQ(LoadText("SIM_X1.string = 'z'"), kNoErrors);
  EXPECT_NE(LoadText("SIM_X1 = {string = 'w', x = 2147483648}"), kNoErrors);
  EXPECT_NE(LoadFile("/nowhere"), kNoErrors);
  EXPECT_EQ(DeviceState(), "yEUX1");
  ClearSim();
  EXPECT_EQ(DeviceState(), "zEUX1");
  SetDevice("", "X1");
  EXPECT_EQ(DeviceState(), "z-X1");
}

TEST_F(FakePropertyStore, IsClearedAloneAndByReset) {
  SetDevice("EU", "X1");
  cxx_sim_set_the_cadrova("X1", "string", "y");
  ClearProperties();
  EXPECT_EQ(DeviceState(), "y-+");
  SetDevice("EU", "X1");
  Reset();
  EXPECT_EQ(DeviceState(), "a text of 24 characters.-+");
}

TEST_F(RealLibbase, KeepsItsPropertiesAndReadsNoFile) {
  setenv("CADROVA_HOST_PROPS", "/nowhere", 1);
  EXPECT_EQ(GetProperty("ro.orvel.region", "-"), "-");
  SetDevice("EU", "X1");
  cxx_sim_set_the_cadrova("X1", "string", "y");
  ClearProperties();
  EXPECT_EQ(DeviceState(), "yEUX1");
  Reset();
  EXPECT_EQ(DeviceState(), "a text of 24 characters.EUX1");
}

TEST_F(Kit, SetsItemsUntilTheNextLoadAndListsWhatLookupsFind) {
  const auto expect_list = [](const std::string& expected) {
    const auto list = List();
    std::ostringstream lines;
    const auto add = [&](const std::string& name, const Place& place) -> auto& {
      return lines << name << ' ' << place.line << ':' << place.column;
    };
    for (const auto& [map, place] : list.maps) add(map, place) << '\n';
    for (const auto& [map, key, kinds, place] : list.items) {
      add(map + ' ' + key, place);
      for (const Kind kind : kinds) lines << ' ' << kind;
      lines << '\n';
    }
    EXPECT_EQ(lines.str(), expected);
  };
  Set("DEFAULT", "bool", 8);
  EXPECT_EQ(List().file, kData);
  EXPECT_FALSE(get_bool_item_exist("DEFAULT", "bool")) << "an int has replaced it";
  EXPECT_TRUE(get_int_item_exist("DEFAULT", "int"));
  ASSERT_EQ(LoadText("[b]\nz = 1\n'é'.c = true\n[a.x]\ny = []\n[SIM_X1]\nk = 1\nl = 's'\n[c]\n"),
            kNoErrors);
  cxx_sim_set_the_cadrova("X1", "l", "1.5");
  cxx_sim_set_the_cadrova("X2", "m", "[0]");
  Set("b", "z", "text");
  Set("SIM_X1", "l", 3);
  const Value values[] = {true, 7, 0.5F, "text", StringArray(), IntArray(), MapArray()};
  for (const Value& value : values) Set("ab", ToString(KindOf(value)), value);
  // clang-format off
  expect_list("SIM_X1 6:2\nSIM_X2 0:0\na 4:2\nab 0:0\nb 1:2\nc 9:2\n"
              "SIM_X1 k 7:1 int\nSIM_X1 l 0:0 float\nSIM_X2 m 0:0 int-array\n"
              "a x.y 5:1 string-array int-array map-array\n"
              "ab bool 0:0 bool\nab float 0:0 float\nab int 0:0 int\nab int-array 0:0 int-array\n"
              "ab map-array 0:0 map-array\nab string 0:0 string\nab string-array 0:0 string-array\n"
              "b z 0:0 string\nb é.c 3:5 bool\n");
  // clang-format on
  EXPECT_EQ(LoadText("[b]"), kNoErrors);
  ClearSim();
  expect_list("b 1:2\n");
}

TEST_F(Kit, SwitchesBetweenParsedFiles) {
  const auto int_of_a = [] { return getIntFromRust("A", "int", 0); };
  const auto one = ParseData("A.int = 1\n[Z]\n", "one").data, two = ParseData("A.int = 2", "").data;
  EXPECT_EQ(int_of_a(), 0) << "parsing does not change the data";
  UseData(one);
  EXPECT_EQ(int_of_a(), 1);
  cxx_sim_set_the_cadrova("B", "k", "1");
  Set("A", "int", 3);
  Set("M", "k", 3);
  UseData(two);
  EXPECT_EQ(int_of_a(), 2);
  EXPECT_EQ(ListMapNames(), (std::vector<std::string>{"A", "SIM_B"}));
  UseData(one);
  EXPECT_EQ(int_of_a(), 3);
  EXPECT_EQ(List().file, "one");
  EXPECT_EQ(ListMapNames(), (std::vector<std::string>{"A", "M", "SIM_B", "Z"}));
  const ParsedFile bad = ParseData("x = 1\ny = 2\n", "bad");
  EXPECT_EQ(bad.data, nullptr);
  EXPECT_EQ(bad.errors.size(), 2U);
  EXPECT_TRUE(FirstOf({3, bad.errors[0]}).reason.ends_with(" line; 2 more errors"));
  UseData(nullptr);
  EXPECT_EQ(List().file, kData);
}

std::string Text(const TomlNode& node) {
  std::ostringstream text;
  text << node.place.line << ':' << node.place.column << ' ';
  if (const auto* boolean = std::get_if<bool>(&node.value)) text << std::boolalpha << *boolean;
  if (const auto* integer = std::get_if<std::int64_t>(&node.value)) text << *integer;
  if (const auto* string = std::get_if<std::string>(&node.value)) text << *string;
  if (const auto* array = std::get_if<TomlNode::Array>(&node.value)) {
    text << "[ ";
    for (const TomlNode& element : *array) text << Text(element) << ' ';
    text << ']';
  }
  if (const auto* table = std::get_if<TomlNode::Table>(&node.value)) {
    text << "{ ";
    for (const auto& [name, member] : *table) text << name << ' ' << Text(member) << ' ';
    text << '}';
  }
  return text.str();
}

TEST_F(Kit, ParsesTomlInItsOrder) {
  const std::string toml =
      "z = 3000000000\r\n\t'é b'.c = [true,\n 's']\n[y]\nf = 1.5\n[[x]]\n[[x]]\nk = {d = "
      "1979-05-27}\n[y.a]";
  EXPECT_EQ(Text(std::get<TomlNode>(ParseToml(toml, "f"))),
            "1:1 { z 1:1 3000000000 é b 2:2 { c 2:8 [ 2:13 true 3:2 s ] } "
            "y 4:2 { f 5:1  a 9:4 { } } x 6:3 [ 6:1 { } 7:1 { k 8:1 { d 8:6  } } ] }");
  EXPECT_EQ(ToString(std::get<Error>(ParseToml("x = 1\n\"", "f"))).substr(0, 6), "f:2:2:");
}

TEST_F(FakeCore, FindsAnItemOnlyAsItsKindAndInItsMap) {
  const struct {
    ExistenceTest* exists;
    Value value;
    bool is_sim = false;
  } tests[] = {
#define TEST_OF(name, Type) {name, Type()},
#define SIM_TEST_OF(name, Type) {name, Type(), true},
      CADROVA_EXISTENCE_TESTS(TEST_OF, SIM_TEST_OF)};
  for (const auto& [exists, value, is_sim] : tests) {
    const Kind kind = KindOf(value);
    for (const std::string map : {"DEFAULT", "SIM_X1", "SIMX", "default"}) {
      SCOPED_TRACE(map + (is_sim ? ", SIM test of " : ", test of ") + ToString(kind));
      const bool is_tested = is_sim ? map == "SIM_X1" : map != "default";
      for (int other = 0; other < 7; ++other) {
        const Kind item = static_cast<Kind>(other);
        EXPECT_EQ(exists(map, ToString(item)), is_tested && item == kind) << item;
      }
      EXPECT_EQ(exists(map, "none"), is_tested && kind > Kind::kString) << "an empty list";
    }
  }
  EXPECT_FALSE(get_bool_from_map("DEFAULT", "missing", 2)) << "the lowest bit counts";
}

TEST_F(FakeCore, ReadsASimItemAsATomlValueOrElseAsAString) {
  for (const char* text :
       {"", "plain", "1 # comment", "1\nx = 2", "1 ", "2026-11-24", "1,", "[1", "3000000000"}) {
    setSimCadrova("int", text);
    EXPECT_EQ(getStringFromRust("SIM_DEFAULT", "int", "-"), text);
  }
  cxx_sim_set_the_cadrova("X1", "string", "\"é # no comment\"");
  cxx_sim_set_the_cadrova("X1", "bool", "5");
  cxx_sim_set_the_cadrova("SIM_", "map-array", "[[\"a\", \"1\"]]");
  EXPECT_EQ(getStringFromRust("SIM_X1", "string", ""), "é # no comment");
  EXPECT_EQ(getMapFromRust("SIM_SIM_", "map-array"), (MapArray{{"a", "1"}}));
  EXPECT_FALSE(getBooleanFromRust("SIM_X1", "bool", false)) << "the int takes precedence";
  EXPECT_EQ(getMapFromRust("SIM_X1", "map-array").size(), 3U);
}

TEST_F(FakeCore, ReportsAllErrorsInFileOrder) {
  const std::string toml = R"(x = 1
"\n\u007F" = 1
[B]
"b.c".d = [9e9, 1e99]
b."c.d" = 1979-05-27
[A]
x = 1979-05-27T07:32:00Z
ints = [2147483648, -2147483649]
[B.b.c]
d = -1e39
e = -1e39
[A.y]
pairs = [["a"], ["a", 1], ["a", "b", "c"], ["a", "\u0000"]]
"\u0000" = 1
a.b = {}
c = {d = {}, e = 1}
[[A.z]]
[[C]]
[[C]]
["\u0000"]
[A.empty]
)";
  const std::string mixed =
      "an array must contain strings, integers or pairs of strings, and only one kind";
  const std::string pairs = "an array of arrays must contain pairs of strings";
  const std::string duplicate = "key b.c.d is already defined in line 4";
  const std::string f = "<text>";
  // clang-format off
  const std::vector<Error> expected = {
      {f, {1, 1}, "x is outside every map; put it below a [MAP] line", {}},
      {f, {2, 1}, "\\u000a\\u007f is outside every map; put it below a [MAP] line", {}},
      {f, {4, 11}, mixed, {}}, {f, {5, 3}, duplicate, Place{4, 7}},
      {f, {7, 5}, "a date or time is not a supported value", {}},
      {f, {8, 9}, "2147483648 does not fit in 32 bits", {}}, {f, {8, 21}, "-2147483649 does not fit in 32 bits", {}},
      {f, {10, 1}, duplicate, Place{4, 7}}, {f, {11, 5}, "beyond the range of a 32-bit float", {}},
      {f, {13, 10}, pairs, {}}, {f, {13, 17}, pairs, {}}, {f, {13, 27}, pairs, {}},
      {f, {13, 50}, "a string must not contain a NUL byte, which would end it", {}},
      {f, {14, 1}, "a key must not contain a NUL byte, which would end it", {}},
      {f, {15, 3}, "an empty table is not a supported value", {}}, {f, {16, 6}, "an empty table is not a supported value", {}},
      {f, {17, 5}, "[[A.z]] is a list of tables; write [A.z], with single brackets", {}},
      {f, {18, 3}, "[[C]] is a list of tables; write [C], with single brackets", {}},
      {f, {20, 2}, "the name of a map must not contain a NUL byte, which would end it", {}}};
  EXPECT_EQ(LoadText(toml), expected);
  for (const Error& other : {
           Error{"", {5, 3}, duplicate, Place{4, 7}}, Error{f, {0, 3}, duplicate, Place{4, 7}},
           Error{f, {5, 0}, duplicate, Place{4, 7}}, Error{f, {5, 3}, pairs, Place{4, 7}},
           Error{f, {5, 3}, duplicate, Place{4, 0}}, Error{f, {5, 3}, duplicate, {}}}) {
    EXPECT_FALSE(other == expected[3]) << other;
  }
  // clang-format on
}

TEST_F(FakeCore, ReportsTheFirstSyntaxErrorAlone) {
  const std::pair<std::string, std::string> cases[] = {
      // clang-format off
      {"[A]\nx = 1\nx = 2\nx = 2026-11-24\n", "3:1: key x is already defined in line 2\n"}, {"[[:]]\n", "1:3: "},
      {"[A]\nx = [[1]]\n[B]\nx = 'a\n'", "4:7: a string has no closing quote in this line\n"},
      {"[A]\nx = \"\n[B]\n", "2:6: a string has no closing quote in this line\n"},
      {"[A]\nx = no", "2:6: Error while parsing floating-point: put text in quotes; expected 'nan', saw 'no'\n"},
      {"\xFF\xFE[\0A\0]\0", "1:1: UTF-16 text; save it as UTF-8\n"}, {std::string("\0[\0A", 4), "1:1: UTF-16 text; save it as UTF-8\n"},
      {std::string("\x7F" "ELF\x2\x1\0\0", 8), "1:7: binary data, not TOML: the file contains a NUL byte\n"},
      {"\xEF\xBB\xBF#\té\xE9", "1:4: not UTF-8 text from here on; save the file as UTF-8\n"},
      {"[A]\n" + Repeated("A_-9\t. ", 1000) + "a = 1\n", "2:447: a key of more than 64 parts\n"},
      {"[A]\nx = " + std::string(100'000, '['), "2:37: "},
      {"[A]\nx = {'é\\' = \"\"\"\\\"\"\"\"\"\", b.é = 1}", "2:27: a character beyond ASCII must be in quotes, and not directly after a backslash that ends a line\n"},
      {"[A]\nx = [{a.b = 1, c = 'é'}, 1.=[\"é\"", "2:31: a character beyond ASCII "},
      {"[A]\nx = \"\"\"\\ \r\n\té", "3:2: a character beyond ASCII "}};
  // clang-format on
  for (const auto& [toml, expected] : cases) {
    const std::vector<Error> errors = LoadText(toml);
    ASSERT_EQ(errors.size(), 1U) << toml.substr(0, 200);
    EXPECT_TRUE((ToString(errors[0]) + '\n').starts_with("<text>:" + expected))
        << errors[0] << "\nexpected " << expected << "\nof " << toml.substr(0, 200);
  }
}

TEST_F(FakeCore, SaysWhereTheFirstOfTwoDefinitionsIs) {
  const struct {
    std::string toml, expected;
    Place first;
  } cases[] = {
      // clang-format off
      {"[B]\n[A]\n\t\"é\".'b=' = [\n1]\r\n\t'é' . 'b=' = 2\n", "5:8: key é.b= is already defined in line 3", {3, 6}},
      {"[A]\ns = \"\"\"\n[A]\nx = 1\"\"\"\nx = 1\n[A.t]\nx = 1\nx = 2", "8:1: key t.x is already defined in line 7", {7, 1}},
      {"[[A]]\nx = 1\n[[A]]\nx = 1\nx = 2", "5:1: key x is already defined in line 4", {4, 1}},
      {"x = 1\n[A]\n[x]\n", "3:1: x is already a value, in line 1", {1, 1}},
      {"[A]\n[B]\n[A]\nx = 1\nx = 2", "3:1: A is already a table, in line 1", {1, 1}},
      {"['A']\n[B]\n[\"A\"]\nx = ", "3:1: A is already a table, in line 1", {1, 1}},
      {"[A.x]\n[B]\n[A]\ny = 1\n [A] # c\r\n", "5:2: A is already a table, in line 3", {3, 1}},
      {"[A]\nx.y = 1\nx = 2", "3:1: A.x is already a table, in line 2", {2, 1}},
      {"[A]\nb.x = 1\nb.x.y = 2", "3:3: A.b.x is already a value, in line 2", {2, 3}},
      {"[A.x]\n[A]\nx.y = 2", "3:1: A.x is already a table, in line 1", {1, 1}},
      {"[A]\nx = {a = 1}\n[A.x.y]\n[A.z]", "3:1: A.x is already a value, in line 2", {2, 1}},
      {"[[A]]\n[B]\n[A]", "3:1: A is already a list of tables, in line 1", {1, 1}},
      {"[A]\nx = {a = 1, a = 2}", "2:17: Error while parsing key-value pair: cannot redefine existing integer 'a'", {}}};
  // clang-format on
  for (const auto& [toml, expected, first] : cases) {
    const std::vector<Error> errors = LoadText(toml);
    ASSERT_EQ(errors.size(), 1U) << toml;
    EXPECT_EQ(ToString(errors[0]), "<text>:" + expected) << toml;
    EXPECT_EQ(errors[0].related.value_or(Place{}), first) << toml;
  }
}

TEST_F(FakeCore, AcceptsWhatResemblesAnError) {
  const std::string key = Repeated("a.", 63) + 'a';
  ASSERT_EQ(LoadText("\xEF\xBB\xBF['M.é']\nx = inf # é" + std::string(64, '.') + "\n" + key +
                     " = 'é'\ni = {b.'é' = 1, c.'é' = 2}\ns = \"\"\"\\\n "
                     "\\u00e9'\\\"#\"\"\"\"\"\nt = '\\' #é\n"),
            kNoErrors);
  EXPECT_EQ(getFloatFromRust("M.é", "x", 0), std::numeric_limits<float>::infinity());
  EXPECT_EQ(getStringFromRust("M.é", key, ""), "é");
  EXPECT_EQ(getIntFromRust("M.é", "i.c.é", 0), 2);
  EXPECT_EQ(getStringFromRust("M.é", "s", ""), "é'\"#\"\"");
  EXPECT_EQ(getStringFromRust("M.é", "t", ""), "\\");
}

TEST_F(FakePropertyStore, StartsWithThePropertiesOfItsFile) {
  const std::pair<const char*, const char*> cases[] = {
      // clang-format off
      {"k=v", "v"}, {"k=v\r\n", "v"}, {"\xEF\xBB\xBFk=v\n", "v"}, {"k=", "-"}, {"l=v", "-"},
      {" \tk = v w\t\n", "v w"}, {"#\n\n \r\nk==v", "=v"}, {"k=v\nk=w\n", "w"},
      {"[k]: [v]", "v"}, {"[k]: []\r\n", "-"}, {"[k]: [ ]: [] ]\n", " ]: [] "}};
  // clang-format on
  for (const auto& [contents, value] : cases) {
    setenv("CADROVA_HOST_PROPS", TemporaryFile("props", contents).c_str(), 1);
    ClearProperties();
    EXPECT_EQ(GetProperty("k", "-"), value) << contents;
  }
  setenv("CADROVA_HOST_PROPS", "", 1);
  ClearProperties();
  EXPECT_EQ(GetProperty("k", "-"), "-");
}

// Values and lines are not mixed up while another thread sets SIM data and properties.
TEST_F(FakePropertyStore, SupportsLookupsInThreadsDuringChanges) {
  const std::string texts[] = {"short", std::string(100, 'l')};
  const auto is_whole = [&](const auto& text) { return text == texts[0] || text == texts[1]; };
  const auto change = [&](const std::string& text) {
    SetDevice(text, "");
    setSimCadrova("string", text);
    setSimCadrova("map-array", "[[\"k\", \"" + text + "\"]]");
  };
  std::atomic<int> wrong = 0, running = 3;
  const auto look_up = [&] {
    for (int call = 0; call < 500; ++call) {
      wrong += !is_whole(getSimCustStringFeature("string"));
      wrong += !is_whole(getSimCustMapArrayFeature("map-array").at(0).second);
      wrong += getCotaCustFloatFeature("float", 0) != 0.35F;
      wrong += call % 50 == 0 && List().maps.size() != 5;
    }
    --running;
  };
  testing::internal::CaptureStdout();
  change(texts[0]);
  std::thread threads[] = {std::thread(look_up), std::thread(look_up), std::thread(look_up)};
  for (int call = 0; running > 0; ++call) change(texts[call % 2]);
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(wrong, 0);
  std::istringstream lines(testing::internal::GetCapturedStdout());
  std::multiset<std::string> printed;
  for (std::string line; std::getline(lines, line);) printed.insert(line);
  EXPECT_EQ(printed.size(), 3 * 500 * 3U) << "lines are missing";
  // One per lookup, and one more for the second string.
  EXPECT_LE(std::set(printed.begin(), printed.end()).size(), 3 + 1U) << "torn lines";
}

// A child does not have the other threads, which may hold locks of the fakes when it is forked.
TEST_F(FakePropertyStore, WorksInAChildOfAProgramWithThreads) {
  std::atomic<bool> done = false;
  std::thread threads[6];
  for (std::thread& thread : threads) {
    thread = std::thread([&] {
      while (!done) DeviceState();
    });
  }
  int status = 0;
  for (int forks = 0; forks < 50 && status == 0; ++forks) {
    const pid_t child = fork();
    if (child == 0) {
      alarm(10);
      SetDevice("EU", "X1");
      cxx_sim_set_the_cadrova("X1", "string", "y");
      _exit(DeviceState() == "yEUX1" ? 0 : 1);
    }
    if (waitpid(child, &status, 0) <= 0) status = -1;
  }
  done = true;
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(status, 0) << "a signal, or 256 for a wrong value";
}

}  // namespace
