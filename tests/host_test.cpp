// The stand-in parser core and property store, through the interfaces they stand in for.

#include <android-base/properties.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <map>
#include <thread>

#include "bridge/parser_core.h"
#include "cadrova/cadrova.h"
#include "customization.h"
#include "host_core.h"

namespace {

using namespace cadrova::host;

const std::string kData = R"([DEFAULT]
yes = true
int = -2147483648
float = 1.5
text = "t"
strings = ["a", ""]
ints = [2147483647, 0]
pairs = [["k", "1"], ["k", "2"]]
none = []
a.b.c = 1
"a.b.d" = 2
[DEFAULT.a.e]
f = 3
[""]
number = 4
[SIM_X1]
int = 5
)";

// Runs before the core is first asked.
class DataFile : public testing::Environment {
  void SetUp() override {
    const std::string path = testing::TempDir() + "cadrova_host_test.toml";
    std::ofstream(path) << kData;
    cadrova_host_use_data(path.c_str());
  }
};
const auto* const kDataFile = testing::AddGlobalTestEnvironment(new DataFile);

TEST(StandInCore, AnItemExistsAsItsOwnKindOnly) {
  const std::pair<const char*, decltype(&get_int_item_exist)> kinds[] = {
      {"yes", get_bool_item_exist},        {"int", get_int_item_exist},
      {"float", get_float_item_exist},     {"text", get_str_item_exist},
      {"strings", get_str_arr_item_exist}, {"ints", get_int_arr_item_exist},
      {"pairs", get_map_arr_item_exist}};
  for (const auto& [key, own_test] : kinds) {
    for (const auto& [other_key, test] : kinds) {
      EXPECT_EQ(test("DEFAULT", key), test == own_test) << key << " as " << other_key;
    }
    EXPECT_FALSE(own_test("NOWHERE", key));
    EXPECT_FALSE(own_test("default", key)) << "map names are bytes";
  }
  for (auto* test : {get_str_arr_item_exist, get_int_arr_item_exist, get_map_arr_item_exist}) {
    EXPECT_TRUE(test("DEFAULT", "none"));
  }
  EXPECT_FALSE(get_str_item_exist("DEFAULT", "none"));
}

TEST(StandInCore, AnswersThroughTheLibrary) {
  using namespace android;
  EXPECT_TRUE(getCustBooleanFeature("yes", false));
  EXPECT_EQ(getCustIntFeature("int", 0), -2147483647 - 1);
  EXPECT_EQ(getCustFloatFeature("float", 0), 1.5F);
  EXPECT_EQ(getCustStringFeature("text", ""), "t");
  EXPECT_EQ(getCustStringArrayFeature("strings"), (StringArray{"a", ""}));
  EXPECT_EQ(getCustIntArrayFeature("ints"), (IntArray{2147483647, 0}));
  EXPECT_EQ(getCustMapArrayFeature("pairs"), (MapArray{{"k", "1"}, {"k", "2"}}));
  EXPECT_TRUE(getCustMapArrayFeature("none").empty());
  EXPECT_EQ(getIntFromRust("", "number", 0), 4);
  for (const auto& [key, value] : {std::pair("a.b.c", 1), {"a.b.d", 2}, {"a.e.f", 3}}) {
    EXPECT_EQ(getCustIntFeature(key, 0), value) << key;
  }
  // Missing, or of another kind.
  EXPECT_TRUE(getCustBooleanFeature("int", true));
  EXPECT_EQ(getCustStringFeature("nope", "given"), "given");
  EXPECT_TRUE(getCustStringArrayFeature("ints").empty());
}

