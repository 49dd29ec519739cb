// The default-map lookups: one read of "DEFAULT" each, and nothing else.

#include <gtest/gtest.h>

#include "cadrova/cadrova.h"
#include "recording_device.h"

namespace {

using recording::device;
using recording::Log;
using recording::Record;
using recording::RecordHeap;

TEST(DefaultMap, EachMemberReadsDefaultOnceAndDoesNothingElse) {
  using namespace android;
  const struct {
    std::function<void()> lookup;
    Log expected;
  } cases[] = {
      {[] { EXPECT_TRUE(getCustBooleanFeature("k", true)); }, {"get_bool_from_map(DEFAULT, k, 1)"}},
      {[] { EXPECT_EQ(getCustIntFeature("", -7), -7); }, {"get_int_from_map(DEFAULT, , -7)"}},
      {[] { EXPECT_EQ(getCustFloatFeature("k", 0.5F), 0.5F); },
       {"get_float_from_map(DEFAULT, k, 0.500000)"}},
      {[] { EXPECT_EQ(getCustStringFeature("k", "d"), "d"); },
       {"get_str_from_map(DEFAULT, k, d)", "free string"}},
      {[] { EXPECT_TRUE(getCustStringArrayFeature("k").empty()); },
       {"get_str_arr_from_map(DEFAULT, k)"}},
      {[] { EXPECT_TRUE(getCustIntArrayFeature("k").empty()); },
       {"get_int_arr_from_map(DEFAULT, k)"}},
      {[] { EXPECT_TRUE(getCustMapArrayFeature("k").empty()); },
       {"get_map_arr_from_map(DEFAULT, k)"}},
  };
  for (const auto& [lookup, expected] : cases) {
    device = {};
    EXPECT_EQ(Record(lookup), expected);
  }
}

TEST(DefaultMap, CopiesKeyAndDefaultOnceForTheBridgeAndOnceForTheCore) {
  const std::string text = "well beyond the short-string buffer of any library";
  device = {};
  std::string key = text;
  RecordHeap([&] { android::getCustIntFeature(std::move(key), 0); });
  EXPECT_EQ(device.allocations.size(), 2U);
  key = text;
  std::string given = text;
  std::string value;
  RecordHeap([&] { value = android::getCustStringFeature(std::move(key), std::move(given)); });
  EXPECT_EQ(device.allocations.size(), 2U + 2U + 1U);  // and the result
}

}  // namespace
