// Every lookup of the region, carrier, carrier-and-region and SIM families, along every path: what
// it asks of the device, in which order, what it prints and what it returns.

#include <gtest/gtest.h>

#include <algorithm>
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

// What each kind is called in the core's functions, how it is asked and printed, and what comes of
// it: the core's two readings differ, and the line ends in the first.
const struct {
  std::string name;
  const char* default_value;
  const char* line_end;
  Log frees;
  const char* returned;  // as GoogleTest prints it
} kKinds[] = {
    {"bool", ", 1", " : 1 \n", {}, "false"},
    {"int", ", 7", " : 11 \n", {}, "22"},
    {"float", ", 0.500000", " : 1.500000 \n", {}, "2.5"},
    {"str", ", d", " : first \n", {"free string"}, R"("second")"},
    {"str_arr", "", " ! ", {"free string", "free array"}, R"({ "s" })"},
    {"int_arr", "", " ! ", {"free array"}, "{ 5 }"},
    {"map_arr", "", " ! ", {"free array"}, R"({ ("k", "v") })"},
};

// What the lines of each family say, by the place of the map that answers.
const Log kWords[] = {
    {" exist with the region", " do not exist with the region"},
    {" exist with the carrier", " do not exist with the carrier"},
    {" exist with the carrier & region", " exist with the carrier", " exist with the region",
     " do not exist with the carrier or region"},
    {" exist with the carrier", " do not exist with the carrier"},
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
  Member(Family its_family, Log its_names, Value (*lookup)(std::string, Given...))
      : family(its_family),
        kind(static_cast<Kind>(AnyValue(Value()).index())),
        names(std::move(its_names)),
        call([lookup](const std::string& key) {
          return testing::PrintToString(lookup(key, std::get<Given>(kDefaults)...));
        }) {}

  std::string Line(std::size_t place) const {
    return names[names.size() == 1 ? 0 : place] + kWords[family][place] + kKinds[kind].line_end;
  }

  Family family;
  Kind kind;
  Log names;  // that its lines begin with: its own, or one by each place
  std::function<std::string(const std::string& key)> call;
};