TEST(StandInCore, FilesWhatIsHandedOverForTheSim) {
  cxx_sim_set_the_cadrova("SIM_DEFAULT", "handed", "7");
  cxx_sim_set_the_cadrova("X1", "int", "\"six\"");
  cxx_sim_set_the_cadrova("", "pairs", "[[\"a\", \"1\"]]");
  EXPECT_TRUE(sim_get_int_item_exist("SIM_DEFAULT", "handed"));
  EXPECT_EQ(get_int_from_map("SIM_DEFAULT", "handed", 0), 7);
  EXPECT_FALSE(sim_get_int_item_exist("SIM_X1", "int")) << "replaced by a string";
  EXPECT_TRUE(sim_get_str_item_exist("SIM_X1", "int"));
  EXPECT_EQ(android::getMapFromRust("SIM_", "pairs"), (MapArray{{"a", "1"}}));
  EXPECT_FALSE(sim_get_int_item_exist("DEFAULT", "int")) << "no SIM map";
}

TEST(StandInCore, HandedOverTextIsAStringWhereItIsNoTomlValue) {
  for (const char* text :
       {"", "plain", "1 # comment", "1\nx = 2", "1 ", "2026-11-24", "1,", "[1", "3000000000"}) {
    const Item item = ItemFromText(text);
    ASSERT_NE(As<std::string>(item), nullptr) << text;
    EXPECT_EQ(*As<std::string>(item), text);
  }
  EXPECT_EQ(*As<std::string>(ItemFromText("\"é # no comment\"")), "é # no comment");
  EXPECT_TRUE(*As<bool>(ItemFromText("true")));
  EXPECT_EQ(*As<float>(ItemFromText("1e3")), 1000.0F);
  EXPECT_EQ(*As<IntArray>(ItemFromText("[1, 2]")), (IntArray{1, 2}));
}

constexpr int kThreads = 4;
constexpr int kCalls = 500;

void InThreads(const std::function<void()>& act) {
  std::vector<std::thread> threads(kThreads);
  for (std::thread& thread : threads) thread = std::thread(act);
  for (std::thread& thread : threads) thread.join();
}

// How often each line was printed while `act` ran.
std::map<std::string, int> LinesPrintedBy(const std::function<void()>& act) {
  const std::string path = testing::TempDir() + "cadrova_host_test.lines";
  std::fflush(stdout);
  const int standard_output = dup(STDOUT_FILENO);
  EXPECT_NE(std::freopen(path.c_str(), "w", stdout), nullptr);
  act();
  std::fflush(stdout);
  dup2(standard_output, STDOUT_FILENO);
  close(standard_output);
  std::map<std::string, int> lines;
  std::ifstream file(path);
  for (std::string line; std::getline(file, line);) ++lines[line];
  return lines;
}

// Lookups have no state and lines are printed whole, so threads neither lose nor tear any.
TEST(Threads, LoseNoLineAndTearNone) {
  std::atomic<int> wrong = 0;
  const auto lines = LinesPrintedBy([&] {
    InThreads([&] {
      for (int call = 0; call < kCalls; ++call) {
        wrong += android::getSimCustIntFeature("int", 0) != -2147483647 - 1;
        wrong += android::getCotaRegionCustMapArrayFeature("pairs").size() != 2;
      }
    });
  });
  EXPECT_EQ(wrong, 0);
  EXPECT_EQ(lines, (std::map<std::string, int>{
                       {"getCotaRegionCustIntFeature do not exist with the carrier or region : "
                        "-2147483648 ",
                        kThreads * kCalls},
                       {"getCotaCustMapArrayFeature do not exist with the carrier or region ! ",
                        kThreads * kCalls}}));
}

