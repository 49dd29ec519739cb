#include "ring.h"

#include <cadrova/cadrova.h>
#include <cadrova/host.h>
#include <gtest/gtest.h>

using namespace cadrova::host;

// Every test starts on a new device, with this customization.
class Ring : public testing::Test {
 protected:
  void SetUp() override {
    Reset();
    ASSERT_EQ(LoadText(R"(
        DEFAULT.calling.ring_seconds = 30
        EU.calling.ring_seconds = 1
        COTA_X1.calling.ring_seconds = 25
        COTA_X1_EU.calling.ring_seconds = 90)"),
              std::vector<Error>());
  }
};

TEST_F(Ring, DependsOnTheDevice) {
  const struct {
    const char *region, *carrier;
    int seconds;
  } devices[] = {{"", "", 30}, {"EU", "", 5}, {"", "X1", 25}, {"EU", "X1", 60}};
  for (const auto& [region, carrier, seconds] : devices) {
    SetDevice(region, carrier);
    EXPECT_EQ(RingSeconds(), seconds) << region << ' ' << carrier;
  }
}

TEST_F(Ring, DependsOnTheSim) {
  android::setSimCadrova("calling.ring_seconds", "12");
  EXPECT_EQ(RingSeconds(), 12);
  ClearSim();
  EXPECT_EQ(RingSeconds(), 30);
}

TEST_F(Ring, FollowsASingleItem) {
  Set("DEFAULT", "calling.ring_seconds", 40);
  EXPECT_EQ(RingSeconds(), 40);
}

TEST_F(Ring, IsUnchangedByDataWithAnError) {
  const std::vector<Error> errors = LoadText("[DEFAULT]\ncalling.ring_seconds = 1979-05-27\n");
  ASSERT_EQ(errors.size(), 1U);
  EXPECT_EQ(ToString(errors[0]), "<text>:2:24: a date or time is not a supported value");
  EXPECT_EQ(RingSeconds(), 30);
}
