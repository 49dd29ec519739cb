// The library over a device that records: the typed bridge with blocks of every shape, and every
// lookup along every path: what it asks and in which order, with how many copies, what it prints
// and what it returns.

#include <gtest/gtest.h>

#include <climits>
#include <tuple>

#include "cadrova/cadrova.h"
#include "recording_device.h"

namespace {

using namespace android;
using namespace recording;
using std::string;

using StringArray = std::vector<string>;
using IntArray = std::vector<int>;
using MapArray = std::vector<std::pair<string, string>>;
using Value = std::variant<bool, int, float, string, StringArray, IntArray, MapArray>;

// As a foreign caller may do it, with any byte for a `bool`.
__attribute__((no_sanitize("undefined"))) bool GetBoolean(Byte given) {
  auto* const read = reinterpret_cast<void (*)()>(getBooleanFromRust);
  return reinterpret_cast<bool (*)(string, string, Byte)>(read)("M", "k", given);
}

TEST(Bridge, BooleansAreALowestBitBothWays) {
  for (const Byte byte : {0, 1, 2, 3, 254, 255}) {
    device = {.readings = {byte}};
    bool value = false;
    const string bit = std::to_string(byte % 2);
    EXPECT_EQ(Record([&] { value = GetBoolean(byte); }),
              (Log{"get_bool_from_map(M, k, " + bit + ")", "0"}));
    EXPECT_EQ(std::to_string(value), bit);
  }
}

TEST(Bridge, ConvertsAndFreesBlocksOfEveryShape) {
  const auto text = [] { return Value(getStringFromRust("M", "k", "d")); };
  const auto strings = [] { return Value(getStringArrayFromRust("M", "k")); };
  const auto ints = [] { return Value(getIntArrayFromRust("M", "k")); };
  const auto pairs = [] { return Value(getMapFromRust("M", "k")); };
  const struct {
    decltype(Device::readings)::value_type block;
    std::function<Value()> read;
    Value value;
  } cases[] = {
      {string("a\0b", 3), text, "a"},
      {"", text, ""},
      {nullptr, strings, StringArray()},
      {PointerBlock{nullptr}, strings, StringArray()},  // The next slot may not be read.
      {nullptr, ints, IntArray()},
      {IntBlock{0}, ints, IntArray()},
      {IntBlock{INT_MIN, 5}, ints, IntArray()},
      {IntBlock{2, INT_MAX, INT_MIN, 9}, ints, IntArray{INT_MAX, INT_MIN}},
      {nullptr, pairs, MapArray()},
      {PointerBlock{nullptr}, pairs, MapArray()},
      {PointerBlock{"a", "1", "b", nullptr, "c", "3", nullptr}, pairs, MapArray{{"a", "1"}}},
      {PointerBlock{"a", "1", nullptr, "x", "c", "3"}, pairs, MapArray{{"a", "1"}}}};
  for (const auto& [block, read, expected] : cases) {
    device = {.readings = {block}};
    Value value;
    const Log log = Record([&] { value = read(); });
    EXPECT_EQ(value, expected);
    // Between the getter's call and the number of allocations.
    const auto* const bytes = std::get_if<string>(&block);
    const Log frees = {"free " + (bytes == nullptr ? "array" : *bytes)};
    EXPECT_EQ(Log(log.begin() + 1, log.end() - 1), block.index() == 0 ? Log() : frees);
  }
  device = {.readings = {nullptr}};
  EXPECT_DEATH(text(), "") << "a string block is never NULL";
}

const string kText = "beyond the short-string buffer of any library";
const string kOther = "another " + kText;
const string kBytes = kText + '\0' + "and beyond a NUL";

// What varies by kind: names, and how a line ends; what the core reads, what is freed after each
// reading, what comes of the readings, and the allocations for one. Scalars and strings are read
// twice, and the line shows the first reading.
enum Kind { kBoolean, kInt, kFloat, kString, kStringArray, kIntArray, kMapArray };
const struct {
  string name, name_in_core, line_end;
  decltype(Device::readings) readings;
  std::vector<Log> frees;
  std::vector<Value> values;
  std::size_t allocations;
} kKinds[] = {
    // clang-format off
    {"Boolean", "bool", " : 0 \n", {Byte{254}, Byte{3}}, {{}, {}}, {false, true}, 0},
    {"Int", "int", " : -2147483648 \n", {INT_MIN, INT_MAX}, {{}, {}}, {INT_MIN, INT_MAX}, 0},
    {"Float", "float", " : 1.500000 \n", {1.5F, 1e-45F}, {{}, {}}, {1.5F, 1e-45F}, 0},
    {"String", "str", " : " + kText + " \n", {kText, kOther},
     {{"free " + kText}, {"free " + kOther}}, {kText, kOther}, 1},
    {"StringArray", "str_arr", " ! \n", {PointerBlock{"", "b", kText.c_str(), nullptr}},
     {{"free ", "free b", "free " + kText, "free array"}}, {StringArray{"", "b", kText}}, 3 + 1},
    {"IntArray", "int_arr", " ! \n", {IntBlock{3, 7, -2, 0}}, {{"free array"}},
     {IntArray{7, -2, 0}}, 3},
    {"MapArray", "map_arr", " ! \n", {PointerBlock{"k", "1", "k", "", "", kText.c_str(), nullptr}},
     {{"free array"}}, {MapArray{{"k", "1"}, {"k", ""}, {"", kText}}}, 3 + 1},
    // clang-format on
};

// A feature key, and a default of each kind that has one, also as it is recorded.
const struct Question {
  string key;
  std::tuple<bool, int, float, string> defaults;
  Log recorded;
} kQuestions[] = {{"k", {true, 7, 0.5F, "d"}, {"1", "7", "0.500000", "d"}},
                  {"", {false, INT_MIN, -2, kBytes}, {"0", "-2147483648", "-2.000000", kBytes}},
                  {kBytes, {true, 0, 1e5F, ""}, {"1", "0", "100000.000000", ""}}};

// What varies by family: the word in its lookups' names, the properties that they read, the maps
// that they test, and the words of their lines by the map that answers, "DEFAULT" last.
enum Family { kDefaultMap, kRegion, kCarrier, kCarrierAndRegion, kSim };
struct Chain {
  string word;
  Log properties, maps, words;
};

std::vector<Chain> ChainsOf(const string& region, const string& carrier) {
  const string region_code = "ro.orvel.region", carrier_code = "persist.sys.cota.carrier";
  const string carrier_map = "COTA_" + carrier, both_map = carrier_map + "_" + region;
  const string sim_map = "SIM_" + carrier, not_in = " do not exist with the ";
  const string in_carrier = " exist with the carrier", in_region = " exist with the region";
  // clang-format off
  return {{"Cust", {}, {}, {}},
          {"RegionCust", {region_code}, {region}, {in_region, not_in + "region"}},
          {"CotaCust", {carrier_code}, {carrier_map}, {in_carrier, not_in + "carrier"}},
          {"CotaRegionCust", {region_code, carrier_code}, {both_map, carrier_map, region},
           {in_carrier + " & region", in_carrier, in_region, not_in + "carrier or region"}},
          {"SimCust", {carrier_code}, {sim_map, "SIM_DEFAULT"}, {in_carrier, not_in + "carrier"}}};
  // clang-format on
}

// What a lookup owes the device, call by call, and the allocations of its strings.
struct Owed {
  Log log;
  std::size_t allocations = 0, readings = 0;

