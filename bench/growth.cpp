// Measures how the time of the carrier-and-region int lookup over the fake core grows with the
// data, and the time of the same lookup in a program that uses GLib's GKeyFile.
//
//   growth ITEMS KEY_FILE    KEY_FILE has the same items as the file that CADROVA_HOST_DATA names.
//                            Item i is an integer under "feature.i". The items are spread over four
//                            maps: DEFAULT, the region's, the carrier's, and the one of both.
//
// Prints three times, in nanoseconds per call, to standard error: of the library with 64 keys in
// turn, of GKeyFile with the same keys, and of the library with all keys in turn. Each is the
// median of five. Use only their ratios.

#include <android-base/properties.h>
#include <glib.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string>

#include "cadrova/cadrova.h"

#pragma GCC diagnostic ignored "-Wformat-nonliteral"

namespace {

int LookUpInKeyFile(GKeyFile* file, const std::string& key) {
  const std::string region = android::base::GetProperty("ro.orvel.region", "");
  const std::string carrier = android::base::GetProperty("persist.sys.cota.carrier", "");
  const std::string in_carrier = "COTA_" + carrier;
  const std::string in_both = in_carrier + "_" + region;
  const struct {
    const std::string& group;
    const char* line;
  } steps[] = {{in_both, "getCotaRegionCustIntFeature exist with the carrier & region : %d \n"},
               {in_carrier, "getCotaRegionCustIntFeature exist with the carrier : %d \n"},
               {region, "getCotaRegionCustIntFeature exist with the region : %d \n"}};
  for (const auto& [group, line] : steps) {
    if (g_key_file_has_key(file, group.c_str(), key.c_str(), nullptr)) {
      const int value = g_key_file_get_integer(file, group.c_str(), key.c_str(), nullptr);
      std::printf(line, value);
      return value;
    }
  }
  const int value = g_key_file_get_integer(file, "DEFAULT", key.c_str(), nullptr);
  std::printf("getCotaRegionCustIntFeature do not exist with the carrier or region : %d \n", value);
  return value;
}

// Nanoseconds per call of `look_up`, for `features` of the keys in turn.
double Measure(long items, long features,
               const std::function<int(const std::string& key)>& look_up) {
  const long calls = std::max(300'000L, features);
  const auto start = std::chrono::steady_clock::now();
  long feature = 0;
  for (long call = 0; call < calls; ++call) {
    feature = (feature + 611'953) % features;  // a prime number, so every key is used
    const long item = feature * (items / features);
    if (look_up("feature." + std::to_string(item)) != item) {
      std::fprintf(stderr, "growth: item %ld has another value\n", item);
      std::exit(1);
    }
  }
  const std::chrono::duration<double, std::nano> taken = std::chrono::steady_clock::now() - start;
  return taken.count() / static_cast<double>(calls);
}

}  // namespace

int main(int argc, char** argv) {
  GKeyFile* const file = g_key_file_new();
  if (argc != 3 || !g_key_file_load_from_file(file, argv[2], G_KEY_FILE_NONE, nullptr)) {
    std::fprintf(stderr, "usage: growth ITEMS KEY_FILE, with a readable file\n");
    return 2;
  }
  android::base::SetProperty("ro.orvel.region", "EU");
  android::base::SetProperty("persist.sys.cota.carrier", "X1");
  const auto library = [](const std::string& key) {
    return android::getCotaRegionCustIntFeature(key, -1);
  };
  const auto key_file = [&](const std::string& key) { return LookUpInKeyFile(file, key); };
  const long items = std::atol(argv[1]);
  const long few = std::min(items, 64L);
  std::array<std::array<double, 5>, 3> times;
  for (std::size_t round = 0; round < 5; ++round) {
    times[0][round] = Measure(items, few, library);
    times[1][round] = Measure(items, few, key_file);
    times[2][round] = Measure(items, items, library);
  }
  for (auto& rounds : times) {
    std::ranges::sort(rounds);
    std::fprintf(stderr, "%.1f ", rounds[2]);
  }
}
