// The stand-in parser core and property store, through the interfaces they stand in for and the
// kit.

#include "cadrova/host.h"

#include <android-base/properties.h>
#include <gtest/gtest.h>
#include <malloc.h>
#include <unistd.h>

#include <atomic>
#include <limits>
#include <set>
#include <sstream>
#include <thread>

#include "cadrova/cadrova.h"
#include "files.h"
#include "parser_core.h"

namespace {

using namespace cadrova::host;
using android::base::GetProperty;
using android::base::SetProperty;

using IntArray = std::vector<int>;
using MapArray = std::vector<std::pair<std::string, std::string>>;

// Where the process begins, and where each test that answers from other data ends.
const std::string kData =
    TemporaryFile("data.toml", "[DEFAULT]" + kItems + "[SIM_X1]" + kItems + "[SIMX]" + kItems);
const bool kIsAlone =
    setenv("CADROVA_HOST_DATA", kData.c_str(), 1) == 0 && unsetenv("CADROVA_HOST_PROPS") == 0;

std::string Repeated(const std::string& text, int times) {
  std::string repeated;
  while (times-- > 0) repeated += text;
  return repeated;
}

TEST(StandInDeathTest, StopsWhereItsFileCannotBeReadAfterAllThatWasPrinted) {
  const auto ask = [](const std::string& setting) {
    dup2(STDERR_FILENO, STDOUT_FILENO);
    std::printf("before ");
    setenv(setting.c_str(), "/nowhere", 1);
    android::getRegionCustIntFeature("k", 0);
  };
  for (const std::string setting : {"CADROVA_HOST_DATA", "CADROVA_HOST_PROPS"}) {
    EXPECT_EXIT(ask(setting), testing::ExitedWithCode(2),
                "^before /nowhere: can't be read: No such file or directory; name another with " +
                    setting + "\n$");
  }
}

TEST(Kit, AnswersFromTheLastDataWithoutAMistakeUntilItStartsOver) {
  const auto expect = [](const std::string& string, const std::string& property) {
    EXPECT_EQ(android::getStringFromRust("SIM_X1", "string", ""), string);
    EXPECT_EQ(GetProperty("p", "-"), property);
  };
  const auto change = [] {
    EXPECT_TRUE(SetProperty("p", "q"));
    cxx_sim_set_the_cadrova("X1", "string", "y");
  };
  EXPECT_EQ(AnswerFromFile(TemporaryFile("x.toml", "[SIM_X1]\nstring = 'x'\n")), std::nullopt);
  expect("x", "-");
  change();
  EXPECT_EQ(AnswerFromText("[SIM_X1]\nstring = 'z'\n"), std::nullopt);
  EXPECT_NE(AnswerFromText("[SIM_X1]\nstring = 'w'\n?"), std::nullopt);
  expect("y", "q");
  ForgetSim();
  expect("z", "q");
  ForgetProperties();
  expect("z", "-");
  change();
  StartOver();
  expect("a text of 24 characters.", "-");
  change();
  SetProperty("p", "");
  expect("y", "-");
}

// That an item does exist as its own kind, the command's test sees.
TEST(StandInCore, AnItemExistsAsNoOtherKindInNoOtherMap) {
  EXPECT_FALSE(get_int_item_exist("default", "int")) << "map names are bytes";
  EXPECT_FALSE(get_int_item_exist("DEFAULT", "float"));
  EXPECT_FALSE(get_float_item_exist("DEFAULT", "int"));
  EXPECT_FALSE(get_str_item_exist("DEFAULT", "none"));
  EXPECT_TRUE(get_str_arr_item_exist("DEFAULT", "none"));
  EXPECT_TRUE(get_int_arr_item_exist("DEFAULT", "none"));
  EXPECT_TRUE(get_map_arr_item_exist("DEFAULT", "none"));
  EXPECT_FALSE(sim_get_int_item_exist("SIM_X1", "bool"));
  const std::pair<const char*, decltype(&sim_get_bool_item_exist)> sim_tests[] = {
      // clang-format off
      {"bool", sim_get_bool_item_exist}, {"int", sim_get_int_item_exist},
      {"string", sim_get_str_item_exist}, {"string-array", sim_get_str_arr_item_exist},
      {"int-array", sim_get_int_arr_item_exist}, {"map-array", sim_get_map_arr_item_exist}};
  // clang-format on
  for (const auto& [key, exists] : sim_tests) {
    EXPECT_TRUE(exists("SIM_X1", key)) << key;
    EXPECT_FALSE(exists("SIMX", key)) << key << ": that is no SIM map";
  }
}

TEST(StandInCore, MakesBlocksThatHoldTheirContents) {
  for (std::size_t size = 0; size < 16; ++size) {
    const std::string text(size, 'x');
    ASSERT_EQ(AnswerFromText("[M]\ns = '" + text + "'\nm = [['k', '" + text + "']]"), std::nullopt);
    char* const string = get_str_from_map("M", "s", "");
    char** const pairs = get_map_arr_from_map("M", "m");
    EXPECT_GE(malloc_usable_size(string), size + 1);
    EXPECT_GE(malloc_usable_size(pairs), 3 * sizeof(char*) + 2 + size + 1);
    std::free(string);
    std::free(pairs);
  }
  StartOver();
}

TEST(StandInCore, FilesWhatIsHandedOverForTheSimAsATomlValueOrElseAsAString) {
  using namespace android;
  for (const char* text :
       {"", "plain", "1 # comment", "1\nx = 2", "1 ", "2026-11-24", "1,", "[1", "3000000000"}) {
    setSimCadrova("int", text);
    EXPECT_EQ(getStringFromRust("SIM_DEFAULT", "int", "-"), text);
  }
  cxx_sim_set_the_cadrova("X1", "string", "\"é # no comment\"");
  cxx_sim_set_the_cadrova("X1", "float", "1e3");
  cxx_sim_set_the_cadrova("X1", "bool", "5");
  cxx_sim_set_the_cadrova("SIM_", "map-array", "[[\"a\", \"1\"]]");
  EXPECT_EQ(getStringFromRust("SIM_X1", "string", ""), "é # no comment");
  EXPECT_EQ(getFloatFromRust("SIM_X1", "float", 0), 1000.0F);
  EXPECT_EQ(getMapFromRust("SIM_SIM_", "map-array"), (MapArray{{"a", "1"}}));
  EXPECT_FALSE(getBooleanFromRust("SIM_X1", "bool", false)) << "an int stands in front of it";
  // All else stays as it was.
  EXPECT_EQ(getIntFromRust("DEFAULT", "int", 0), -2147483647 - 1);
  EXPECT_EQ(getMapFromRust("SIM_X1", "map-array").size(), 3U);
  StartOver();
}

TEST(StandInCore, NamesThePlaceOfEachMistake) {
  const std::pair<std::string, std::string> cases[] = {
      {"[A]\nx = 1\nx = 2\n", "3:5: "},
      {"[[:]]\n", "1:3: "},
      {"x = 1\n", "1:1: x stands outside every map; put it below a [MAP] line"},
      {"\"a\\n\\u007F\" = 1\n", "1:1: a?? stands outside every map"},
      {"[[A]]\nx = 1\n", "1:3: A stands outside every map"},
      {"[A]\nx = 2026-11-24\n", "2:5: a date or time is no kind of value"},
      {"[A]\nb = 1\n[A.c]\nd = 1979-05-27T07:32:00Z\n", "4:5: a date"},
      {"[A]\nx = [1, \"a\"]\n",
       "2:5: an array must hold strings, integers or pairs of strings, and only one kind"},
      {"[A]\nx = [1.5]\n", "2:5: an array must hold"},
      {"[A]\nx = [[\"a\"]]\n", "2:6: an array of arrays must hold pairs of strings"},
      {"[A]\nx = [[\"a\", \"b\", \"c\"]]\n", "2:6: an array of arrays must hold pairs of strings"},
      {"[A]\nx = [[\"a\", 1]]\n", "2:6: an array of arrays must hold pairs of strings"},
      {"[A]\nx = [[\"a\", \"\\u0000\"]]\n", "2:12: a string can't hold a NUL byte"},
      {"[A]\nx = \"a\\u0000b\"\n", "2:5: a string can't hold a NUL byte, which would end it"},
      {"[A]\nx = 2147483648\n", "2:5: 2147483648 does not fit in 32 bits"},
      {"[A]\nx = [0, -2147483649]\n", "2:9: -2147483649 does not fit in 32 bits"},
      {"[A]\nx = -1e39\n", "2:5: beyond the range of a float"},
      {"[A]\n\"b.c\" = 1\nb.c = 2\n", "2:1: feature key b.c stands twice in its map"},
      {"[A]\n" + Repeated("A_-9\t. ", 100'000) + "a = 1\n", "2:447: a key of more than 64 parts"},
      {"[A]\nx = " + Repeated("[", 100'000), "2:37: "},
      {"[A]\nx = {'é\\' = \"\"\"\\\"\"\"\"\"\", b.é = 1}",
       "2:27: a letter beyond ASCII must stand"},
      {"[A]\nx = [{a.b = 1, c = 'é'}, 1.=[\"é\"", "2:31: a letter beyond ASCII"},
      {"[A]\nx = \"\"\"\\ \r\n\té",
       "3:2: a letter beyond ASCII must stand in quotes, and not right"},
  };
  for (const auto& [toml, expected] : cases) {
    const Mistake mistake = AnswerFromText(toml).value_or(Mistake());
    EXPECT_TRUE(ToString(mistake).starts_with("<text>:" + expected)) << mistake;
  }
}

TEST(StandInCore, TakesWhatIsNearlyAMistake) {
  using namespace android;
  const std::string key = Repeated("a.", 63) + 'a';
  ASSERT_EQ(AnswerFromText("\xEF\xBB\xBF['M.é']\nx = inf # é" + Repeated(".", 64) + "\n" + key +
                           " = 'é'\ns = \"\"\"\\\n \\u00e9'\\\"#\"\"\"\"\"\nt = '\\' #é"),
            std::nullopt);
  EXPECT_EQ(getFloatFromRust("M.é", "x", 0), std::numeric_limits<float>::infinity());
  EXPECT_EQ(getStringFromRust("M.é", key, ""), "é");
  EXPECT_EQ(getStringFromRust("M.é", "s", ""), "é'\"#\"\"");
  EXPECT_EQ(getStringFromRust("M.é", "t", ""), "\\");
  StartOver();
}

TEST(StandInStore, StartsFromTheLinesOfItsFile) {
  const std::pair<const char*, const char*> cases[] = {
      // clang-format off
      {"k=v", "v"}, {"k=v\r\n", "v"}, {"\xEF\xBB\xBFk=v\n", "v"}, {"k=", "-"}, {"l=v", "-"},
      {" \tk = v w\t\n", "v w"}, {"#\n\n \r\nk==v", "=v"}, {"k=v\nk=w\n", "w"},
      {"[k]: [v]", "v"}, {"[k]: []\r\n", "-"}, {"[k]: [ ]: [] ]\n", " ]: [] "},
      // clang-format on
  };
  for (const auto& [contents, value] : cases) {
    setenv("CADROVA_HOST_PROPS", TemporaryFile("props", contents).c_str(), 1);
    ForgetProperties();
    EXPECT_EQ(GetProperty("k", "-"), value) << contents;
  }
  setenv("CADROVA_HOST_PROPS", "", 1);
  ForgetProperties();
  EXPECT_EQ(GetProperty("k", "-"), "-");
}

// Whatever is asked while one thread changes the world, values and lines are whole.
TEST(Threads, LookUpInEveryFamilyBesideHandOversAndPropertyChanges) {
  using namespace android;
  const std::string texts[] = {"short", std::string(100, 'l')};
  const auto is_whole = [&](const auto& text) { return text == texts[0] || text == texts[1]; };
  const auto change = [&](const std::string& text) {
    base::SetProperty("ro.orvel.region", text);
    setSimCadrova("string", text);
    setSimCadrova("map-array", "[[\"k\", \"" + text + "\"]]");
  };
  std::atomic<int> wrong = 0, asking = 3;
  const auto ask = [&] {
    for (int call = 0; call < 500; ++call) {
      wrong += !is_whole(getSimCustStringFeature("string"));
      wrong += !is_whole(getSimCustMapArrayFeature("map-array").at(0).second);
      wrong += getRegionCustIntArrayFeature("int-array") != IntArray{2147483647, 0, 1, 2, 3, 4};
      wrong += getCotaCustFloatFeature("float", 0) != 0.35F;
      wrong += getCotaRegionCustStringArrayFeature("string-array").size() != 3;
      wrong += !getCustBooleanFeature("bool", false);
    }
    --asking;
  };
  char* printed = nullptr;
  std::size_t size = 0;
  FILE* const standard_output = std::exchange(stdout, open_memstream(&printed, &size));
  change(texts[0]);
  std::thread askers[] = {std::thread(ask), std::thread(ask), std::thread(ask)};
  for (int call = 0; asking > 0; ++call) change(texts[call % 2]);
  for (std::thread& asker : askers) asker.join();
  std::fclose(std::exchange(stdout, standard_output));
  std::istringstream lines(printed);
  std::free(printed);
  int count = 0;
  std::set<std::string> different;
  for (std::string line; std::getline(lines, line); ++count) different.insert(line);
  EXPECT_EQ(wrong, 0);
  EXPECT_EQ(count, 3 * 500 * 5) << "lines are lost";
  // One a lookup, but the string's two.
  EXPECT_LE(different.size(), 5 + 1) << "lines are torn: " << testing::PrintToString(different);
}

}  // namespace
