// The typed bridge against a core that writes down every call, argument and release.

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstring>

#include "cadrova/cadrova.h"
#include "recording_device.h"

namespace {

using recording::device;
using recording::Log;
using recording::Record;
using recording::RecordHeap;

using StringArray = std::vector<std::string>;
using IntArray = std::vector<int>;
using MapArray = std::vector<std::pair<std::string, std::string>>;

const std::string kLongMap = "a map name well beyond the short-string buffer";
const std::string kLongKey = "a.feature.key.well.beyond.the.short.string.buffer";
const std::string kLongText = "a default well beyond the short-string buffer too";

class Bridge : public testing::Test {
 protected:
  void SetUp() override { device = {}; }
};

// An array block of pointers to strings "string 0", "string 1", ...; a nullptr stays NULL.
std::function<void*()> Pointers(std::vector<const char*> strings) {
  return [strings] {
    auto* block = static_cast<char**>(recording::Block("array", strings.size() * sizeof(char*)));
    for (std::size_t i = 0; i < strings.size(); ++i) {
      const std::string name = "string " + std::to_string(i);
      block[i] = strings[i] == nullptr ? nullptr : recording::StringBlock(name, strings[i]);
    }
    return block;
  };
}

std::function<void*()> Ints(std::vector<std::int32_t> slots) {
  return [slots] {
    void* block = recording::Block("array", slots.size() * sizeof slots[0]);
    return std::memcpy(block, slots.data(), slots.size() * sizeof slots[0]);
  };
}

TEST_F(Bridge, BooleanIsTheLowestBitOfTheAnswer) {
  for (int answer : {0, 1, 2, 3, 254, 255}) {
    for (bool given : {false, true}) {
      device.bools = {static_cast<std::uint8_t>(answer)};
      bool value = false;
      EXPECT_EQ(Record([&] { value = android::getBooleanFromRust("M", "k", given); }),
                Log{given ? "get_bool_from_map(M, k, 1)" : "get_bool_from_map(M, k, 0)"});
      EXPECT_EQ(value, answer % 2 == 1) << answer;
    }
  }
}

TEST_F(Bridge, NumbersPassUnchangedBothWays) {
  for (int number : {0, 7, -7, INT_MAX, INT_MIN}) {
    device.ints = {number};
    const Log log = Record([&] { EXPECT_EQ(android::getIntFromRust("", "k", 5), number); });
    EXPECT_EQ(log, Log{"get_int_from_map(, k, 5)"});
    EXPECT_EQ(android::getIntFromRust("M", "k", number), number);
  }
  for (float number : {0.0F, 1.1F, -3.4e38F, 1e-45F, INFINITY}) {
    device.floats = {number};
    const Log log = Record([&] { EXPECT_EQ(android::getFloatFromRust("M", "", 0.5F), number); });
    EXPECT_EQ(log, Log{"get_float_from_map(M, , 0.500000)"});
    EXPECT_EQ(android::getFloatFromRust("M", "k", number), number);
  }
}

TEST_F(Bridge, StringEndsAtTheFirstNulAndItsBlockIsFreedOnce) {
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"", ""}, {"text", "text"}, {std::string("a\0b", 3), "a"}, {kLongText, kLongText}};
  for (const auto& [bytes, expected] : cases) {
    device.strings = {bytes};
    std::string value;
    EXPECT_EQ(Record([&] { value = android::getStringFromRust("M", "k", "d"); }),
              (Log{"get_str_from_map(M, k, d)", "free string"}));
    EXPECT_EQ(value, expected);
  }
}

template <class List>
struct ListCase {
  std::function<void*()> block;
  List expected;
  Log frees;
};

template <class List>
void Check(List (*read)(std::string, std::string), const std::string& asked,
           const std::vector<ListCase<List>>& cases) {
  for (const auto& [block, expected, frees] : cases) {
    device.list = block;
    List value(1);
    Log log = {asked};
    log.insert(log.end(), frees.begin(), frees.end());
    EXPECT_EQ(Record([&] { value = read("M", "k"); }), log);
    EXPECT_EQ(value, expected);
  }
}

void* Nothing() { return nullptr; }

TEST_F(Bridge, StringArrayFreesEachStringAndThenTheArray) {
  Check<StringArray>(
      android::getStringArrayFromRust, "get_str_arr_from_map(M, k)",
      {{Nothing, {}, {}},
       {Pointers({nullptr}), {}, {"free array"}},
       {Pointers({"b", "", "b", kLongText.c_str(), nullptr}),
        {"b", "", "b", kLongText},
        {"free string 0", "free string 1", "free string 2", "free string 3", "free array"}}});
}