TEST(Threads, LookUpInEveryFamilyBesideHandOversAndPropertyChanges) {
  using namespace android;
  // The first thread changes the world, the others ask; whatever they see must be whole.
  const std::string short_text = "short";
  const std::string long_text(100, 'l');
  const auto is_whole = [&](const auto& text) { return text == short_text || text == long_text; };
  const auto hand_over = [](const std::string& text) {
    setSimCadrova("text", text);
    setSimCadrova("pairs", "[[\"k\", \"" + text + "\"]]");
  };
  hand_over(short_text);
  std::atomic<int> threads_so_far = 0;
  std::atomic<int> wrong = 0;
  const auto lines = LinesPrintedBy([&] {
    InThreads([&] {
      const bool changes = threads_so_far++ == 0;
      for (int call = 0; call < kCalls; ++call) {
        const std::string& text = call % 2 == 0 ? short_text : long_text;
        if (changes) {
          base::SetProperty("ro.orvel.region", text);
          base::SetProperty("persist.sys.cota.carrier", text);
          hand_over(text);
        } else {
          wrong += !is_whole(getSimCustStringFeature("text"));
          wrong += !is_whole(getSimCustMapArrayFeature("pairs").at(0).second);
          wrong += getRegionCustIntArrayFeature("ints") != IntArray{2147483647, 0};
          wrong += getCotaCustFloatFeature("float", 0) != 1.5F;
          wrong += getCotaRegionCustStringArrayFeature("strings").size() != 2;
          wrong += !getCustBooleanFeature("yes", false);
        }
      }
    });
  });
  base::SetProperty("ro.orvel.region", "");
  base::SetProperty("persist.sys.cota.carrier", "");
  EXPECT_EQ(wrong, 0);
  int printed = 0;
  for (const auto& [line, count] : lines) printed += count;
  EXPECT_EQ(printed, (kThreads - 1) * kCalls * 5);
}

TEST(StandInCore, NamesThePlaceOfEachMistake) {
  const struct {
    const char* toml;
    std::uint32_t line, column;
    const char* what;
  } cases[] = {
      {"[A]\nx = \n", 2, 5, "value"},
      {"[A]\nx = 1\nx = 2\n", 3, 5, "redefine"},
      {"x = 1\n", 1, 1, "outside every map"},
      {"[[:]]\n", 1, 3, "expected bare key"},
      {"[[A]]\nx = 1\n", 1, 3, "outside every map"},
      {"[A]\nx = 2026-11-24\n", 2, 5, "date"},
      {"[A]\nx = [1, \"a\"]\n", 2, 5, "only one kind"},
      {"[A]\nx = [1.5]\n", 2, 5, "array must hold"},
      {"[A]\nx = [[\"a\"]]\n", 2, 6, "pairs of strings"},
      {"[A]\nx = [[\"a\", 1]]\n", 2, 6, "pairs of strings"},
      {"[A]\nx = 2147483648\n", 2, 5, "32 bits"},
      {"[A]\nx = [0, -2147483649]\n", 2, 9, "32 bits"},
      {"[A]\nx = 1e39\n", 2, 5, "range of a float"},
      {"[A]\nx = \"a\\u0000b\"\n", 2, 5, "NUL"},
      {"[A]\n\"b.c\" = 1\nb.c = 2\n", 2, 1, "stands twice"},
      {"\"a\\nb\" = 1\n", 1, 1, "a?b stands outside"},
      {"[A]\nb = 1\n[A.c]\nd = 1979-05-27T07:32:00Z\n", 4, 5, "date"},
  };
  for (const auto& [toml, line, column, what] : cases) {
    const auto outcome = Customization::Parse(toml);
    const auto* mistake = std::get_if<Mistake>(&outcome);
    ASSERT_NE(mistake, nullptr) << toml;
    EXPECT_EQ(mistake->line, line) << toml;
    EXPECT_EQ(mistake->column, column) << toml;
    EXPECT_NE(mistake->what.find(what), std::string::npos) << mistake->what;
  }
}

TEST(StandInStore, EmptyReadsAsUnset) {
  using namespace android::base;
  EXPECT_EQ(GetProperty("a.b", "given"), "given");
  EXPECT_TRUE(SetProperty("a.b", " v "));
  EXPECT_EQ(GetProperty("a.b", "given"), " v ");
  EXPECT_TRUE(SetProperty("a.b", ""));
  EXPECT_EQ(GetProperty("a.b", "given"), "given");
}

}  // namespace
