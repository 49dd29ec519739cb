// The library with a recording device. A transcript shows every step of lookups of each family. A
// second test follows every path of every lookup: all kinds, texts and positions in the chain, and
// unusual codes and returned values.

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <climits>
#include <regex>
#include <sstream>
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

// Longer than the short-string buffer of any library, so that each copy allocates memory.
const string kTail = " of more than 22 characters";
const string kText = "TEXT" + kTail, kOther = "OTHER" + kTail;
const string kBytes = kText + '\0' + "after a NUL";

// Shows the first line that differs.
void ExpectLog(const Log& log, const Log& expected) {
  for (std::size_t i = 0; i < std::max(log.size(), expected.size()); ++i) {
    const string line = i < log.size() ? log[i] : "(no line)";
    const string expected_line = i < expected.size() ? expected[i] : "(no line)";
    ASSERT_EQ(line, expected_line) << "in line " << i + 1 << " of the log";
  }
}

// The log without the numbers of allocations.
Log Events(Log log) {
  for (string& line : log) {
    if (std::isdigit(line[0])) line.erase(0, line.find(' ') + 1);
  }
  return log;
}

// Calls the bridge with any byte for the `bool`, as a caller in another language may do.
__attribute__((no_sanitize("undefined"))) bool GetBoolean(Byte default_value) {
  auto* const read = reinterpret_cast<void (*)()>(getBooleanFromRust);
  return reinterpret_cast<bool (*)(string, string, Byte)>(read)("M", "k", default_value);
}

TEST(Bridge, UsesOnlyTheLowestBitOfABool) {
  for (const Byte byte : {0, 1, 2, 3, 254, 255}) {
    device = {.readings = {byte}};
    bool value = false;
    const string bit = std::to_string(byte % 2);
    ExpectLog(Record([&] { value = GetBoolean(byte); }),
              {"0 get_bool_from_map(M, k, " + bit + ")", "0 end"});
    EXPECT_EQ(std::to_string(value), bit);
  }
}

TEST(Bridge, ConvertsAndFreesBlocksOfEveryShape) {
  const auto text = [] { return Value(getStringFromRust("M", "k", "d")); };
  const auto strings = [] { return Value(getStringArrayFromRust("M", "k")); };
  const auto ints = [] { return Value(getIntArrayFromRust("M", "k")); };
  const auto pairs = [] { return Value(getMapFromRust("M", "k")); };
  const string with_nul("a\0b", 3);
  const struct {
    Reading block;
    std::function<Value()> read;
    Value value;
    Log frees = {"free array"};
  } cases[] = {
      // clang-format off
      {with_nul, text, "a", {"free " + with_nul}}, {"", text, "", {"free "}},
      {nullptr, strings, StringArray(), {}},
      {PointerBlock{nullptr}, strings, StringArray()},  // The next slot may not be read.
      {PointerBlock{"a", "", nullptr}, strings, StringArray{"a", ""}, {"free a", "free ", "free array"}},
      {nullptr, ints, IntArray(), {}}, {IntBlock{0}, ints, IntArray()}, {IntBlock{INT_MIN, 5}, ints, IntArray()},
      {IntBlock{2, INT_MAX, INT_MIN, 9}, ints, IntArray{INT_MAX, INT_MIN}},
      {nullptr, pairs, MapArray(), {}}, {PointerBlock{nullptr}, pairs, MapArray()},
      {PointerBlock{"a", "1", "b", nullptr, "c", "3", nullptr}, pairs, MapArray{{"a", "1"}}},
      {PointerBlock{"a", "1", nullptr, "x", "c", "3"}, pairs, MapArray{{"a", "1"}}}};
  // clang-format on
  for (const auto& [block, read, expected, frees] : cases) {
    device = {.readings = {block}};
    Value value;
    const Log events = Events(Record([&] { value = read(); }));
    EXPECT_EQ(value, expected);
    ExpectLog({events.begin() + 1, events.end() - 1}, frees);
  }
  device = {.readings = {nullptr}};
  EXPECT_DEATH(text(), "") << "a string block is never NULL";
}

