#include "ring.h"

#include <android-base/properties.h>
#include <cadrova/cadrova.h>
#include <cadrova/host.h>
#include <gtest/gtest.h>

using android::base::SetProperty;
using namespace cadrova::host;

// Every test has a device of its own, with this customization.
class Ring : public testing::Test {
 protected:
  void SetUp() override {
    StartOver();
    ASSERT_EQ(AnswerFromText(R"(
        DEFAULT.calling.ring_seconds = 30
        EU.calling.ring_seconds = 1
        COTA_X1.calling.ring_seconds = 25
        COTA_X1_EU.calling.ring_seconds = 90)"),
              std::nullopt);
  }
};

TEST_F(Ring, OfEachDevice) {
  const struct {
    const char *region, *carrier;
    int seconds;
  } devices[] = {{"", "", 30}, {"EU", "", 5}, {"", "X1", 25}, {"EU", "X1", 60}};
  for (const auto& [region, carrier, seconds] : devices) {
    SetProperty("ro.orvel.region", region);
    SetProperty("persist.sys.cota.carrier", carrier);
    EXPECT_EQ(RingSeconds(), seconds) << region << ' ' << carrier;
  }
}

TEST_F(Ring, OfASim) {
  android::setSimCadrova("calling.ring_seconds", "12");
  EXPECT_EQ(RingSeconds(), 12);
  ForgetSim();
  EXPECT_EQ(RingSeconds(), 30);
}

TEST_F(Ring, IsNotTakenFromDataWithAMistake) {
  const auto mistake = AnswerFromText("[DEFAULT]\ncalling.ring_seconds = 1979-05-27\n");
  ASSERT_TRUE(mistake);
  EXPECT_EQ(ToString(*mistake), "<text>:2:24: a date or time is no kind of value");
  EXPECT_EQ(RingSeconds(), 30) << "as before";
}
