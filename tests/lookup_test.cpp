// Every lookup of the region, carrier, carrier-and-region and SIM families, along every path: what
// it asks of the device, in which order, what it prints and what it returns.

#include <gtest/gtest.h>

#include <cstring>
#include <tuple>
#include <variant>

#include "cadrova/cadrova.h"
#include "recording_device.h"

namespace {

using namespace android;
using recording::device;
using recording::Log;
using recording::Record;

enum Family { kRegion, kCarrier, kCarrierAndRegion, kSim };
enum Kind { kBoolean, kInt, kFloat, kString, kStringArray, kIntArray, kMapArray };

// In the order of the kinds.
using AnyValue = std::variant<bool, int, float, std::string, std::vector<std::string>,
                              std::vector<int>, std::vector<std::pair<std::string, std::string>>>;
const std::tuple<bool, int, float, std::string> kDefaults = {true, 7, 0.5F, "d"};

// What is asked of the core for each kind, and what comes of it: the core's two readings differ.
const struct {
  const char* exists;
  const char* read;
  const char* default_value;
  Log frees;
  const char* returned;  // as GoogleTest prints it
} kKinds[] = {
    {"get_bool_item_exist", "get_bool_from_map", ", 1", {}, "false"},
    {"get_int_item_exist", "get_int_from_map", ", 7", {}, "22"},
    {"get_float_item_exist", "get_float_from_map", ", 0.500000", {}, "2.5"},
    {"get_str_item_exist", "get_str_from_map", ", d", {"free string"}, "\"second\""},
    {"get_str_arr_item_exist",
     "get_str_arr_from_map",
     "",
     {"free string", "free array"},
     "{ \"s\" }"},
    {"get_int_arr_item_exist", "get_int_arr_from_map", "", {"free array"}, "{ 5 }"},
    {"get_map_arr_item_exist", "get_map_arr_from_map", "", {"free array"}, R"({ ("k", "v") })"},
};

// A device with these codes, whose core answers as that kind.
void Prepare(const std::string& region, const std::string& carrier, Kind kind) {
  device = {};
  device.properties = {{"ro.orvel.region", region}, {"persist.sys.cota.carrier", carrier}};
  device.bools = {3, 2};
  device.ints = {11, 22};
  device.floats = {1.5F, 2.5F};
  device.strings = {"first", "second"};
  device.list = [kind]() -> void* {
    if (kind == kIntArray) {
      const std::int32_t slots[] = {1, 5};
      return std::memcpy(recording::Block("array", sizeof slots), slots, sizeof slots);
    }
    char** block = static_cast<char**>(recording::Block("array", 3 * sizeof(char*)));
    block[0] = recording::StringBlock("string", kind == kMapArray ? "k" : "s");
    block[1] = kind == kMapArray ? recording::StringBlock("string", "v") : nullptr;
    block[2] = nullptr;
    return block;
  };
}

struct Member {
  template <class Value, class... Given>
  Member(Family its_family, Value (*lookup)(std::string, Given...), Log its_lines)
      : call([lookup](const std::string& key) {
          return testing::PrintToString(lookup(key, std::get<Given>(kDefaults)...));
        }),
        lines(std::move(its_lines)),
        family(its_family),
        kind(static_cast<Kind>(AnyValue(Value()).index())) {}