TEST_F(Bridge, IntArrayReadsAsManyAsItsCountSays) {
  Check<IntArray>(android::getIntArrayFromRust, "get_int_arr_from_map(M, k)",
                  {{Nothing, {}, {}},
                   {Ints({0}), {}, {"free array"}},
                   {Ints({-1, 5}), {}, {"free array"}},
                   {Ints({INT_MIN, 5}), {}, {"free array"}},
                   {Ints({3, 7, -2, 0, 99}), {7, -2, 0}, {"free array"}},
                   {Ints({2, INT_MAX, INT_MIN}), {INT_MAX, INT_MIN}, {"free array"}}});
}

TEST_F(Bridge, MapArrayStopsAtTheFirstNullAndFreesTheArrayAlone) {
  Check<MapArray>(
      android::getMapFromRust, "get_map_arr_from_map(M, k)",
      {{Nothing, {}, {}},
       {Pointers({nullptr}), {}, {"free array"}},  // one slot only: the next may not be read
       {Pointers({"a", "1", "b", nullptr, "c", "3", nullptr}), {{"a", "1"}}, {"free array"}},
       {Pointers({"a", "1", nullptr, "x", "c", "3"}), {{"a", "1"}}, {"free array"}},
       {Pointers({"k", "1", "k", "", "", "1", "k", "1", nullptr}),
        {{"k", "1"}, {"k", ""}, {"", "1"}, {"k", "1"}},
        {"free array"}},
       {Pointers({kLongKey.c_str(), kLongText.c_str(), nullptr}),
        {{kLongKey, kLongText}},
        {"free array"}}});
}

// The sizes that `act` allocates, in order.
std::vector<std::size_t> Allocations(const std::function<void()>& act) {
  RecordHeap(act);
  return device.allocations;
}

// Long strings need the heap, and so show their copies: one of each argument before the core is
// asked, gone before the answer becomes a value and its block is released.
TEST_F(Bridge, PrivateCopiesAreGoneBeforeTheAnswerIsLookedAt) {
  std::string map = kLongMap;
  std::string key = kLongKey;
  std::string text = kLongText;
  device.strings = {kLongText};
  std::string value;
  const Log log = RecordHeap(
      [&] { value = android::getStringFromRust(std::move(map), std::move(key), std::move(text)); });
  const std::string asked =
      "get_str_from_map(" + kLongMap + ", " + kLongKey + ", " + kLongText + ")";
  EXPECT_EQ(log,
            (Log{"new", "new", "new", asked, "delete", "delete", "delete", "new", "free string",
                 // The caller's own three end with the call.
                 "delete", "delete", "delete"}));
  auto copies = device.allocations;
  copies.resize(3);
  EXPECT_EQ(copies, Allocations([] {
              std::string plain_map = kLongMap, plain_key = kLongKey, plain_text = kLongText;
              (void)(plain_map.data() + plain_key.size() + plain_text.size());
            }));
}

TEST_F(Bridge, ListsCopyTheirArgumentsOnceAndGrowAsPlainVectorsDo) {
  std::vector<std::int32_t> slots = {100};
  slots.resize(101);
  device.list = Ints(slots);
  IntArray ints, plain_ints;
  EXPECT_EQ(Allocations([&] { ints = android::getIntArrayFromRust("M", "k"); }), Allocations([&] {
              for (int i = 0; i < 100; ++i) plain_ints.push_back(0);
            }));

  const char* const texts[] = {"a", "b", "c", kLongText.c_str(), "e"};
  device.list = Pointers({"a", "b", "c", kLongText.c_str(), "e", nullptr});
  StringArray strings, plain_strings;
  EXPECT_EQ(Allocations([&] { strings = android::getStringArrayFromRust("M", "k"); }),
            Allocations([&] {
              for (const char* text : texts) plain_strings.push_back(std::string(text));
            }));

  device.list = Pointers({"a", "1", "b", "2", kLongKey.c_str(), kLongText.c_str(), nullptr});
  MapArray pairs, plain_pairs;
  EXPECT_EQ(Allocations([&] { pairs = android::getMapFromRust("M", "k"); }), Allocations([&] {
              plain_pairs.emplace_back("a", "1");
              plain_pairs.emplace_back("b", "2");
              plain_pairs.emplace_back(kLongKey.c_str(), kLongText.c_str());
            }));
}

}  // namespace