const Member kMembers[] = {
    {kRegion, {"getRegionCustBooleanFeature"}, getRegionCustBooleanFeature},
    {kRegion, {"getRegionCustIntFeature"}, getRegionCustIntFeature},
    {kRegion, {"getRegionCustFloatFeature"}, getRegionCustFloatFeature},
    {kRegion, {"getRegionCustStringFeature"}, getRegionCustStringFeature},
    {kRegion, {"getRegionCustStringArrayFeature"}, getRegionCustStringArrayFeature},
    {kRegion, {"getRegionCustIntArrayFeature"}, getRegionCustIntArrayFeature},
    {kRegion, {"getRegionCustMapArrayFeature"}, getRegionCustMapArrayFeature},
    {kCarrier, {"getCotaCustBooleanFeature"}, getCotaCustBooleanFeature},
    {kCarrier, {"getCotaCustIntFeature"}, getCotaCustIntFeature},
    {kCarrier, {"getCotaCustFloatFeature"}, getCotaCustFloatFeature},
    {kCarrier, {"getCotaCustStringFeature"}, getCotaCustStringFeature},
    {kCarrier, {"getCotaCustStringArrayFeature"}, getCotaCustStringArrayFeature},
    {kCarrier, {"getCotaCustIntArrayFeature"}, getCotaCustIntArrayFeature},
    {kCarrier, {"getCotaCustMapArrayFeature"}, getCotaCustMapArrayFeature},
    {kCarrierAndRegion, {"getCotaRegionCustBooleanFeature"}, getCotaRegionCustBooleanFeature},
    {kCarrierAndRegion, {"getCotaRegionCustIntFeature"}, getCotaRegionCustIntFeature},
    {kCarrierAndRegion, {"getCotaRegionCustFloatFeature"}, getCotaRegionCustFloatFeature},
    {kCarrierAndRegion, {"getCotaRegionCustStringFeature"}, getCotaRegionCustStringFeature},
    {kCarrierAndRegion,
     {"getCotaRegionCustStringArrayFeature"},
     getCotaRegionCustStringArrayFeature},
    {kCarrierAndRegion, {"getCotaRegionCustIntArrayFeature"}, getCotaRegionCustIntArrayFeature},
    {kCarrierAndRegion,
     {"getCotaCustMapArrayFeature", "getCotaRegionCustStringArrayFeature",
      "getCotaRegionCustStringArrayFeature", "getCotaCustMapArrayFeature"},
     getCotaRegionCustMapArrayFeature},
    {kSim, {"getSimCustBooleanFeature"}, getSimCustBooleanFeature},
    {kSim, {"getSimCustIntFeature"}, getSimCustIntFeature},
    {kSim, {"getSimCustStringFeature"}, getSimCustStringFeature},
    {kSim, {"getSimCustStringArrayFeature"}, getSimCustStringArrayFeature},
    {kSim, {"getSimCustIntArrayFeature"}, getSimCustIntArrayFeature},
    {kSim, {"getSimCustMapArrayFeature"}, getSimCustMapArrayFeature},
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

std::string Call(const std::string& function, const std::string& map, const std::string& key,
                 const std::string& given = "") {
  return function + '(' + map + ", " + key + given + ')';
}

// All maps that a lookup may test, in order; a SIM lookup goes on to the carrier-and-region chain.
std::vector<std::string> Maps(const Member& member, const Codes& codes) {
  std::vector<std::string> maps = codes.maps[member.family];
  if (member.family == kSim) Append(maps, codes.maps[kCarrierAndRegion]);
  return maps;
}

const Member& CarrierAndRegionMember(Kind kind) {
  return *std::ranges::find_if(kMembers, [kind](const Member& member) {
    return member.family == kCarrierAndRegion && member.kind == kind;
  });
}

// What a lookup does where the map at `place` is the first to answer, or none is: the codes' reads,
// the tests up to there, and two readings around the line, or one after it.
Log Expected(const Member& member, const Codes& codes, std::size_t place, const std::string& key,
             const std::string& default_value) {
  const auto& kind = kKinds[member.kind];
  const auto& maps = codes.maps[member.family];
  Log log = kPropertyReads[member.family];
  const std::string test =
      (member.family == kSim ? "sim_get_" : "get_") + kind.name + "_item_exist";
  for (std::size_t i = 0; i < maps.size() && i <= place; ++i) {
    log.push_back(Call(test, maps[i], key));
  }
  if (member.family == kSim && place >= maps.size()) {
    Append(log, Expected(CarrierAndRegionMember(member.kind), codes, place - maps.size(), key,
                         default_value));
    return log;
  }
  const std::string map = place < maps.size() ? maps[place] : "DEFAULT";
  Log read = {Call("get_" + kind.name + "_from_map", map, key, default_value)};
  Append(read, kind.frees);
  const bool is_list = member.kind > kString;
  if (!is_list) Append(log, read);
  log.push_back((is_list ? "puts(" : "printf(") + member.Line(place) + ")");
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
    const bool has_no_default = member.family == kSim && member.kind == kString;
    const std::string given = has_no_default ? ", " : kKinds[member.kind].default_value;
    for (const Codes& codes : kCodes) {
      const std::vector<std::string> maps = Maps(member, codes);
      for (const std::string& key : {std::string("k"), std::string(), kLong}) {
        for (std::size_t place = 0; place <= maps.size(); ++place) {
          Prepare(codes.region, codes.carrier, member.kind);
          // Where two maps of the chain are one, the second can't be the first to answer.
          if (!LetAnswer(maps, place)) continue;
          std::string returned;
          EXPECT_EQ(Record([&] { returned = member.call(key); }),
                    Expected(member, codes, place, key, given));
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
