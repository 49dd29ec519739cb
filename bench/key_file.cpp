// The same question as a program would answer it itself, with GLib's GKeyFile. The file is named by
// the environment variable BENCH_KEY_FILE.

#include <android-base/properties.h>
#include <glib.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "question.h"

#pragma GCC diagnostic ignored "-Wformat-nonliteral"

namespace {

int Answer(GKeyFile* file, const std::string& key) {
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

}  // namespace

int main(int argc, char** argv) {
  android::base::SetProperty("ro.orvel.region", "EU");
  android::base::SetProperty("persist.sys.cota.carrier", "X1");
  GKeyFile* const file = g_key_file_new();
  const char* const path = std::getenv("BENCH_KEY_FILE");
  if (path == nullptr || !g_key_file_load_from_file(file, path, G_KEY_FILE_NONE, nullptr)) {
    std::fprintf(stderr, "%s: can't read the key file that BENCH_KEY_FILE names\n", argv[0]);
    return 2;
  }
  return bench::AskAll(argc, argv, [&](const std::string& key) { return Answer(file, key); });
}