  void Strings(const std::vector<string>& strings) {
    for (const string& text : strings) allocations += text.size() > string().capacity();
  }

  void Call(const string& function, const std::vector<string>& arguments) {
    Strings(arguments);
    log.push_back(recording::Call(function, arguments));
  }

  void Read(Kind kind, std::vector<string> arguments) {
    if (kind > kString) arguments.pop_back();
    Strings(arguments);  // the bridge's own
    Call("get_" + kKinds[kind].name_in_core + "_from_map", arguments);
    const Log& frees = kKinds[kind].frees.at(readings++);
    log.insert(log.end(), frees.begin(), frees.end());
    allocations += kKinds[kind].allocations;
  }

  // The map at `place` is the first to hold the item, or none is.
  void LookUp(const std::vector<Chain>& chains, int family, Kind kind, std::size_t place,
              const string& key, const string& given) {
    const auto& [word, properties, maps, words] = chains[family];
    Strings({key, given});  // by value
    for (const string& property : properties) Call("GetProperty", {property, ""});
    // A region map's name is not composed; that of a carrier and region is joined from the carrier
    // map's and "_<region>", a string of its own.
    if (family != kRegion) Strings(maps);
#ifdef __GLIBCXX__  // It copies a long front before it joins something to it.
    if (family == kCarrierAndRegion) Strings({maps[1]});
#endif
    for (std::size_t i = 0; i < maps.size() && i <= place; ++i) {
      Call((family == kSim ? "sim_get_" : "get_") + kKinds[kind].name_in_core + "_item_exist",
           {maps[i], key});
    }
    if (family == kSim && place >= maps.size()) {
      return LookUp(chains, kCarrierAndRegion, kind, place - maps.size(), key, given);
    }
    const string map = place < maps.size() ? maps[place] : "DEFAULT";
    if (family != kDefaultMap) {
      if (kind <= kString) Read(kind, {map, key, given});
      string name = "get" + word + kKinds[kind].name;
      if (name == "getCotaRegionCustMapArray") {  // The lines of this one name others.
        name = place % 3 == 0 ? "getCotaCustMapArray" : "getCotaRegionCustStringArray";
      }
      log.push_back("print " + name + "Feature" + words[place] + kKinds[kind].line_end);
    }
    Read(kind, {map, key, given});
  }
};

// Makes the map at `place` the first that holds the item, as an odd answer. The maps before it say
// no in ways that a careless reader takes for yes; those after it would say yes.
bool LetAnswer(const std::vector<string>& maps, std::size_t place) {
  for (std::size_t i = maps.size(); i-- > 0;) {
    device.exists[maps[i]] = i == place ? 255 : i > place ? 1 : 254;
  }
  return place >= maps.size() || device.exists[maps[place]] == 255;
}

const std::pair<string, string> kCodes[] = {{"EU", "X1"},     {"", "X1"},
                                            {"EU", ""},       {" eU ", "x1 "},
                                            {kBytes, kBytes}, {"DEFAULT", "DEFAULT"}};

template <class Result, class... Default>
void WalkEveryPath(Family family, Result (*lookup)(string, Default...)) {
  const auto kind = static_cast<Kind>(Value(Result()).index());
  for (const auto& [region, carrier] : kCodes) {
    const std::vector<Chain> chains = ChainsOf(region, carrier);
    Log maps = chains[family].maps;
    const Log& more = chains[kCarrierAndRegion].maps;
    if (family == kSim) maps.insert(maps.end(), more.begin(), more.end());
    for (const auto& [key, defaults, recorded] : kQuestions) {
      for (std::size_t place = 0; place <= maps.size(); ++place) {
        device = {{{"ro.orvel.region", region}, {"persist.sys.cota.carrier", carrier}}};
        device.readings = kKinds[kind].readings;
        // Where two maps of the chain are one, the second can't be the first to answer.
        if (!LetAnswer(maps, place)) continue;
        Value value;
        const Log done = Record([&] { value = lookup(key, std::get<Default>(defaults)...); });
        Owed owed;
        owed.LookUp(chains, family, kind, place, key, sizeof...(Default) ? recorded[kind] : "");
        owed.log.push_back(std::to_string(owed.allocations));
        ASSERT_EQ(done, owed.log);
        const auto& values = kKinds[kind].values;
        ASSERT_EQ(value, family == kDefaultMap ? values.front() : values.back());
      }
    }
  }
}

TEST(Lookup, EveryOneAlongEveryPath) {
  const auto walk = [](Family family, auto... lookups) { (WalkEveryPath(family, lookups), ...); };
  walk(kDefaultMap, getCustBooleanFeature, getCustIntFeature, getCustFloatFeature,
       getCustStringFeature, getCustStringArrayFeature, getCustIntArrayFeature,
       getCustMapArrayFeature);
  walk(kRegion, getRegionCustBooleanFeature, getRegionCustIntFeature, getRegionCustFloatFeature,
       getRegionCustStringFeature, getRegionCustStringArrayFeature, getRegionCustIntArrayFeature,
       getRegionCustMapArrayFeature);
  walk(kCarrier, getCotaCustBooleanFeature, getCotaCustIntFeature, getCotaCustFloatFeature,
       getCotaCustStringFeature, getCotaCustStringArrayFeature, getCotaCustIntArrayFeature,
       getCotaCustMapArrayFeature);
  walk(kCarrierAndRegion, getCotaRegionCustBooleanFeature, getCotaRegionCustIntFeature,
       getCotaRegionCustFloatFeature, getCotaRegionCustStringFeature,
       getCotaRegionCustStringArrayFeature, getCotaRegionCustIntArrayFeature,
       getCotaRegionCustMapArrayFeature);
  walk(kSim, getSimCustBooleanFeature, getSimCustIntFeature, getSimCustStringFeature,
       getSimCustStringArrayFeature, getSimCustIntArrayFeature, getSimCustMapArrayFeature);
}

TEST(Lookup, HandsOverUnderTheDefaultFirstAndThenUnderTheBareCode) {
  for (const auto& [region, carrier] : kCodes) {
    device = {{{"persist.sys.cota.carrier", carrier}}};
    Owed owed;
    owed.Strings({kBytes});
    owed.Call("cxx_sim_set_the_cadrova", {"SIM_DEFAULT", kBytes, ""});
    owed.Call("GetProperty", {"persist.sys.cota.carrier", ""});
    owed.Call("cxx_sim_set_the_cadrova", {carrier, kBytes, ""});
    owed.log.push_back(std::to_string(owed.allocations));
    EXPECT_EQ(Record([] { setSimCadrova(kBytes, ""); }), owed.log);
  }
}

}  // namespace
