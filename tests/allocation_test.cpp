// Heap allocations of a lookup, counted where every string needs the heap: exactly what the
// contract's copies, names and results require, and no copy beyond them.

#include <gtest/gtest.h>

#include <tuple>

#include "cadrova/cadrova.h"
#include "recording_device.h"

namespace {

using recording::device;
using recording::RecordHeap;

const std::string kLong = "well-beyond-the-short-string-buffer-of-any-library";

// An existence test gets its copies of map name and key.
constexpr std::size_t kTest = 2;
// A bridge call gets its own of map name and key, and makes private ones for the core.
constexpr std::size_t kRead = 2 + 2;
// A string's default is copied likewise, and the result is a string of its own.
constexpr std::size_t kStringRead = kRead + 2 + 1;
constexpr std::size_t kCallersDefault = 1;
// "DEFAULT" and "SIM_DEFAULT" fit the short-string buffer: of a read of them, only the key's copies
// remain; of a test, only one.
constexpr std::size_t kShortNameRead = kRead - 2;
constexpr std::size_t kShortNameTest = kTest - 1;
// The carrier property's key has 24 bytes; the region property's fits. Their values are allocated
// by the store, which is not counted here.
constexpr std::size_t kCarrier = 1;
// A composed map name; that of carrier and region is joined of two.
constexpr std::size_t kName = 1;

// The defaults are as long as the names.
const std::tuple<int, std::string> kDefaults = {0, kLong};

struct Case {
  template <class Value, class... Default>
  Case(const char* described, Value (*lookup)(std::string, Default...), const char* map_prefix,
       std::size_t required)
      : what(described),
        call(
            [lookup](std::string key) { lookup(std::move(key), std::get<Default>(kDefaults)...); }),
        answering_map_prefix(map_prefix),
        expected(required) {}

  const char* what;
  std::function<void(std::string key)> call;
  const char* answering_map_prefix;  // the first map with this start answers; none: the last resort
  std::size_t expected;
};

const Case kCases[] = {
    {"default int", android::getCustIntFeature, "-", kShortNameRead},
    {"default string", android::getCustStringFeature, "-", kCallersDefault + kStringRead - 2},
    {"region int, found", android::getRegionCustIntFeature, "well", kTest + 2 * kRead},
    {"region int, fallback", android::getRegionCustIntFeature, "-", kTest + 2 * kShortNameRead},
    {"carrier int, found", android::getCotaCustIntFeature, "COTA_",
     kCarrier + kName + kTest + 2 * kRead},
    {"carrier list, fallback", android::getCotaCustIntArrayFeature, "-",
     kCarrier + kName + kTest + kShortNameRead},
    {"both, int, found in the first", android::getCotaRegionCustIntFeature, "COTA_",
     kCarrier + 3 * kName + kTest + 2 * kRead},
    {"both, int, found in the region's", android::getCotaRegionCustIntFeature, "well",
     kCarrier + 3 * kName + 3 * kTest + 2 * kRead},
    {"both, int, fallback", android::getCotaRegionCustIntFeature, "-",
     kCarrier + 3 * kName + 3 * kTest + 2 * kShortNameRead},
    {"both, string, found in the first", android::getCotaRegionCustStringFeature, "COTA_",
     kCallersDefault + kCarrier + 3 * kName + kTest + 2 * kStringRead},
    {"sim, int, found", android::getSimCustIntFeature, "SIM_well",
     kCarrier + kName + kTest + 2 * kRead},
    {"sim, int, found in any", android::getSimCustIntFeature, "SIM_D",
     kCarrier + kName + kTest + kShortNameTest + 2 * kShortNameRead},
    {"sim, list, handed over", android::getSimCustIntArrayFeature, "-",
     // The exported lookup that it ends in gets its own copy of the key.
     kCarrier + kName + kTest + kShortNameTest + 1 + kCarrier + 3 * kName + 3 * kTest +
         kShortNameRead},
};

const std::string kMaps[] = {kLong, "COTA_" + kLong, "COTA_" + kLong + "_" + kLong, "SIM_" + kLong,
                             "SIM_DEFAULT"};

TEST(Allocation, IsExactlyWhatTheContractRequires) {
#ifndef _LIBCPP_VERSION
  GTEST_SKIP() << "libc++ joins two strings in one allocation, other libraries in two";
#endif
  for (const auto& [what, call, prefix, expected] : kCases) {
    device = {};
    device.properties = {{"ro.orvel.region", kLong}, {"persist.sys.cota.carrier", kLong}};
    for (const std::string& map : kMaps) device.exists[map] = map.starts_with(prefix);
    device.strings = {kLong, kLong};
    std::string key = kLong;
    RecordHeap([&] { call(std::move(key)); });
    EXPECT_EQ(device.allocations.size(), expected) << what;
  }
}

}  // namespace
