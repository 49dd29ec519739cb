// How the carrier-and-region int lookup over the stand-in core grows with the data, and what the
// same question costs a program that answers it itself, with GLib's GKeyFile.
//
//   growth ITEMS KEY_FILE    the same items in the file that CADROVA_HOST_DATA names: item i is an
//                            integer under "feature.i", dealt in turn to the default map, the
//                            region's, the carrier's and that of both
//
// Prints three times a call to standard error, whose ratios are of use: ours and GKeyFile's for 64
// features asked in turn, and ours for every item. Each is the median of five, taken in turn.

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

int AskKeyFile(GKeyFile* file, const std::string& key) {
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

// Nanoseconds a call where so many of the items are asked for in turn.
double Measure(long items, long features, const std::function<int(const std::string& key)>& ask) {
  const long calls = std::max(300'000L, features);
  const auto start = std::chrono::steady_clock::now();
  long feature = 0;
  for (long call = 0; call < calls; ++call) {
    feature = (feature + 611'953) % features;  // a prime, so that each has its turn
    const long item = feature * (items / features);
    if (ask("feature." + std::to_string(item)) != item) {
      std::fprintf(stderr, "growth: wrong answer for item %ld\n", item);
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
    std::fprintf(stderr, "growth: use ITEMS KEY_FILE, with a file that can be read\n");
    return 2;
  }
  android::base::SetProperty("ro.orvel.region", "EU");
  android::base::SetProperty("persist.sys.cota.carrier", "X1");
  const auto ours = [](const std::string& key) {
    return android::getCotaRegionCustIntFeature(key, -1);
  };
  const auto peer = [&](const std::string& key) { return AskKeyFile(file, key); };
  const long items = std::atol(argv[1]);
  const long few = std::min(items, 64L);
  std::array<std::array<double, 5>, 3> times;
  for (std::size_t round = 0; round < 5; ++round) {
    times[0][round] = Measure(items, few, ours);
    times[1][round] = Measure(items, few, peer);
    times[2][round] = Measure(items, items, ours);
  }
  for (auto& rounds : times) {
    std::ranges::sort(rounds);
    std::fprintf(stderr, "%.1f ", rounds[2]);
  }
}