  std::function<std::string(const std::string& key)> call;
  Log lines;  // by the place of the map that answers
  Family family;
  Kind kind;
};

const Member kMembers[] = {
    Member(kRegion, getRegionCustBooleanFeature,
           {"getRegionCustBooleanFeature exist with the region : 1 \n",
            "getRegionCustBooleanFeature do not exist with the region : 1 \n"}),
    Member(kRegion, getRegionCustIntFeature,
           {"getRegionCustIntFeature exist with the region : 11 \n",
            "getRegionCustIntFeature do not exist with the region : 11 \n"}),
    Member(kRegion, getRegionCustFloatFeature,
           {"getRegionCustFloatFeature exist with the region : 1.500000 \n",
            "getRegionCustFloatFeature do not exist with the region : 1.500000 \n"}),
    Member(kRegion, getRegionCustStringFeature,
           {"getRegionCustStringFeature exist with the region : first \n",
            "getRegionCustStringFeature do not exist with the region : first \n"}),
    Member(kRegion, getRegionCustStringArrayFeature,
           {"getRegionCustStringArrayFeature exist with the region ! ",
            "getRegionCustStringArrayFeature do not exist with the region ! "}),
    Member(kRegion, getRegionCustIntArrayFeature,
           {"getRegionCustIntArrayFeature exist with the region ! ",
            "getRegionCustIntArrayFeature do not exist with the region ! "}),
    Member(kRegion, getRegionCustMapArrayFeature,
           {"getRegionCustMapArrayFeature exist with the region ! ",
            "getRegionCustMapArrayFeature do not exist with the region ! "}),
    Member(kCarrier, getCotaCustBooleanFeature,
           {"getCotaCustBooleanFeature exist with the carrier : 1 \n",
            "getCotaCustBooleanFeature do not exist with the carrier : 1 \n"}),
    Member(kCarrier, getCotaCustIntFeature,
           {"getCotaCustIntFeature exist with the carrier : 11 \n",
            "getCotaCustIntFeature do not exist with the carrier : 11 \n"}),
    Member(kCarrier, getCotaCustFloatFeature,
           {"getCotaCustFloatFeature exist with the carrier : 1.500000 \n",
            "getCotaCustFloatFeature do not exist with the carrier : 1.500000 \n"}),
    Member(kCarrier, getCotaCustStringFeature,
           {"getCotaCustStringFeature exist with the carrier : first \n",
            "getCotaCustStringFeature do not exist with the carrier : first \n"}),
    Member(kCarrier, getCotaCustStringArrayFeature,
           {"getCotaCustStringArrayFeature exist with the carrier ! ",
            "getCotaCustStringArrayFeature do not exist with the carrier ! "}),
    Member(kCarrier, getCotaCustIntArrayFeature,
           {"getCotaCustIntArrayFeature exist with the carrier ! ",
            "getCotaCustIntArrayFeature do not exist with the carrier ! "}),
    Member(kCarrier, getCotaCustMapArrayFeature,
           {"getCotaCustMapArrayFeature exist with the carrier ! ",
            "getCotaCustMapArrayFeature do not exist with the carrier ! "}),
    Member(kCarrierAndRegion, getCotaRegionCustBooleanFeature,
           {"getCotaRegionCustBooleanFeature exist with the carrier & region : 1 \n",
            "getCotaRegionCustBooleanFeature exist with the carrier : 1 \n",
            "getCotaRegionCustBooleanFeature exist with the region : 1 \n",
            "getCotaRegionCustBooleanFeature do not exist with the carrier or region : 1 \n"}),
    Member(kCarrierAndRegion, getCotaRegionCustIntFeature,
           {"getCotaRegionCustIntFeature exist with the carrier & region : 11 \n",
            "getCotaRegionCustIntFeature exist with the carrier : 11 \n",
            "getCotaRegionCustIntFeature exist with the region : 11 \n",
            "getCotaRegionCustIntFeature do not exist with the carrier or region : 11 \n"}),
    Member(kCarrierAndRegion, getCotaRegionCustFloatFeature,
           {"getCotaRegionCustFloatFeature exist with the carrier & region : 1.500000 \n",
            "getCotaRegionCustFloatFeature exist with the carrier : 1.500000 \n",
            "getCotaRegionCustFloatFeature exist with the region : 1.500000 \n",
            "getCotaRegionCustFloatFeature do not exist with the carrier or region : 1.500000 \n"}),
    Member(kCarrierAndRegion, getCotaRegionCustStringFeature,
           {"getCotaRegionCustStringFeature exist with the carrier & region : first \n",
            "getCotaRegionCustStringFeature exist with the carrier : first \n",
            "getCotaRegionCustStringFeature exist with the region : first \n",
            "getCotaRegionCustStringFeature do not exist with the carrier or region : first \n"}),
    Member(kCarrierAndRegion, getCotaRegionCustStringArrayFeature,
           {"getCotaRegionCustStringArrayFeature exist with the carrier & region ! ",
            "getCotaRegionCustStringArrayFeature exist with the carrier ! ",
            "getCotaRegionCustStringArrayFeature exist with the region ! ",
            "getCotaRegionCustStringArrayFeature do not exist with the carrier or region ! "}),
    Member(kCarrierAndRegion, getCotaRegionCustIntArrayFeature,
           {"getCotaRegionCustIntArrayFeature exist with the carrier & region ! ",
            "getCotaRegionCustIntArrayFeature exist with the carrier ! ",
            "getCotaRegionCustIntArrayFeature exist with the region ! ",
            "getCotaRegionCustIntArrayFeature do not exist with the carrier or region ! "}),
    Member(kCarrierAndRegion, getCotaRegionCustMapArrayFeature,
           {"getCotaCustMapArrayFeature exist with the carrier & region ! ",
            "getCotaRegionCustStringArrayFeature exist with the carrier ! ",
            "getCotaRegionCustStringArrayFeature exist with the region ! ",
            "getCotaCustMapArrayFeature do not exist with the carrier or region ! "}),
    Member(kSim, getSimCustBooleanFeature,
           {"getSimCustBooleanFeature exist with the carrier : 1 \n",
            "getSimCustBooleanFeature do not exist with the carrier : 1 \n"}),
    Member(kSim, getSimCustIntFeature,
           {"getSimCustIntFeature exist with the carrier : 11 \n",
            "getSimCustIntFeature do not exist with the carrier : 11 \n"}),
    Member(kSim, getSimCustStringFeature,
           {"getSimCustStringFeature exist with the carrier : first \n",
            "getSimCustStringFeature do not exist with the carrier : first \n"}),
    Member(kSim, getSimCustStringArrayFeature,
           {"getSimCustStringArrayFeature exist with the carrier ! ",
            "getSimCustStringArrayFeature do not exist with the carrier ! "}),
    Member(kSim, getSimCustIntArrayFeature,
           {"getSimCustIntArrayFeature exist with the carrier ! ",
            "getSimCustIntArrayFeature do not exist with the carrier ! "}),
    Member(kSim, getSimCustMapArrayFeature,
           {"getSimCustMapArrayFeature exist with the carrier ! ",
            "getSimCustMapArrayFeature do not exist with the carrier ! "}),
};

// Codes of the device, and each family's maps in the order in which they are tested.
const std::string kLong = "a-code-well-beyond-any-short-string-buffer";
const struct Codes {
  std::string region, carrier;
  std::vector<std::string> maps[4];
} kCodes[] = {
    {"EU", "X1", {{"EU"}, {"COTA_X1"}, {"COTA_X1_EU", "COTA_X1", "EU"}, {"SIM_X1", "SIM_DEFAULT"}}},
    {"", "X1", {{""}, {"COTA_X1"}, {"COTA_X1_", "COTA_X1", ""}, {"SIM_X1", "SIM_DEFAULT"}}},
    {"EU", "", {{"EU"}, {"COTA_"}, {"COTA__EU", "COTA_", "EU"}, {"SIM_", "SIM_DEFAULT"}}},
    {"", "", {{""}, {"COTA_"}, {"COTA__", "COTA_", ""}, {"SIM_", "SIM_DEFAULT"}}},
    {" eU ",
     "x1 ",
     {{" eU "}, {"COTA_x1 "}, {"COTA_x1 _ eU ", "COTA_x1 ", " eU "}, {"SIM_x1 ", "SIM_DEFAULT"}}},
    {kLong,
     kLong,
     {{kLong},
      {"COTA_" + kLong},
      {"COTA_" + kLong + "_" + kLong, "COTA_" + kLong, kLong},
      {"SIM_" + kLong, "SIM_DEFAULT"}}},
    {"DEFAULT",
     "DEFAULT",
     {{"DEFAULT"},
      {"COTA_DEFAULT"},
      {"COTA_DEFAULT_DEFAULT", "COTA_DEFAULT", "DEFAULT"},
      {"SIM_DEFAULT", "SIM_DEFAULT"}}},
};

const char kReadRegion[] = "GetProperty(ro.orvel.region, \"\")";
const char kReadCarrier[] = "GetProperty(persist.sys.cota.carrier, \"\")";
const Log kPropertyReads[] = {
    {kReadRegion}, {kReadCarrier}, {kReadRegion, kReadCarrier}, {kReadCarrier}};

void Append(Log& log, const Log& more) { log.insert(log.end(), more.begin(), more.end()); }

// The family's tests up to the map at `place`, or of all its maps.
Log Tests(const Member& member, const Codes& codes, std::size_t place, const std::string& key) {
  Log log = kPropertyReads[member.family];
  const auto& maps = codes.maps[member.family];
  for (std::size_t i = 0; i < maps.size() && i <= place; ++i) {
    const char* sim = member.family == kSim ? "sim_" : "";
    log.push_back(sim + std::string(kKinds[member.kind].exists) + "(" + maps[i] + ", " + key + ")");
  }
  return log;
}

// The report on the map at `place`: two readings around the line, or one after it.
Log Reading(const Member& member, const Codes& codes, std::size_t place, const std::string& key,
            bool for_sim) {
  const auto& kind = kKinds[member.kind];
  const auto& maps = codes.maps[member.family];
  const std::string map = place < maps.size() ? maps[place] : "DEFAULT";
  const char* given = for_sim && member.kind == kString ? ", " : kind.default_value;
  Log read = {kind.read + ("(" + map + ", " + key) + given + ")"};
  Append(read, kind.frees);
  Log log;
  const bool is_list = member.kind > kString;
  if (!is_list) log = read;
  log.push_back((is_list ? "puts(" : "printf(") + member.lines.at(place) + ")");
  Append(log, read);
  return log;
}

// Makes the map at `place` the first that holds the item, as an odd answer. The maps before it say
// no in ways that a careless reader takes for yes; those after it would say yes.
bool LetAnswer(const std::vector<std::string>& maps, std::size_t place) {
  for (std::size_t i = maps.size(); i-- > 0;) {
    device.exists[maps[i]] = i == place ? 255 : i > place ? 1 : 254;
  }
  return place >= maps.size() || device.exists[maps[place]] == 255;
}

TEST(Lookup, EveryMemberAlongEveryPath) {
  for (const Member& member : kMembers) {
    for (const Codes& codes : kCodes) {
      for (const std::string& key : {std::string("k"), std::string(), kLong}) {
        for (std::size_t place = 0; place < member.lines.size(); ++place) {
          Prepare(codes.region, codes.carrier, member.kind);
          // Where two maps of the chain are one, the second can't be the first to answer.
          if (!LetAnswer(codes.maps[member.family], place)) continue;
          Log expected = Tests(member, codes, place, key);
          Append(expected, Reading(member, codes, place, key, member.family == kSim));
          std::string returned;
          EXPECT_EQ(Record([&] { returned = member.call(key); }), expected);
          EXPECT_EQ(returned, kKinds[member.kind].returned);
        }
      }
    }
  }
}

TEST(Lookup, SimEndsInTheWholeCarrierAndRegionLookup) {
  for (const Member& member : kMembers) {
    if (member.family != kSim) continue;
    for (const Member& last : kMembers) {
      if (last.family != kCarrierAndRegion || last.kind != member.kind) continue;
      for (const Codes& codes : kCodes) {
        for (std::size_t place = 0; place < last.lines.size(); ++place) {
          Prepare(codes.region, codes.carrier, member.kind);
          LetAnswer(codes.maps[kCarrierAndRegion], place);
          Log expected = Tests(member, codes, 2, "k");
          Append(expected, Tests(last, codes, place, "k"));
          Append(expected, Reading(last, codes, place, "k", true));
          std::string returned;
          EXPECT_EQ(Record([&] { returned = member.call("k"); }), expected);
          EXPECT_EQ(returned, kKinds[member.kind].returned);
        }
      }
    }
  }
}

// A whole walk spelled out: a SIM question that the carrier's map answers in the end.
TEST(Lookup, ATypicalCallStepForStep) {
  device = {};
  device.properties = {{"ro.orvel.region", "EU"}, {"persist.sys.cota.carrier", "X1"}};
  device.exists = {{"COTA_X1", 1}, {"EU", 1}};
  device.ints = {5, 6};
  int value = 0;
  EXPECT_EQ(Record([&] { value = getSimCustIntFeature("key", 3); }),
            (Log{
                "GetProperty(persist.sys.cota.carrier, \"\")",
                "sim_get_int_item_exist(SIM_X1, key)",
                "sim_get_int_item_exist(SIM_DEFAULT, key)",
                "GetProperty(ro.orvel.region, \"\")",
                "GetProperty(persist.sys.cota.carrier, \"\")",
                "get_int_item_exist(COTA_X1_EU, key)",
                "get_int_item_exist(COTA_X1, key)",
                "get_int_from_map(COTA_X1, key, 3)",
                "printf(getCotaRegionCustIntFeature exist with the carrier : 5 \n)",
                "get_int_from_map(COTA_X1, key, 3)",
            }));
  EXPECT_EQ(value, 6);
}

TEST(Lookup, HandsOverUnderTheDefaultFirstAndThenUnderTheCodeAsItIsByThen) {
  device = {};
  device.properties = {{"persist.sys.cota.carrier", "X1"}};
  device.meanwhile = [](const std::string& event) {
    if (event.starts_with("cxx_sim")) device.properties["persist.sys.cota.carrier"] = "N7";
  };
  EXPECT_EQ(
      Record([] { setSimCadrova("one", ""); }),
      (Log{"cxx_sim_set_the_cadrova(SIM_DEFAULT, one, )",
           "GetProperty(persist.sys.cota.carrier, \"\")", "cxx_sim_set_the_cadrova(N7, one, )"}));
  device = {};
  EXPECT_EQ(Record([] { setSimCadrova("", kLong); }),
            (Log{"cxx_sim_set_the_cadrova(SIM_DEFAULT, , " + kLong + ")",
                 "GetProperty(persist.sys.cota.carrier, \"\")",
                 "cxx_sim_set_the_cadrova(, , " + kLong + ")"}));
}

}  // namespace
