// Every lookup of the region, carrier, carrier-and-region and SIM families, along every path: what
// it asks of the device, in which order, what it prints and what it returns.

#include <gtest/gtest.h>

#include <cstring>

#include "cadrova/cadrova.h"
#include "recording_device.h"

namespace {

using recording::device;
using recording::Log;
using recording::Record;

enum Family { kRegion, kCarrier, kCarrierAndRegion, kSim };
enum Kind { kBoolean, kInt, kFloat, kString, kStringArray, kIntArray, kMapArray };

std::string Text(bool value) { return value ? "yes" : "no"; }
std::string Text(int value) { return std::to_string(value); }
std::string Text(float value) { return std::to_string(value); }
std::string Text(const std::string& value) { return value; }
std::string Text(const std::pair<std::string, std::string>& pair) {
  return pair.first + '=' + pair.second;
}
template <class Element>
std::string Text(const std::vector<Element>& list) {
  std::string text;
  for (const Element& element : list) text += Text(element) + ';';
  return text;
}

// What is asked of the core for each kind, and what comes of it: the core's two readings differ.
const struct {
  const char* exists;
  const char* read;
  const char* default_value;
  Log frees;
  const char* returned;
} kKinds[] = {
    {"get_bool_item_exist", "get_bool_from_map", ", 1", {}, "no"},
    {"get_int_item_exist", "get_int_from_map", ", 7", {}, "22"},
    {"get_float_item_exist", "get_float_from_map", ", 0.500000", {}, "2.500000"},
    {"get_str_item_exist", "get_str_from_map", ", d", {"free string"}, "second"},
    {"get_str_arr_item_exist", "get_str_arr_from_map", "", {"free string", "free array"}, "s;"},
    {"get_int_arr_item_exist", "get_int_arr_from_map", "", {"free array"}, "5;"},
    {"get_map_arr_item_exist", "get_map_arr_from_map", "", {"free array"}, "k=v;"},
};

void AnswerAs(Kind kind) {
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

const struct Member {
  Family family;
  Kind kind;
  std::string (*call)(const std::string& key);
  Log lines;  // by the place of the map that answers
} kMembers[] = {
    {kRegion,
     kBoolean,
     [](const std::string& key) { return Text(android::getRegionCustBooleanFeature(key, true)); },
     {"printf(getRegionCustBooleanFeature exist with the region : 1 \n)",
      "printf(getRegionCustBooleanFeature do not exist with the region : 1 \n)"}},
    {kRegion,
     kInt,
     [](const std::string& key) { return Text(android::getRegionCustIntFeature(key, 7)); },
     {"printf(getRegionCustIntFeature exist with the region : 11 \n)",
      "printf(getRegionCustIntFeature do not exist with the region : 11 \n)"}},
    {kRegion,
     kFloat,
     [](const std::string& key) { return Text(android::getRegionCustFloatFeature(key, 0.5F)); },
     {"printf(getRegionCustFloatFeature exist with the region : 1.500000 \n)",
      "printf(getRegionCustFloatFeature do not exist with the region : 1.500000 \n)"}},
    {kRegion,
     kString,
     [](const std::string& key) { return Text(android::getRegionCustStringFeature(key, "d")); },
     {"printf(getRegionCustStringFeature exist with the region : first \n)",
      "printf(getRegionCustStringFeature do not exist with the region : first \n)"}},
    {kRegion,
     kStringArray,
     [](const std::string& key) { return Text(android::getRegionCustStringArrayFeature(key)); },
     {"puts(getRegionCustStringArrayFeature exist with the region ! )",
      "puts(getRegionCustStringArrayFeature do not exist with the region ! )"}},
    {kRegion,
     kIntArray,
     [](const std::string& key) { return Text(android::getRegionCustIntArrayFeature(key)); },
     {"puts(getRegionCustIntArrayFeature exist with the region ! )",
      "puts(getRegionCustIntArrayFeature do not exist with the region ! )"}},
    {kRegion,
     kMapArray,
     [](const std::string& key) { return Text(android::getRegionCustMapArrayFeature(key)); },
     {"puts(getRegionCustMapArrayFeature exist with the region ! )",
      "puts(getRegionCustMapArrayFeature do not exist with the region ! )"}},
    {kCarrier,
     kBoolean,
     [](const std::string& key) { return Text(android::getCotaCustBooleanFeature(key, true)); },
     {"printf(getCotaCustBooleanFeature exist with the carrier : 1 \n)",
      "printf(getCotaCustBooleanFeature do not exist with the carrier : 1 \n)"}},
    {kCarrier,
     kInt,
     [](const std::string& key) { return Text(android::getCotaCustIntFeature(key, 7)); },
     {"printf(getCotaCustIntFeature exist with the carrier : 11 \n)",
      "printf(getCotaCustIntFeature do not exist with the carrier : 11 \n)"}},
    {kCarrier,
     kFloat,
     [](const std::string& key) { return Text(android::getCotaCustFloatFeature(key, 0.5F)); },
     {"printf(getCotaCustFloatFeature exist with the carrier : 1.500000 \n)",
      "printf(getCotaCustFloatFeature do not exist with the carrier : 1.500000 \n)"}},
    {kCarrier,
     kString,
     [](const std::string& key) { return Text(android::getCotaCustStringFeature(key, "d")); },
     {"printf(getCotaCustStringFeature exist with the carrier : first \n)",
      "printf(getCotaCustStringFeature do not exist with the carrier : first \n)"}},
    {kCarrier,
     kStringArray,
     [](const std::string& key) { return Text(android::getCotaCustStringArrayFeature(key)); },
     {"puts(getCotaCustStringArrayFeature exist with the carrier ! )",
      "puts(getCotaCustStringArrayFeature do not exist with the carrier ! )"}},
    {kCarrier,
     kIntArray,
     [](const std::string& key) { return Text(android::getCotaCustIntArrayFeature(key)); },
     {"puts(getCotaCustIntArrayFeature exist with the carrier ! )",
      "puts(getCotaCustIntArrayFeature do not exist with the carrier ! )"}},
    {kCarrier,
     kMapArray,
     [](const std::string& key) { return Text(android::getCotaCustMapArrayFeature(key)); },
     {"puts(getCotaCustMapArrayFeature exist with the carrier ! )",
      "puts(getCotaCustMapArrayFeature do not exist with the carrier ! )"}},
    {kCarrierAndRegion,
     kBoolean,
     [](const std::string& key) {
       return Text(android::getCotaRegionCustBooleanFeature(key, true));
     },
     {"printf(getCotaRegionCustBooleanFeature exist with the carrier & region : 1 \n)",
      "printf(getCotaRegionCustBooleanFeature exist with the carrier : 1 \n)",
      "printf(getCotaRegionCustBooleanFeature exist with the region : 1 \n)",
      "printf(getCotaRegionCustBooleanFeature do not exist with the carrier or region : 1 \n)"}},
    {kCarrierAndRegion,
     kInt,
     [](const std::string& key) { return Text(android::getCotaRegionCustIntFeature(key, 7)); },
     {"printf(getCotaRegionCustIntFeature exist with the carrier & region : 11 \n)",
      "printf(getCotaRegionCustIntFeature exist with the carrier : 11 \n)",
      "printf(getCotaRegionCustIntFeature exist with the region : 11 \n)",
      "printf(getCotaRegionCustIntFeature do not exist with the carrier or region : 11 \n)"}},
    {kCarrierAndRegion,
     kFloat,
     [](const std::string& key) { return Text(android::getCotaRegionCustFloatFeature(key, 0.5F)); },
     {"printf(getCotaRegionCustFloatFeature exist with the carrier & region : 1.500000 \n)",
      "printf(getCotaRegionCustFloatFeature exist with the carrier : 1.500000 \n)",
      "printf(getCotaRegionCustFloatFeature exist with the region : 1.500000 \n)",
      "printf(getCotaRegionCustFloatFeature do not exist with the carrier or region : 1.500000 "
      "\n)"}},
    {kCarrierAndRegion,
     kString,
     [](const std::string& key) { return Text(android::getCotaRegionCustStringFeature(key, "d")); },
     {"printf(getCotaRegionCustStringFeature exist with the carrier & region : first \n)",
      "printf(getCotaRegionCustStringFeature exist with the carrier : first \n)",
      "printf(getCotaRegionCustStringFeature exist with the region : first \n)",
      "printf(getCotaRegionCustStringFeature do not exist with the carrier or region : first \n)"}},
    {kCarrierAndRegion,
     kStringArray,
     [](const std::string& key) { return Text(android::getCotaRegionCustStringArrayFeature(key)); },
     {"puts(getCotaRegionCustStringArrayFeature exist with the carrier & region ! )",
      "puts(getCotaRegionCustStringArrayFeature exist with the carrier ! )",
      "puts(getCotaRegionCustStringArrayFeature exist with the region ! )",
      "puts(getCotaRegionCustStringArrayFeature do not exist with the carrier or region ! )"}},
    {kCarrierAndRegion,
     kIntArray,
     [](const std::string& key) { return Text(android::getCotaRegionCustIntArrayFeature(key)); },
     {"puts(getCotaRegionCustIntArrayFeature exist with the carrier & region ! )",
      "puts(getCotaRegionCustIntArrayFeature exist with the carrier ! )",
      "puts(getCotaRegionCustIntArrayFeature exist with the region ! )",
      "puts(getCotaRegionCustIntArrayFeature do not exist with the carrier or region ! )"}},
    {kCarrierAndRegion,
     kMapArray,
     [](const std::string& key) { return Text(android::getCotaRegionCustMapArrayFeature(key)); },
     {"puts(getCotaCustMapArrayFeature exist with the carrier & region ! )",
      "puts(getCotaRegionCustStringArrayFeature exist with the carrier ! )",
      "puts(getCotaRegionCustStringArrayFeature exist with the region ! )",
      "puts(getCotaCustMapArrayFeature do not exist with the carrier or region ! )"}},
    {kSim,
     kBoolean,
     [](const std::string& key) { return Text(android::getSimCustBooleanFeature(key, true)); },
     {"printf(getSimCustBooleanFeature exist with the carrier : 1 \n)",
      "printf(getSimCustBooleanFeature do not exist with the carrier : 1 \n)"}},
    {kSim,
     kInt,
     [](const std::string& key) { return Text(android::getSimCustIntFeature(key, 7)); },
     {"printf(getSimCustIntFeature exist with the carrier : 11 \n)",
      "printf(getSimCustIntFeature do not exist with the carrier : 11 \n)"}},
    {kSim,
     kString,
     [](const std::string& key) { return Text(android::getSimCustStringFeature(key)); },
     {"printf(getSimCustStringFeature exist with the carrier : first \n)",
      "printf(getSimCustStringFeature do not exist with the carrier : first \n)"}},
    {kSim,
     kStringArray,
     [](const std::string& key) { return Text(android::getSimCustStringArrayFeature(key)); },
     {"puts(getSimCustStringArrayFeature exist with the carrier ! )",
      "puts(getSimCustStringArrayFeature do not exist with the carrier ! )"}},
    {kSim,
     kIntArray,
     [](const std::string& key) { return Text(android::getSimCustIntArrayFeature(key)); },
     {"puts(getSimCustIntArrayFeature exist with the carrier ! )",
      "puts(getSimCustIntArrayFeature do not exist with the carrier ! )"}},
    {kSim,
     kMapArray,
     [](const std::string& key) { return Text(android::getSimCustMapArrayFeature(key)); },
     {"puts(getSimCustMapArrayFeature exist with the carrier ! )",
      "puts(getSimCustMapArrayFeature do not exist with the carrier ! )"}},
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
  if (member.kind <= kString) log = read;
  log.push_back(member.lines.at(place));
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
          device = {};
          device.properties = {{"ro.orvel.region", codes.region},
                               {"persist.sys.cota.carrier", codes.carrier}};
          AnswerAs(member.kind);
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
          device = {};
          device.properties = {{"ro.orvel.region", codes.region},
                               {"persist.sys.cota.carrier", codes.carrier}};
          AnswerAs(member.kind);
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
  EXPECT_EQ(Record([&] { value = android::getSimCustIntFeature("key", 3); }),
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
      Record([] { android::setSimCadrova("one", ""); }),
      (Log{"cxx_sim_set_the_cadrova(SIM_DEFAULT, one, )",
           "GetProperty(persist.sys.cota.carrier, \"\")", "cxx_sim_set_the_cadrova(N7, one, )"}));
  device = {};
  EXPECT_EQ(Record([] { android::setSimCadrova("", kLong); }),
            (Log{"cxx_sim_set_the_cadrova(SIM_DEFAULT, , " + kLong + ")",
                 "GetProperty(persist.sys.cota.carrier, \"\")",
                 "cxx_sim_set_the_cadrova(, , " + kLong + ")"}));
}

}  // namespace