// What differs between kinds: names, the end of the printed line, the default as it is recorded,
// what the core returns, and the value. Scalars and strings are read twice; the line shows the
// first reading.
enum Kind { kBoolean, kInt, kFloat, kString, kStringArray, kIntArray, kMapArray };
const std::tuple<bool, int, float, string> kDefaults = {true, 7, 0.5F, kOther};
const struct {
  string name, name_in_core, line_end, recorded_default;
  std::deque<Reading> readings;
  Value value;
} kKinds[] = {
    // clang-format off
    {"Boolean", "bool", " : 0 \\n", "1", {Byte{254}, Byte{3}}, true},
    {"Int", "int", " : -2147483648 \\n", "7", {INT_MIN, INT_MAX}, INT_MAX},
    {"Float", "float", " : 1.500000 \\n", "0.500000", {1.5F, 1e-45F}, 1e-45F},
    {"String", "str", " : " + kText + " \\n", kOther, {kText, kOther}, kOther},
    {"StringArray", "str_arr", " ! \\n", "", {PointerBlock{kText.c_str(), "b", nullptr}},
     StringArray{kText, "b"}},
    {"IntArray", "int_arr", " ! \\n", "", {IntBlock{2, 7, -2}}, IntArray{7, -2}},
    {"MapArray", "map_arr", " ! \\n", "", {PointerBlock{"k", "1", "k", "", nullptr}},
     MapArray{{"k", "1"}, {"k", ""}}},
    // clang-format on
};

// What differs between families: the word in the names of its functions, the properties that it
// reads, the maps that it tests for the item, and the words of its lines. The last words are for
// "DEFAULT".
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

// Adds the calls and lines of a lookup if the map at `position` of its chain is the first that
// contains the item, or if none does.
void AddCalls(Log& calls, const std::vector<Chain>& chains, Family family, Kind kind,
              std::size_t position, const string& key, const string& recorded_default) {
  const auto& [word, properties, maps, words] = chains[family];
  const string& core_name = kKinds[kind].name_in_core;
  for (const string& property : properties) calls.push_back(Call("GetProperty", {property, ""}));
  for (std::size_t i = 0; i < maps.size() && i <= position; ++i) {
    const string test = (family == kSim ? "sim_get_" : "get_") + core_name + "_item_exist";
    calls.push_back(Call(test, {maps[i], key}));
  }
  if (family == kSim && position >= maps.size()) {
    return AddCalls(calls, chains, kCarrierAndRegion, kind, position - maps.size(), key,
                    recorded_default);
  }
  Log arguments = {position < maps.size() ? maps[position] : "DEFAULT", key};
  if (kind <= kString) arguments.push_back(recorded_default);
  const string read = Call("get_" + core_name + "_from_map", arguments);
  if (family != kDefaultMap) {
    if (kind <= kString) calls.push_back(read);
    string name = "get" + word + kKinds[kind].name;
    if (name == "getCotaRegionCustMapArray") {  // Its lines name other functions.
      name = position % 3 == 0 ? "getCotaCustMapArray" : "getCotaRegionCustStringArray";
    }
    calls.push_back("print " + name + "Feature" + words[position] + kKinds[kind].line_end);
  }
  calls.push_back(read);
}

// Makes the map at `position` the first that contains the item. For the maps before it, existence
// tests return an even byte, which means false. The maps after it also contain the item. Returns
// false if this is impossible because two maps of the chain are the same.
bool MakeFirst(std::size_t position, const Log& maps) {
  for (std::size_t i = maps.size(); i-- > 0;) {
    device.exists[maps[i]] = i == position ? 255 : i > position ? 1 : 254;
  }
  return position >= maps.size() || device.exists[maps[position]] == 255;
}

