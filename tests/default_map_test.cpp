// The default-map lookups: one read of "DEFAULT" each, and nothing else.

#include <gtest/gtest.h>

#include "cadrova/cadrova.h"
#include "recording_device.h"

namespace {

using recording::device;
using recording::Log;
using recording::Record;

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

}  // namespace