const struct {
  string region, carrier, key;
} kDevices[] = {{"EU", "X1", "k"},    {"", "X1", ""},           {"EU", "", kBytes},
                {" eU ", "x1 ", "k"}, {kBytes, kBytes, kBytes}, {"DEFAULT", "DEFAULT", "k"}};

template <class Result, class... Default>
void FollowEveryPath(Family family, Result (*lookup)(string, Default...)) {
  const auto kind = static_cast<Kind>(Value(Result()).index());
  const auto& readings = kKinds[kind].readings;
  for (const auto& [region, carrier, key] : kDevices) {
    const std::vector<Chain> chains = ChainsOf(region, carrier);
    Log maps = chains[family].maps;
    const Log& more = chains[kCarrierAndRegion].maps;
    if (family == kSim) maps.insert(maps.end(), more.begin(), more.end());
    for (std::size_t position = 0; position <= maps.size(); ++position) {
      device = {{{"ro.orvel.region", region}, {"persist.sys.cota.carrier", carrier}}};
      device.readings = family == kDefaultMap ? std::deque{readings.back()} : readings;
      if (!MakeFirst(position, maps)) continue;
      Value value;
      Log events = Events(Record([&] { value = lookup(key, std::get<Default>(kDefaults)...); }));
      std::erase_if(events, [](const string& event) { return event.starts_with("free "); });
      events.pop_back();  // "end"
      const string recorded_default = sizeof...(Default) > 0 ? kKinds[kind].recorded_default : "";
      Log expected;
      AddCalls(expected, chains, family, kind, position, key, recorded_default);
      ExpectLog(events, expected);
      EXPECT_EQ(value, kKinds[kind].value);
      if (testing::Test::HasFailure()) return;
    }
  }
}

// All lookups of a family that has lookups of all kinds, and those that every family has.
#define COMMON_LOOKUPS(Word)                                                  \
  get##Word##BooleanFeature, get##Word##IntFeature, get##Word##StringFeature, \
      get##Word##StringArrayFeature, get##Word##IntArrayFeature, get##Word##MapArrayFeature
#define LOOKUPS(Word) COMMON_LOOKUPS(Word), get##Word##FloatFeature

TEST(Lookup, ConsultsItsChainAlongEveryPath) {
  const auto follow = [](Family family, auto... lookups) {
    (FollowEveryPath(family, lookups), ...);
  };
  follow(kDefaultMap, LOOKUPS(Cust));
  follow(kRegion, LOOKUPS(RegionCust));
  follow(kCarrier, LOOKUPS(CotaCust));
  follow(kCarrierAndRegion, LOOKUPS(CotaRegionCust));
  follow(kSim, COMMON_LOOKUPS(SimCust));
}

// One lookup per family, and the hand-over. The device's codes and the key are long, so every copy
// is counted. "~" is `kTail`.
TEST(Lookup, FollowsTheTranscript) {
  const string region = "REGION" + kTail, carrier = "CARRIER" + kTail, key = "KEY" + kTail;
  device = {{{"ro.orvel.region", region}, {"persist.sys.cota.carrier", carrier}}, {{region, 1}}};
  device.readings = {kText, IntBlock{3, 1, 2, 3}, kText, kOther, 1, 2};
  const Log log = Record([&] {
    getCustStringFeature(key, kOther);
    getRegionCustIntArrayFeature(key);
    getCotaCustStringFeature(key, kOther);
    getSimCustIntFeature(key, 7);
    setSimCadrova(kText, kOther);
  });
  string transcript =
#include "golden/lookups.inc"
      ;
#ifdef __GLIBCXX__  // libstdc++ copies a long left operand of `+` before it appends to the copy.
  transcript = std::regex_replace(transcript, std::regex("5 get"), "6 get");
#endif
  Log expected;
  std::istringstream lines(std::regex_replace(transcript, std::regex("~"), kTail));
  for (string line; std::getline(lines, line);) expected.push_back(line);
  ExpectLog(log, expected);
}

}  // namespace
